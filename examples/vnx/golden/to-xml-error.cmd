to-xml to-xml-error.json

to-xml to-xml.json

to-xml --plain to-xml.json

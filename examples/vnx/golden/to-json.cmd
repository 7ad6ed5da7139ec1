to-json to-json.xml

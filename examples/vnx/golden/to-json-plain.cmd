to-json --plain to-json.xml

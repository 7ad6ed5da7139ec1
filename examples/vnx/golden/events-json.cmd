events events-json.json

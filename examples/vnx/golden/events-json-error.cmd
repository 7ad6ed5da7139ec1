events events-json-error.json

format format-json.json

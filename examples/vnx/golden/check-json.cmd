check format-json.json

format --plain format-json.json

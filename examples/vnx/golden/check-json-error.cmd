check check-json-error.json

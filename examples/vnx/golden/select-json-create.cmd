select --create select-json.json '$.store.bicycle.bell'

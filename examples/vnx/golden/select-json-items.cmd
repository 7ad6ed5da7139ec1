select select-json.json '$.store.book[-1:] | $.store.bicycle[color]'

select select-json.json '$.store.book[?(@.price = 9)]'

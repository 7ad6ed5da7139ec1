select --value select-json.json '$.store.book[?(@.price < 10 && @.isbn)].title'

select select-json.json '$..price'

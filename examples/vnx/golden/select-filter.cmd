select shop.xml '/shop/item[@price > 8]/name'

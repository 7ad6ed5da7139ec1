select shop.xml //item/@id

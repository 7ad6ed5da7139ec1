select shop.xml //missing

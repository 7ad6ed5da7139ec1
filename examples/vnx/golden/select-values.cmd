select --value shop.xml '//name | //tag'

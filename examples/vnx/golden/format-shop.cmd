format shop.xml

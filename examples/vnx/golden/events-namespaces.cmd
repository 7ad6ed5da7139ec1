events ns.xml

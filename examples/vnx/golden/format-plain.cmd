format --plain ns.xml

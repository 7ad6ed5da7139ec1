events two-roots.xml

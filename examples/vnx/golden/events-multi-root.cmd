events --multi-root two-roots.xml

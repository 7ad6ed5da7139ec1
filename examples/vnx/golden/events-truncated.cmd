events truncated.xml

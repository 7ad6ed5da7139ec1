format truncated.xml

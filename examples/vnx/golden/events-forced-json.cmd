events --json events-forced.xml

events --form events-form.txt

events --form events-form-error.txt

[abc = 1

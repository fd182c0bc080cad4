<!-- from a page
Echo 1
   <!-- Echo 2
--> Echo 3
x = 4 : Echo x

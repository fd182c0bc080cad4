Do
Echo 1
Next

For Each a b
Next

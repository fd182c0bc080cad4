If a Then
 Echo 1

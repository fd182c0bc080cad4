Exit Do

' Source literals do not follow the locale; &H without a closing & is signed 16 bits.
Echo 10, 1.5, .5, 1E3, 1.5e-2, 2.5E+2
Echo &HFF, &HFFFF, &H8000, &HFFFF&, &H10000, &O17, &hff
Echo TypeName(&HFFFF), TypeName(&HFFFF&), TypeName(32767), TypeName(32768), TypeName(2147483648), TypeName(1.0)
Echo "a ""quoted"" word", "", "it's"
Echo #2/28/2024#, #12:30:00 PM#, #1 Mar 2024 13:05#, TypeName(#1/1/2000#)

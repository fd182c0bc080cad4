Echo TypeName(1 + 1), 32767 + 1, TypeName(32767 + 1), TypeName(2147483647 + 1), 2147483647 + 1
Echo TypeName(CByte(1) + CByte(2)), TypeName(CByte(200) + CByte(100)), TypeName(CByte(1) - CByte(2))
Echo 300 * 300, TypeName(300 * 300), TypeName(70000 * 70000), -32768 - 1, TypeName(-32768 - 1)
Echo TypeName(True + True), True + True, TypeName(Empty + 1), TypeName(Empty + Empty)
Echo TypeName(1 / 1), TypeName(CSng(1) / CSng(2)), TypeName(CSng(1) + 1), TypeName(CSng(1) + 100000)
Echo TypeName(CCur(1) + 1), TypeName(CCur(2) * CCur(3)), TypeName(CCur(1) * 1.5), CCur(1.5) + 0
Echo TypeName(#1/1/2000# + 1), TypeName(#1/2/2000# - #1/1/2000#), #1/31/2000# + 1
Echo TypeName("1" + 1), "1" + 1, "1" + "1", TypeName("5" * "2")
Echo TypeName(-True), -True, TypeName(-CByte(5)), -(-32768), -"5"
Echo TypeName(7 \ 2), TypeName(7.6 \ 2), 7.6 \ 2, 7.5 Mod 4, 2.5 \ 1, -7 \ 2, -7 Mod 3, 7 Mod -3

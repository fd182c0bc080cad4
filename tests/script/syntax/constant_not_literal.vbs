Const a = f(1)

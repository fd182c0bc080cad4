Class Account
  Private m_balance, m_log(2)
  Public Owner, Tags()
  Private Sub Class_Initialize : m_balance = 10 : Owner = "nobody" : End Sub
  Public Property Get Balance : Balance = m_balance : End Property
  Public Property Let Balance(v) : m_log(0) = v : m_balance = v : End Property
  Public Property Get Log(i) : Log = m_log(i) : End Property
  Public Property Let Log(i, v) : m_log(i) = v : End Property
  Public Sub Deposit(n) : Balance = Balance + n : Check : End Sub
  Private Sub Check : If m_balance < 0 Then Owner = "debtor"
  End Sub
  Public Function Self : Set Self = Me : End Function
  Public Function Grow(n) : ReDim Tags(n) : Tags(n) = "last" : Grow = UBound(Tags) : End Function
End Class
Dim a, b : Set a = New Account : Set b = New Account
a.Deposit 5 : Echo a.Balance, b.Balance, a.Log(0)
a.Log(2) = "z" : Echo a.log(2), a.Owner
a.Deposit -100 : Echo a.Owner, b.Owner
Echo a.Self.Balance, a.Self Is a, a.Grow(3), a.Tags(3), TypeName(a)
On Error Resume Next
a.Check : Echo Err.Number, Err.Description : Err.Clear
Echo a.m_balance : Echo Err.Number : Err.Clear
a.Nope = 1 : Echo Err.Number, Err.Description : Err.Clear
a.Deposit : Echo Err.Number : Err.Clear
x = a + 1 : Echo Err.Number

' A program of some size: quick sort, word count and a stack of brackets.
Option Explicit
Sub QuickSort(a, ByVal low, ByVal high)
  Dim i, j, pivot, t : i = low : j = high : pivot = a((low + high) \ 2)
  Do While i <= j
    Do While a(i) < pivot : i = i + 1 : Loop
    Do While a(j) > pivot : j = j - 1 : Loop
    If i <= j Then
      t = a(i) : a(i) = a(j) : a(j) = t
      i = i + 1 : j = j - 1
    End If
  Loop
  If low < j Then QuickSort a, low, j
  If i < high Then QuickSort a, i, high
End Sub
Dim n, words, w, counts, k, keys
n = Array(5, 3, 9, 1, 5, -2, 8, 0) : QuickSort n, 0, UBound(n) : Echo Join(n, " ")
words = Split("the cat the dog the end", " ") : Set counts = CreateObject("Scripting.Dictionary")
For Each w In words : counts(w) = counts(w) + 1 : Next
keys = counts.Keys : QuickSort keys, 0, UBound(keys)
For Each k In keys : Echo k & "=" & counts(k) : Next
Function Balanced(s)
  Dim stack(), top, i, c : top = -1 : ReDim stack(Len(s))
  For i = 1 To Len(s)
    c = Mid(s, i, 1)
    Select Case c
      Case "(", "[" : top = top + 1 : stack(top) = c
      Case ")", "]"
        If top < 0 Then Exit Function
        If stack(top) & c <> "()" And stack(top) & c <> "[]" Then Exit Function
        top = top - 1
    End Select
  Next
  Balanced = (top = -1)
End Function
Echo Balanced("(a[b]c)"), CBool(Balanced("(]")), Balanced("((")

x = 1
Option Explicit

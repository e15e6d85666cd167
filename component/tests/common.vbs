' Prepended to each of the scripts.
Option Explicit
Dim passed, failed
Sub Check(what, holds)
  If holds Then
    passed = passed + 1
  Else
    failed = failed + 1
    WScript.Echo "failed: " & what
  End If
End Sub
Sub Expect(what, number, text)  ' that the previous statement raised exactly this
  If Err.Number <> number Or (text <> "" And InStr(Err.Description, text) = 0) Then
    WScript.Echo what & ": " & Err.Number & " [" & Err.Source & "] " & Err.Description
    failed = failed + 1
  Else
    passed = passed + 1
  End If
  Err.Clear
End Sub
Function Create(name)
  Set Create = CreateObject("AQ_Data_Control." & name)
End Function


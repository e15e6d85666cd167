' What a script sees of the objects: members, collections, errors, arrays:
' DATA WORK FOREIGN ACCENTED, the last two as text.

' Values, dates, identity
Dim t, other
Set t = Create("AQ_Time")
t.TODstring = "12:34:56.5"
Check "time of day", t.TODseconds = 45296.5
t.CurrentDate = DateSerial(2026, 5, 17)
Check "date", t.CurrentDate = DateSerial(2026, 5, 17) And VarType(t.CurrentDate) = vbDate
Set other = t.Copy
other.TODseconds = other.TODseconds + 10
Set t.setRelTime = other
Check "set only", t.RelSeconds = -10 And VarType(t.RelSeconds) = vbDouble
t.TODnumbers 1, "2", 3.5
Check "text as number", t.TODseconds = 3723.5
Check "class", Right(TypeName(t), 7) = "AQ_Time"
Dim s
Set s = Create("AQ_Spectrum")
Set s.Time = t
Check "identity", s.Time Is t
s.SPL(24) = 65.25
s.SPL(25) = CInt(66)
Check "types are kept", VarType(s.SPL(24)) = vbDouble And VarType(s.SPL(25)) = vbInteger
Check "an object with bands", s.Encompasses(s)

' Errors have a number and a text, and change nothing
On Error Resume Next
Dim n
n = s.SPL(30): Expect "band without a level", 5, "band 30"
n = s.SPL(70000): Expect "overflow", 6, ""
n = s.SPL: Expect "missing argument", 450, ""
n = s.SPL(1, 2): Expect "surplus argument", 450, ""
n = s.LowBands: Expect "unknown member", 438, ""
s.LowBand = 3: Expect "read only", 438, ""
Check "unchanged", s.LowBand = 24
t.TODstring = "10:30": Expect "malformed text", 5, "10:30"
t.TODseconds = "12,5": Expect "another locale's number", 13, "12,5"
t.TODseconds = Empty: Expect "a blank cell", 13, "empty"
t.TODseconds = Null: Expect "null", 13, ""
t.TODseconds = t: Expect "object as number", 13, ""
t.TODseconds = Array(1, 2): Expect "array as number", 13, ""
Check "still unchanged", t.TODseconds = 3723.5
Set s.Time = s: Expect "another class", 13, ""
Set t.setRelTime = Nothing: Expect "no object", 91, ""
Set s.Time = Nothing: Expect "Nothing is accepted", 0, ""
t.TODnumbers 25, 0, 0
n = t.TODstring: Expect "a time that cannot be written", 380, ""
Create("AQ_FileFailure"): Expect "only the library creates it", 429, ""
Dim header
Set header = Create("AQ_HeaderSTH")
Dim foreign, accented  ' from another alphabet, and from the code page
foreign = WScript.Arguments(2)
accented = WScript.Arguments(3)
header.sProjectName = foreign: Expect "outside the code page", 5, "U+416"
header.sFileName = foreign & accented: Expect "a name may have any character", 0, ""
Check "name as given", header.sFileName = foreign & accented
header.sProjectName = accented
Check "text as given", header.sProjectName = accented

' Collections
header.cCommentLines.Add "first": header.cCommentLines.Add "second", "key"
Check "default member of a property", header.cCommentLines(2) = "second"
Check "by key", header.cCommentLines.Item("key") = "second"
header.cCommentLines.Add "third", "key": Expect "duplicate key", 5, "key"
n = header.cCommentLines(3): Expect "no such index", 9, ""
Dim lines, line, all
Set lines = Create("AQ_Collection")
lines.Add "a": lines.Add 2: lines.Add "c"
Set header.cOtherRecords = lines
Check "shared", header.cOtherRecords Is lines
lines.Remove 1
For Each line In header.cOtherRecords
  all = all & line & ";"
Next
Check "for each", all = "2;c;" And lines.Count = 2
header.cCommentLines = Array("x", "y", "z")
Check "array as collection", header.cCommentLines.Count = 3 And header.cCommentLines(3) = "z"
header.cCommentLines = 5: Expect "number as collection", 13, ""
Dim column(2, 0), small(1, 1)
For n = 0 To 2: column(n, 0) = 80 + n: Next
header.cCommentLines = column
Check "column as collection", header.cCommentLines.Count = 3 And header.cCommentLines(3) = "82"
header.cCommentLines = small: Expect "table as collection", 13, ""
Set header.cOtherRecords = Nothing
n = header.cOtherRecords(1): Expect "index without a collection", 91, ""
n = s.Time(1): Expect "surplus argument of an object", 450, ""
Dim ascii
Set ascii = Create("AQ_DataASCII")
ascii.Fields = Array(Array("a", "b"), Array("c"))
Check "nested arrays", ascii.Fields(1)(2) = "b" And ascii.Fields(2).Count = 1
Expect "collections", 0, ""

' Series and whole arrays
Dim h, cells, r, sum, spectrum
Set h = Create("AQ_SpectralTimeHistory").Init(1, 3, 17, 20)
cells = h.Levels
Check "shape", LBound(cells) = 1 And UBound(cells) = 3 And UBound(cells, 2) = 4
For r = 1 To 3
  cells(r, 2) = 60.5 + r
Next
cells(3, 4) = Empty
h.Levels = cells
Check "set as array", h.spectrum(2).SPL(18) = 62.5 And h.spectrum(3).SPL(20) = 0
cells(2, 1) = Array(1)
h.Levels = cells: Expect "cell of another kind", 13, "record 2, band 17"
cells(2, 1) = "loud"
cells(1, 1) = 99
h.Levels = cells: Expect "cell that is not a number", 13, "record 2, band 17"
Check "nothing set", h.spectrum(1).SPL(17) = 0
h.Levels = Array(1, 2): Expect "one dimension", 13, ""
h.Levels = small: Expect "another shape", 5, "3 by 4"
For Each spectrum In h
  sum = sum + spectrum.SPL(18)
Next
Check "for each record", sum = 3 * 60.5 + 6
Check "empty history", IsEmpty(Create("AQ_SpectralTimeHistory").Levels)
Dim rows, row, masks
Set rows = Create("AQ_MaskMap"): Set row = Create("AQ_MaskRow")
row.Mask(28).MaskString = "MS"
row.Mask(29).MaskMode = 2
Set rows.Row(1) = row
masks = rows.MaskStrings
Check "masks as array", masks(1, 1) = "MS" And masks(1, 2) = "A-"
masks(1, 2) = "FT": rows.MaskStrings = masks
Check "masks set", row.Mask(29).AdjustMode = 3
masks(1, 1) = "--": masks(1, 2) = "??": rows.MaskStrings = masks: Expect "no mask", 5, "band 29"
Check "mask unchanged", row.Mask(28).MaskString = "MS"
row.LGB = 5
rows.setLGB 5: Expect "surplus argument of a method", 450, ""
Check "method not run", row.LGB = 5
Expect "series", 0, ""

' The library itself
Dim library, loud(23), event_, step_
Set library = Create("AQ_Library")
Check "version", Left(library.Version, 2) = "0."
For r = 17 To 40
  s.SPL(r) = 60
Next
s.SPL(28) = 80
Set step_ = library.toneCorrection(s)
Check "tone correction", step_.band = 28 And step_.rows.Count = 22 And step_.rows(1).band = 19
Check "empty where not defined", IsEmpty(step_.rows(1).slope)
Set event_ = library.noiseEvent(Array(80, 95, 100, 95, 80), 0.5)
Check "event", event_.maximum = 2 And event_.pnltm = 100 And event_.first = 1 And event_.last = 3
library.noiseEvent Array(), 0.5: Expect "no records", 5, ""
Check "column of levels", library.noiseEvent(column, 0.5).pnltm = 82
Check "gap", library.noiseEvent(Array(80, Empty, 100, 95, 80), 0.5).first = 2
Check "weighted", VarType(library.weightedLevel(s, 1)) = vbDouble
Expect "library", 0, ""

WScript.Echo passed & " passed, " & (0 + failed) & " failed"

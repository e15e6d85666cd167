' Reads, changes, writes and rereads a file of each format: DATA WORK FOREIGN ACCENTED
Dim data, work
data = WScript.Arguments(0) & "\"
work = WScript.Arguments(1) & "\"

Dim f, h, m, h2, m2, result, text, foreign
foreign = "a " & WScript.Arguments(2) & ".csv"
text = WScript.Arguments(3)

Set f = Create("AQ_DataSTH")
Check "STH", f.readFile(data & "spectral-time-history\good\three-records.csv", h, m) = 0
m.spectrum(m.LoRec).SPL(17) = 71.25
h.sProjectName = text
Check "STH is written", f.writeFile(work & foreign, h, m) = 0
Check "STH again", f.readFile(work & foreign, h2, m2) = 0
Check "STH same", m2.spectrum(m.LoRec).SPL(17) = 71.25 And h2.sProjectName = text And m2.Count = m.Count
Check "STH name", InStr(h2.sFileName, foreign) > 0
Check "new objects", Not (m2 Is m)
Set f = Create("AQ_DataSPC")
f.setHeader h2
Check "SPC is written", f.writeFile(work & "b.spc", m2) = 0
Check "SPC", f.readFile(work & "b.spc", h, m) = 0
Check "SPC same", m.spectrum(m2.LoRec).SPL(17) = 71.25

Set f = Create("AQ_DataMask")
Check "mask", f.readFile(data & "masking-map\good\two-rows.csv", h, m) = 0
m.Row(1).Mask(18).MaskString = "AF"
Check "mask is written", f.writeFile(work & "c.csv", h, m) = 0
Check "mask again", f.readFile(work & "c.csv", h2, m2) = 0
Check "mask same", m2.Row(1).Mask(18).MaskString = "AF" And m2.Count = 2

Set f = Create("AQ_DataPTH")
f.readFile data & "position-time-history\good\three-positions.csv", h, m, result
Check "PTH", result = 0 And m.Count = 3
m.Position(2).X = -12.25
f.writeFile work & "d.csv", h, m, result
Check "PTH is written", result = 0
f.readFile work & "d.csv", h2, m2, result
Check "PTH same", result = 0 And m2.Position(2).X = -12.25
Dim table
table = m2.Table
Check "PTH as array", table(2, 2) = -12.25 And UBound(table) = 3 And UBound(table, 2) = 4

Set f = Create("AQ_DataGTH")
f.readFile data & "geometric-time-history\good\two-points.csv", h, m, result
Check "GTH", result = 0
m.Point(1).SRe = 1234.5
f.writeFile work & "e.csv", h, m, result
f.readFile work & "e.csv", h2, m2, result
table = m2.Table
Check "GTH same", result = 0 And m2.Point(1).SRe = 1234.5 And table(1, 8) = 1234.5

Set f = Create("AQ_DataSSR")
Check "SSR", f.readFile(data & "spectrum-record\good\three-bands.csv", m, h) = 0
m.SPL(m.LowBand) = 55.5
Check "SSR is written", f.writeFile(work & "f.csv", h, m) = 0
Check "SSR without its header", f.readFile(work & "f.csv", m2) = 0
Check "SSR same", m2.SPL(m.LowBand) = 55.5

Set f = Create("AQ_DataINI")
Check "INI", f.readFile(data & "variable-initialization\good\all-parameters.csv") = 0
f.CalAdj = 1.5
Check "INI is written", f.writeFile(work & "g.csv") = 0
Set m2 = Create("AQ_DataINI")
Check "INI same", m2.readFile(work & "g.csv") = 0 And m2.CalAdj = 1.5 And m2.LoRec = f.LoRec

Set f = Create("AQ_DataASCII")
Check "ASCII", f.readFields(data & "spectrum-record\good\three-bands.csv") = 0
f.Fields(1).Add text
Check "ASCII is written", f.writeFields(work & "h.csv") = 0 And f.readFields(work & "h.csv") = 0
Check "ASCII same", f.Fields(1)(f.Fields(1).Count) = text

Set f = Create("AQ_DataTSPI")
f.readFile data & "tracking\good\four-positions.csv", m, result
Check "tracking", result = 0 And m.Count = 4 - f.nBadPositions
Set f = Create("AQ_DataMIC")
Set m = Create("AQ_Microphone")
f.readFile data & "microphone-position\good\one-microphone.csv", h, m, result
Check "microphone", result = 0 And m.X <> 0
Set f = Create("AQ_DataHP3565")
Check "recording", f.readFile(data & "analyzer-recording\good\third-octaves-by-header.dat", h, m) = 0
Dim files, index, timedat
Check "folder", f.readDirectory(data & "analyzer-recording\good", index, timedat, files) = 0 And files.Count > 3

' A file that cannot be read or written gives a result and a reason; variables keep their values.
Set f = Create("AQ_DataSTH")
Set m2 = Nothing
Check "no file", f.readFile(work & "none.csv", h, m2) = 2 And m2 Is Nothing
Check "why", InStr(f.lastFailure.file, "none.csv") > 0 And Len(f.lastFailure.message) > 10
Check "another kind", f.readFile(work & "c.csv", h, m2) = 2 And f.lastFailure.line = 1
Check "long path", f.readFile(work & String(300, "x"), h, m2) = 2 And Not f.lastFailure Is Nothing
Dim library
Set library = Create("AQ_Library")
Check "kind", library.kindOfFile(work & "c.csv") = "MaskingMap"
Check "findings", library.checkFile(work & "c.csv").Count >= 0
On Error Resume Next
f.writeFile work & "i.csv", Nothing, m
Check "no header", Err.Number = 91: Err.Clear
f.readFile work & "c.csv", 5, m2
Check "no variable for the header", Err.Number = 13: Err.Clear

WScript.Echo passed & " passed, " & (0 + failed) & " failed"

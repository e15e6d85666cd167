' Masks a fly-over with its ambient, writes the map and the history with its metrics, and prints the
' event: cscript //nologo fly_over.vbs FOLDER TARGET
Option Explicit
Const AQ_DATA_OK = 0
Const AQ_METRIC_PNLT = 6
Dim folder, target, library
folder = WScript.Arguments(0) & "\"
target = WScript.Arguments(1) & "\"
Set library = CreateObject("AQ_Data_Control.AQ_Library")

Sub StopIfFailed(file, result)
  If result = AQ_DATA_OK Then Exit Sub
  WScript.Echo file.lastFailure.message
  WScript.Quit 1
End Sub

Dim histories, header, history, spectra, ambient, comment
Set histories = CreateObject("AQ_Data_Control.AQ_DataSTH")
StopIfFailed histories, histories.readFile(folder & "fly-over.sth.csv", header, history)
WScript.Echo header.sProjectName & ", " & header.sMicrophoneID & ": " & history.Count & " records"
For Each comment In header.cCommentLines
  WScript.Echo "  " & comment
Next
Set spectra = CreateObject("AQ_Data_Control.AQ_DataSSR")
StopIfFailed spectra, spectra.readFile(folder & "fly-over.ssr.csv", ambient)

Dim map, masks, mapHeader, spectrum, masked
Set map = library.maskByAmbient(history, ambient, 3)
Set history.setLGB = map
For Each spectrum In history
  If spectrum.Metric.MetricValue(9) > 0 Then masked = masked & " " & spectrum.Metric.MetricValue(9)
Next
WScript.Echo "last good bands where high bands are masked:" & masked
Set masks = CreateObject("AQ_Data_Control.AQ_DataMask")
Set mapHeader = CreateObject("AQ_Data_Control.AQ_HeaderMask")
mapHeader.sGeneratedBy = "fly_over.vbs"
StopIfFailed masks, masks.writeFile(target & "fly-over.mask.csv", mapHeader, map)

Dim noise, levels, pnlt, result, tracking, positions, table, finding
Set noise = library.setMetrics(history, map)
levels = history.Levels
pnlt = history.MetricTable(AQ_METRIC_PNLT)
WScript.Echo "EPNL " & FormatNumber(noise.epnl, 2) & ", the largest PNLT " & FormatNumber(pnlt(noise.maximum + 1), 2)
WScript.Echo UBound(levels, 1) & " x " & UBound(levels, 2) & " levels, first " & levels(1, 1)
StopIfFailed histories, histories.writeFile(target & "fly-over.sth.csv", header, history)
For Each finding In library.checkFit(target & "fly-over.sth.csv", target & "fly-over.mask.csv")
  WScript.Echo finding
Next
Set tracking = CreateObject("AQ_Data_Control.AQ_DataTSPI")
tracking.readFile folder & "fly-over.tspi.csv", positions, result
StopIfFailed tracking, result
table = positions.Table
WScript.Echo positions.Count & " positions, the first at X " & table(1, 2) & " m"
On Error Resume Next
WScript.Echo history.spectrum(500).SPL(17)
If Err.Number <> 0 Then WScript.Echo "error " & Err.Number & ": " & Err.Description

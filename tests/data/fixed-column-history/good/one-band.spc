SPC                 1
ProjectName
MicrophoneID
AveragingMethod     NA
TimeStampType       OLDSLO
AdjustmentCode
StartTime           07/04/2026 00:00:00.000
ReferenceTime       07/04/2026 00:00:00.000
ReferenceTimeType   OTHER
RecordLength         999.999
NumberFirstRecord      32767
NumberLastRecord       32767
BandLow                   50
BandHigh                  50
GeneratedBy         x
GenerationFile
OtherRecords               0
CommentLines               0
Record           TOD     RelTime  100kHz
 32767  00:00:00.000       0.000   -0.25

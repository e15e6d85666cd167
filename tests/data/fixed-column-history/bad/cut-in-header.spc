SPC                 1
ProjectName         Landing
MicrophoneID        M1
AveragingMethod     TRUSLO
TimeStampType       MIDPT
AdjustmentCode
StartTime           03/15/2004 14:02:37.000
ReferenceTime       03/15/2004 14:02:40.500
ReferenceTimeType   PMAX
RecordLength           0.500
NumberFirstRecord          1
NumberLastRecord           3
BandLow                   29
BandHigh                  32
GeneratedBy         field analyzer
GenerationFile      landing.dat
OtherRecords               0

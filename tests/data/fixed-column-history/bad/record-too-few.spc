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
NumberLastRecord           4
BandLow                   29
BandHigh                  32
GeneratedBy         field analyzer
GenerationFile      landing.dat
OtherRecords               0
CommentLines               1
wind 3 m/s, no overload
Record           TOD     RelTime   800Hz    1kHz 1.25kHz  1.6kHz
     1  14:02:37.250      -3.250   61.50   60.25   58.00 9999.00
     2  14:02:37.750      -2.750   62.10           58.40   55.07
     3  14:02:38.250      -2.250   -0.25    0.50   57.90   54.90

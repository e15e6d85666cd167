SPC                 1
ProjectName         Night, take-off
MicrophoneID        M2
AveragingMethod     4S95
TimeStampType       END
AdjustmentCode      A1
StartTime           02/28/2004 23:59:59.000
ReferenceTime       02/29/2004 00:00:00.250
ReferenceTimeType   OAMAX
RecordLength           0.250
NumberFirstRecord         -2
NumberLastRecord           0
BandLow                    2
BandHigh                  50
GeneratedBy
GenerationFile
OtherRecords               2
a	b  
 kept 
CommentLines               0
Record           TOD     RelTime   1.6Hz     2Hz   2.5Hz  3.15Hz     4Hz     5Hz   6.3Hz     8Hz    10Hz  12.5Hz    16Hz    20Hz    25Hz  31.5Hz    40Hz    50Hz    63Hz    80Hz   100Hz   125Hz   160Hz   200Hz   250Hz   315Hz   400Hz   500Hz   630Hz   800Hz    1kHz 1.25kHz  1.6kHz    2kHz  2.5kHz 3.15kHz    4kHz    5kHz  6.3kHz    8kHz   10kHz 12.5kHz   16kHz   20kHz   25kHz 31.5kHz   40kHz   50kHz   63kHz   80kHz  100kHz
    -2  23:59:59.750      -0.500-9999.99                                                                                                                                                                                                                                                                                                                                                                                        99999.99
    -1  00:00:00.000      -0.250    0.25    1.25    2.25    3.25    4.25    5.25    6.25    7.25    8.25    9.25   10.25   11.25   12.25   13.25   14.25   15.25   16.25   17.25   18.25   19.25   20.25   21.25   22.25   23.25   24.25   25.25   26.25   27.25   28.25   29.25   30.25   31.25   32.25   33.25   34.25   35.25   36.25   37.25   38.25   39.25   40.25   41.25   42.25   43.25   44.25   45.25   46.25   47.25   48.25
     0  00:00:00.250       0.000                                                                                                                                                                                                 9999.00

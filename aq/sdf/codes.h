#pragma once

#include "aq/sdf/field.h"

// The codes of the fields, with the words that the instrument prints. A number without a word is
// shown as a number.
namespace aq::sdf::codes {

inline constexpr Code kInstrumentList[] = {
    {-99, "UNKNOWN"},     {-1, "HP VISTA"},     {-2, "HP SINE"},       {-3, "HP 35660A"},
    {-4, "HP 3562A/63A"}, {-5, "HP 3588A"},     {-6, "HP 3589A"},      {1, "HP 3566A/67A"},
    {2, "HP 35665A"},     {3, "HP 3560A"},      {4, "HP 89410A/440A"}, {5, "CALIBRATION"},
    {7, "HP 35635R"},     {8, "HP 35654A-S1A"}, {9, "HP 3569A"},       {10, "HP 35670A"},
    {11, "HP 3587S"},     {12, "HP E3200"}};
inline constexpr Codes kInstrument{kInstrumentList, "HP_"};

inline constexpr Code kAverageList[] = {{0, "AVERAGE_OFF"},
                                        {1, "AVERAGE_RMS"},
                                        {2, "AVERAGE_RMS_EXPONENTIAL"},
                                        {3, "AVERAGE_VECTOR"},
                                        {4, "AVERAGE_VECTOR_EXPONENTIAL"},
                                        {5, "AVERAGE_CONTINUOUS_PEAK_HOLD"},
                                        {6, "AVERAGE_PEAK"},
                                        {7, "AVERAGE_TIME"},
                                        {8, "AVERAGE_CONTINUOUS_TIME"},
                                        {9, "AVERAGE_TIME_EXPONENTIAL"},
                                        {10, "AVERAGE_EQUAL_CONFIDENCE"}};
inline constexpr Codes kAverage{kAverageList, "AVERAGE_"};

inline constexpr Code kMeasurementList[] = {
    {-99, "UNKNOWN_MEAS"}, {0, "SPECTRUM_MEAS"},      {1, "NETWORK_MEAS"},
    {2, "SWEPT_MEAS"},     {3, "FFT_MEAS"},           {4, "ORDERS_MEAS"},
    {5, "OCTAVE_MEAS"},    {6, "CAPTURE_MEAS"},       {7, "CORRELATION_MEAS"},
    {8, "HISTOGRAM_MEAS"}, {9, "SWEPT_NETWORK_MEAS"}, {10, "FFT_NETWORK_MEAS"}};
inline constexpr Codes kMeasurement{kMeasurementList, "_MEAS"};

inline constexpr Code kDetectionList[] = {{-99, "UNKNOWN_DETECT"},
                                          {0, "SAMPLE_DETECT"},
                                          {1, "POSITIVE_DETECT", "POSITIVE_PEAK"},
                                          {2, "NEGATIVE_DETECT", "NEGATIVE_PEAK"},
                                          {3, "ROSENFELL_DETECT"}};
inline constexpr Codes kDetection{kDetectionList, "_DETECT"};

inline constexpr Code kDomainList[] = {{-99, "UNKNOWN_DOMAIN"}, {0, "FREQ_DOMAIN", "FREQUENCY"},
                                       {1, "TIME_DOMAIN"},      {2, "AMPLITUDE_DOMAIN"},
                                       {3, "RPM_DOMAIN"},       {4, "ORDER_DOMAIN"},
                                       {5, "CHANNEL_DOMAIN"},   {6, "OCTAVE_DOMAIN"}};
inline constexpr Codes kDomain{kDomainList, "_DOMAIN"};

inline constexpr Code kDataList[] = {{-99, "UNKNOWN_DATA"},
                                     {0, "TIME_DATA"},
                                     {1, "LINEAR_SPECTRUM_DATA"},
                                     {2, "AUTO_PWR_DATA", "AUTO_POWER"},
                                     {3, "CROSS_PWR_DATA", "CROSS_POWER"},
                                     {4, "FREQ_RESP_DATA", "FREQUENCY_RESPONSE"},
                                     {11, "FULL_OCTAVE_DATA"},
                                     {12, "THIRD_OCTAVE_DATA"},
                                     {39, "TWELFTH_OCTAVE_DATA"},
                                     {44, "PSD_DATA"},
                                     {49, "PRESSURE_DATA"},
                                     {50, "INTENSITY_DATA"}};
inline constexpr Codes kData{kDataList, "_DATA"};

inline constexpr Code kResolutionList[] = {{0, "LINEAR_RES"}, {1, "LOG_RES", "LOGARITHMIC"}};
inline constexpr Codes kResolution{kResolutionList, "_RES"};

inline constexpr Code kNumberList[] = {
    {1, "INT16", "SHORT"}, {2, "INT32", "LONG"}, {3, "FLOAT32", "FLOAT"}, {4, "FLOAT64", "DOUBLE"}};
inline constexpr Codes kNumber{kNumberList, {}};

inline constexpr Code kWindowList[] = {{0, "NO_WINDOW", "NONE"},
                                       {1, "HANNING"},
                                       {2, "FLAT_TOP"},
                                       {3, "UNIFORM"},
                                       {4, "FORCE"},
                                       {5, "EXPONENTIAL"},
                                       {6, "USER"},
                                       {7, "HAMMING"},
                                       {8, "P301"},
                                       {9, "P310"},
                                       {10, "KAISER_BESSEL"},
                                       {11, "HARRIS"},
                                       {12, "BLACKMAN"},
                                       {13, "RESOLUTION_FILTER"}};
inline constexpr Codes kWindow{kWindowList, {}};

inline constexpr Code kCorrectionList[] = {
    {0, "CORR_NOT_APPLIED"}, {1, "CORR_NARROW"}, {2, "CORR_WIDE"}, {3, "CORR_USER"}};
inline constexpr Codes kCorrection{kCorrectionList, "CORR_"};

inline constexpr Code kWeightingList[] = {
    {0, "NO_WEIGHTING", "NONE"}, {1, "A_WEIGHTING"}, {2, "B_WEIGHTING"}, {3, "C_WEIGHTING"}};
inline constexpr Codes kWeighting{kWeightingList, "_WEIGHTING"};

inline constexpr Code kDirectionList[] = {{0, "NO_DIRECTION", "NONE"}};
inline constexpr Codes kDirection{kDirectionList, "_DIRECTION"};

inline constexpr Code kCouplingList[] = {{0, "DC_COUPLING"}, {1, "AC_COUPLING"}};
inline constexpr Codes kCoupling{kCouplingList, "_COUPLING"};

inline constexpr Code kOverloadList[] = {{0, "NOT_OVERLOADED"}, {1, "OVERLOADED"}};
inline constexpr Codes kOverload{kOverloadList, {}};

inline constexpr Code kAttributeList[] = {{0, "NO_ATTRIB", "NONE"}};
inline constexpr Codes kAttribute{kAttributeList, "_ATTRIB"};

inline constexpr Code kScanList[] = {{0, "DEPTH"}, {1, "SCAN"}};
inline constexpr Codes kScan{kScanList, {}};

inline constexpr Code kScanBaseList[] = {{0, "UNKNOWN"}, {1, "NUMBER"},      {2, "TIME"},
                                         {3, "RPM"},     {4, "TEMPERATURE"}, {5, "TACH"}};
inline constexpr Codes kScanBase{kScanBaseList, {}};

}  // namespace aq::sdf::codes

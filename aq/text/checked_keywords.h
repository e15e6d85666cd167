#pragma once

#include <string_view>

// The keywords of lines whose values are checked. Readers accept any keyword on such a line;
// checks compare it with the one given here.
namespace aq::keywords {

inline constexpr std::string_view kAveragingMethod = "AveragingMethod";
inline constexpr std::string_view kTimeStampType = "TimeStampType";
inline constexpr std::string_view kReferenceTimeType = "ReferenceTimeType";
inline constexpr std::string_view kNuAvg = "NuAvg";
inline constexpr std::string_view kNuTimg = "NuTimg";
inline constexpr std::string_view kNumberOfSpectrum = "NumberOfSpectrum";
inline constexpr std::string_view kRecordNumbers = "RecordNumbers";
inline constexpr std::string_view kBands = "Bands";
inline constexpr std::string_view kNumberOfRows = "NumberOfRows";
inline constexpr std::string_view kNumberRecords = "NumberRecords";
inline constexpr std::string_view kTemperature = "PromptTemperature";

// Column headings, which readers skip.
inline constexpr std::string_view kPositionHeadings = "TOD,X,Y,Z";
inline constexpr std::string_view kMicrophoneHeadings = "X,Y,Z,Height";
inline constexpr std::string_view kGeometryHeadings =
    "REC#, Tm, Te, Tprope, Xe, Ye, Ze, SRe, THETAe, BETAe";

}  // namespace aq::keywords

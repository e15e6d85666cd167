#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "aq/core/export.h"
#include "aq/sdf/codes.h"
#include "aq/sdf/field.h"

// The records of the Standard Data Format, with the fields of each.
namespace aq::sdf {

enum class RecordType : std::int16_t {
  File = 10,
  Measurement = 11,
  Data = 12,
  Vector = 13,
  Channel = 14,
  Scans = 15,
  X = 16,
  Y = 17,
  ManyScans = 18,
  ScanVariable = 19,
  Comment = 20,
  Unique = 1000,  // 1000 to 2000 are defined by the instrument
};

/// The size in bytes of the two fields at the start of every record: its type and its total size.
inline constexpr std::size_t kRecordHead = 6;

template <std::size_t n>
struct Layout {
  std::string_view name;
  RecordType type;
  std::array<Field, n> fields;

  /// The field of that name; an unknown name does not compile.
  consteval const Field& operator[](std::string_view field) const {
    for (const Field& one : fields) {
      if (one.name == field) return one;
    }
    throw "no such field";
  }
};

template <std::size_t n>
constexpr Layout<n> layout(std::string_view name, RecordType type, const Field (&fields)[n]) {
  return {name, type, std::to_array(fields)};
}

/// A layout with any number of fields.
struct AnyLayout {
  std::string_view name;
  RecordType type;
  std::span<const Field> fields;
};

/// The layout of records of that type; a type without a layout of its own has that of `Unique`.
[[nodiscard]] AQ_API const AnyLayout& layoutOf(RecordType type);

/// The layout with that name, as text files write it; `nullptr` if there is none.
[[nodiscard]] const AnyLayout* layoutNamed(std::string_view name);

/// The parts of a unit or window field, with bytes counted from the start of that field; none for
/// any other field.
[[nodiscard]] AQ_API std::span<const Field> partsOf(const Field& field);

inline constexpr auto kUnit = layout("SDF_UNIT", {},
                                     {{"label", 1, Type::Text, 10},
                                      {"factor", 11, Type::Float},  // to the SI unit
                                      // Twice the exponent of each base quantity.
                                      {"mass", 15, Type::Byte},
                                      {"length", 16, Type::Byte},
                                      {"time", 17, Type::Byte},
                                      {"current", 18, Type::Byte},
                                      {"temperature", 19, Type::Byte},
                                      {"luminous", 20, Type::Byte},
                                      {"mole", 21, Type::Byte},
                                      {"angle", 22, Type::Byte}});

inline constexpr auto kWindow = layout("SDF_WINDOW", {},
                                       {{"windowType", 1, Type::Short, 1, &codes::kWindow},
                                        {"windowCorrMode", 3, Type::Short, 1, &codes::kCorrection},
                                        {"windowBandWidth", 5, Type::Float},  // in bins
                                        {"windowTimeConst", 9, Type::Float},
                                        {"windowTrunc", 13, Type::Float},
                                        {"wideBandCorr", 17, Type::Float},
                                        {"narrowBandCorr", 21, Type::Float}});

inline constexpr auto kFile = layout("SDF_FILE_HDR", RecordType::File,
                                     {{"revisionNum", 7, Type::Short},  // 0 in files of revision 1
                                      {"applic", 9, Type::Short, 1, &codes::kInstrument},
                                      {"yearStamp", 11, Type::Short},
                                      {"monthDayStamp", 13, Type::Short},  // month x 100 + day
                                      {"hourMinStamp", 15, Type::Short},   // hour x 100 + minute
                                      {"applicVer", 17, Type::Text, 8},
                                      {"num_of_DATA_HDR_record", 25, Type::Short},
                                      {"num_of_VECTOR_record", 27, Type::Short},
                                      {"num_of_CHANNEL_record", 29, Type::Short},
                                      {"num_of_UNIQUE_record", 31, Type::Short},
                                      {"num_of_SCAN_STRUCT_record", 33, Type::Short},
                                      {"num_of_XDATA_record", 35, Type::Short},
                                      {"offset_of_DATA_HDR_record", 37, Type::Long},
                                      {"offset_of_VECTOR_record", 41, Type::Long},
                                      {"offset_of_CHANNEL_record", 45, Type::Long},
                                      {"offset_of_UNIQUE_record", 49, Type::Long},
                                      {"offset_of_SCAN_STRUCT_record", 53, Type::Long},
                                      {"offset_of_XDATA_record", 57, Type::Long},
                                      {"offset_of_YDATA_record", 61, Type::Long},
                                      {"num_of_SCAN_BIG_record", 65, Type::Short},
                                      {"num_of_COMMENT_record", 67, Type::Short},
                                      {"offset_of_SCAN_BIG_record", 69, Type::Long},
                                      {"offset_of_COMMENT_record", 73, Type::Long},
                                      {"offset_of_next_SDF_FILE", 77, Type::Long}});

inline constexpr auto kMeasurement = layout(
    "SDF_MEAS_HDR", RecordType::Measurement,
    {{"unique_record", 7, Type::Long},      {"centerFreqOld", 11, Type::Float},
     {"spanFreqOld", 15, Type::Float},      {"blockSize", 19, Type::Long},
     {"zoomModeOn", 23, Type::Short},       {"startFreqIndexOld", 25, Type::Short},
     {"stopFreqIndexOld", 27, Type::Short}, {"averageType", 29, Type::Short, 1, &codes::kAverage},
     {"averageNum", 31, Type::Long},        {"pctOverlap", 35, Type::Float},
     {"measTitle", 39, Type::Text, 60},     {"videoBandWidth", 99, Type::Float},
     {"centerFreq", 103, Type::Double},     {"spanFreq", 111, Type::Double},
     {"sweepFreq", 119, Type::Double},      {"measType", 127, Type::Short, 1, &codes::kMeasurement},
     {"realTime", 129, Type::Short},        {"detection", 131, Type::Short, 1, &codes::kDetection},
     {"sweepTime", 133, Type::Double},      {"startFreqIndex", 141, Type::Long},
     {"stopFreqIndex", 145, Type::Long},    {"expAverageNum", 149, Type::Double}});

inline constexpr auto kData =
    layout("SDF_DATA_HDR", RecordType::Data,
           {{"unique_record", 7, Type::Long},
            {"dataTitle", 11, Type::Text, 16},
            {"domain", 27, Type::Short, 1, &codes::kDomain},
            {"dataType", 29, Type::Short, 1, &codes::kData},
            {"num_of_pointsOld", 31, Type::Short},
            {"last_valid_indexOld", 33, Type::Short},
            {"abscissa_firstXOld", 35, Type::Float},
            {"abscissa_deltaXOld", 39, Type::Float},
            {"xResolution_type", 43, Type::Short, 1, &codes::kResolution},
            {"xdata_type", 45, Type::Short, 1, &codes::kNumber},
            {"xPerPoint", 47, Type::Short},
            {"ydata_type", 49, Type::Short, 1, &codes::kNumber},
            {"yPerPoint", 51, Type::Short},  // a real and an imaginary part count as one value
            {"yIsComplex", 53, Type::Short},
            {"yIsNormalized", 55, Type::Short},
            {"yIsPowerData", 57, Type::Short},
            {"yIsValid", 59, Type::Short},
            {"first_VECTOR_recordNum", 61, Type::Long},
            {"total_rows", 65, Type::Short},
            {"total_cols", 67, Type::Short},
            {"xUnit", 69, Type::Unit},
            {"yUnitValid", 91, Type::Short},
            {"yUnit", 93, Type::Unit},
            {"abscissa_firstX", 115, Type::Double},
            {"abscissa_deltaX", 123, Type::Double},
            {"scanData", 131, Type::Short},
            {"windowApplied", 133, Type::Short},
            {"num_of_points", 135, Type::Long},
            {"last_valid_index", 139, Type::Long},
            {"overSampleFactor", 143, Type::Short},
            {"multiPassMode", 145, Type::Short},
            {"multiPassDecimations", 147, Type::Short}});

inline constexpr auto kVector = layout("SDF_VECTOR_HDR", RecordType::Vector,
                                       {{"unique_record", 7, Type::Long},
                                        {"the_CHANNEL_record", 11, Type::Short, 2},
                                        {"pwrOfChan", 15, Type::Short, 2}});  // in 48ths

inline constexpr auto kChannel =
    layout("SDF_CHANNEL_HDR", RecordType::Channel,
           {{"unique_record", 7, Type::Long},
            {"channelLabel", 11, Type::Text, 30},
            {"moduleId", 41, Type::Text, 12},
            {"serialNum", 53, Type::Text, 12},
            {"window", 65, Type::Window},
            {"weight", 89, Type::Short, 1, &codes::kWeighting},
            {"delayOld", 91, Type::Float},
            {"range", 95, Type::Float},  // dB re 1 V peak
            {"direction", 99, Type::Short, 1, &codes::kDirection},
            {"pointNum", 101, Type::Short},
            {"coupling", 103, Type::Short, 1, &codes::kCoupling},
            {"overloaded", 105, Type::Short, 1, &codes::kOverload},
            {"intLabel", 107, Type::Text, 10},
            {"engUnit", 117, Type::Unit},
            {"int2engrUnit", 139, Type::Float},  // internal units per engineering unit
            {"inputImpedance", 143, Type::Float},
            {"channelAttribute", 147, Type::Short, 1, &codes::kAttribute},
            {"aliasProtected", 149, Type::Short},
            {"digital", 151, Type::Short},
            {"channelScale", 153, Type::Double},
            {"channelOffset", 161, Type::Double},
            {"gateBegin", 169, Type::Double},
            {"gateEnd", 177, Type::Double},
            {"userDelay", 185, Type::Double},
            {"delay", 193, Type::Double},
            {"carrierFreq", 201, Type::Double},
            {"channelNumber", 209, Type::Short},
            {"channelModule", 211, Type::Short}});

inline constexpr auto kScans = layout("SDF_SCAN_STRUCT", RecordType::Scans,
                                      {{"num_of_scan", 7, Type::Short},
                                       {"last_scan_index", 9, Type::Short},
                                       {"scan_type", 11, Type::Short, 1, &codes::kScan},
                                       {"scanVar_type", 13, Type::Short, 1, &codes::kNumber},
                                       {"scanUnit", 15, Type::Unit}});

inline constexpr auto kManyScans = layout("SDF_SCANS_BIG", RecordType::ManyScans,
                                          {{"unique_record", 7, Type::Long},
                                           {"num_of_scan", 11, Type::Long},
                                           {"last_scan_index", 15, Type::Long},
                                           {"scan_type", 19, Type::Short, 1, &codes::kScan}});

inline constexpr auto kScanVariable =
    layout("SDF_SCANS_VAR", RecordType::ScanVariable,
           {{"unique_record", 7, Type::Long},
            {"headersize", 11, Type::Long},
            {"scanBase_type", 15, Type::Short, 1, &codes::kScanBase},
            {"scanOrder_type", 17, Type::Short},
            {"DATA_recordNum", 19, Type::Short},
            {"scan_ID", 21, Type::Text, 10},
            {"scanVar_type", 31, Type::Short, 1, &codes::kNumber},
            {"scanUnit", 33, Type::Unit}});

inline constexpr auto kComment = layout("SDF_COMMENT_HDR", RecordType::Comment,
                                        {{"unique_record", 7, Type::Long},
                                         {"headersize", 11, Type::Long},
                                         {"comment_bytes", 15, Type::Long},
                                         {"comment_type", 19, Type::Short},
                                         {"scope_type", 21, Type::Short},
                                         {"scope_info", 23, Type::Short}});

}  // namespace aq::sdf

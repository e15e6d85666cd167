#pragma once

#include <aq/aq.h>

#include <optional>
#include <string>
#include <vector>

#include "tools/aqdata/session.h"

namespace aqdata {

/// The name of a metric in tables and JSON.
struct MetricName {
  aq::AQ_METRIC_TYPE type;
  const char* text;
};
inline constexpr MetricName kMetricNames[] = {
    {aq::AQ_METRIC_AWT, "AWT"},         {aq::AQ_METRIC_CWT, "CWT"},
    {aq::AQ_METRIC_DWT, "DWT"},         {aq::AQ_METRIC_OA, "OA"},
    {aq::AQ_METRIC_PNL, "PNL"},         {aq::AQ_METRIC_PNLT, "PNLT"},
    {aq::AQ_METRIC_TONECOR, "TONECOR"}, {aq::AQ_METRIC_TONEBND, "TONEBND"},
    {aq::AQ_METRIC_LGB, "LGB"},         {aq::AQ_METRIC_INTEG, "INTEG"}};

/// Whether a metric's value is a band number.
[[nodiscard]] constexpr bool isBand(aq::AQ_METRIC_TYPE type) {
  return type == aq::AQ_METRIC_TONEBND || type == aq::AQ_METRIC_LGB;
}

/// A metric of a record; null if the record lacks it.
[[nodiscard]] Json metricJson(const aq::RecordMetrics& record, aq::AQ_METRIC_TYPE type);

/// The role of a record in the event, such as "max" or "first 2nd".
[[nodiscard]] std::string flagsText(int flags);

/// Record numbers as ranges, such as "3, 5-9"; after twenty ranges, how many records remain.
[[nodiscard]] std::string recordsText(const std::vector<int>& records);

/// A band and its frequency, such as "34 (2.5 kHz)".
[[nodiscard]] std::string bandText(std::int16_t band);

/// The meaning of a record's last good band in words.
[[nodiscard]] std::string lastGoodBandText(int band);

/// The row of a record; null without a map or without a row for it.
[[nodiscard]] const aq::AQ_MaskRow* rowOf(const aq::AQ_MaskMap* map, std::int16_t record);

/// The correction in words, such as "tone correction of 2.00 dB for band 34 (2.5 kHz)".
[[nodiscard]] std::string toneText(const aq::ToneCorrection& tone);

/// A CSV field, in quotes if necessary.
[[nodiscard]] std::string csvField(const std::string& text);

/// The files that the user named and, of those that folders and patterns select, the
/// comma-separated histories. Throws `Failure` if there are none, unless a failure was
/// already reported.
[[nodiscard]] std::vector<std::string> chosenHistories(Session& session);

}  // namespace aqdata

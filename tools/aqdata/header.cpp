#include <aq/describe/files.h>
#include <aq/describe/headers.h>

#include <algorithm>
#include <array>
#include <functional>

#include "tools/aqdata/sheet.h"

namespace aqdata {
namespace {

/// The order in which `info` shows the keys of a header; the members themselves are in the order of
/// the interface.
constexpr std::array<std::string_view, 20> kCardOrder{"file_name",
                                                      "file_date",
                                                      "project",
                                                      "microphone",
                                                      "calibration_adjustment_db",
                                                      "averaging",
                                                      "time_stamp",
                                                      "adjustment",
                                                      "start_time",
                                                      "reference_time",
                                                      "reference_time_type",
                                                      "window_before_s",
                                                      "window_behind_s",
                                                      "low_record",
                                                      "high_record",
                                                      "generated_by",
                                                      "generation_file",
                                                      "generation_file_date",
                                                      "other_records",
                                                      "comments"};

// A member's value as JSON, for each type that a member with a key has.

Json jsonOf(const std::string& text) { return text; }
Json jsonOf(std::int16_t number) { return number; }
Json jsonOf(std::int32_t number) { return number; }
Json jsonOf(float value) { return tidy(value); }
Json jsonOf(const std::shared_ptr<aq::AQ_Time>& date) {
  if (!date || date->CurrentDate() == 0) return nullptr;
  return aq::Variant::date(date->CurrentDate() + date->TODseconds() / 86400).toString();
}
Json jsonOf(const std::shared_ptr<aq::AQ_Position>& at) { return {at->X(), at->Y(), at->Z()}; }
Json jsonOf(const std::shared_ptr<aq::Collection<std::string>>& lines) {
  Json all = Json::array();
  for (const std::string& line : *lines) all.push_back(line);
  return all;
}

Json jsonOf(aq::AQ_AverageMethod method) { return aq::wordOf(method); }
Json jsonOf(aq::AQ_TimeStampType type) { return aq::wordOf(type); }

/// The values of the members that have a key, by key.
template <class Object>
Json keyed(Object& object) {
  Json values = Json::object();
  const auto put = [&](const auto& member, const auto& value) {
    if constexpr (requires { jsonOf(value); }) {
      if (!member.about.key.empty()) values[std::string(member.about.key)] = jsonOf(value);
    }
  };
  aq::describe::forMembers<Object>([&](const auto& member) {
    if constexpr (requires { object.*member.member; }) {
      put(member, object.*member.member);
    } else if constexpr (requires { std::invoke(member.get, object); }) {
      put(member, std::invoke(member.get, object));
    }
  });
  return values;
}

/// Puts the keys in the order of `kCardOrder` and drops all others. Values that already begin with
/// the first of these keys stay as they are.
Json inCardOrder(const Json& values) {
  if (values.empty() || values.begin().key() == kCardOrder.front()) return values;
  Json ordered = Json::object();
  for (const std::string_view key : kCardOrder) {
    const auto value = values.find(key);
    if (value != values.end()) ordered[std::string(key)] = *value;
  }
  return ordered;
}

template <class Header, class Model>
Json headerFrom(const Held<Header, Model>& read) {
  return inCardOrder(keyed(*read.header));
}

Json headerFrom(const History& read) {
  aq::AQ_SpectralTimeHistory& history = *read.model;
  Json values = keyed(*read.header);
  values["averaging"] = history.sAveragingMethod();
  values["time_stamp"] = history.sTimeStampType();
  values["start_time"] = timeText(*history.startTime());
  values["reference_time"] = timeText(*history.ReferenceTime());
  values["reference_time_type"] = read.words.reference();
  return inCardOrder(values);
}

Json headerFrom(const Tracking& read) { return {{"rejected_fixes", read.rejected}}; }
Json headerFrom(const Parameters& read) { return inCardOrder(keyed(*read.model)); }

}  // namespace

std::vector<std::string> headerKeys() {
  std::vector<std::string> keys(kCardOrder.begin(), kCardOrder.end());
  for (const char* key :
       {"tracking_file", "tracking_file_date", "rejected_fixes", "microphone_position",
        "temperature", "history_file", "position_file", "microphone_file", "history_file_date",
        "position_file_date", "microphone_file_date"}) {
    keys.emplace_back(key);
  }
  return keys;
}

Json headerOf(const Measurement& measurement) {
  return std::visit([](const auto& read) { return headerFrom(read); }, measurement.data);
}

}  // namespace aqdata

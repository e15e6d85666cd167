#include "tools/aqdata/report/model_data.h"

#include <algorithm>
#include <memory>

#include "tools/aqdata/report/packed.h"
#include "tools/aqdata/sheet.h"

namespace aqdata::report {
namespace {

constexpr std::int16_t kToneLow = 19;  // the bands of the tone correction
constexpr std::int16_t kToneHigh = 40;

std::size_t bandCount(std::int16_t low, std::int16_t high) {
  return static_cast<std::size_t>(std::max(0, high - low + 1));
}

}  // namespace

void appendLevels(const aq::AQ_Spectrum& spectrum, std::int16_t low, std::int16_t high,
                  std::vector<double>& levels) {
  for (std::int32_t band = low; band <= high; ++band) {
    const double level = spectrum.contains(band)
                             ? spectrum.SPL(static_cast<std::int16_t>(band)).toDouble()
                             : kNoValue;
    levels.push_back(level == double{aq::AQ_INVALID_LEVEL} ? kNoValue : level);
  }
}

void appendMasks(const aq::AQ_MaskRow* row, std::int16_t low, std::int16_t high,
                 std::string& masks) {
  const std::size_t begin = masks.size();
  masks.append(bandCount(low, high), '\0');
  if (row == nullptr) return;
  for (const auto& [band, decision] : *row) {
    if (band < low || band > high) continue;
    const int code = (decision.MaskMode() != aq::NOT_MASKED ? 1 : 0) +
                     (decision.AdjustMode() != aq::NOT_ADJUSTED ? 2 : 0);
    masks[begin + static_cast<std::size_t>(band - low)] = static_cast<char>(code);
  }
}

void appendBackground(const aq::ToneCorrection& tone, std::vector<double>& levels) {
  const std::size_t begin = levels.size();
  levels.resize(begin + bandCount(kToneLow, kToneHigh), kNoValue);
  for (const aq::ToneStep& step : tone.rows) {
    levels[begin + static_cast<std::size_t>(step.band - kToneLow)] =
        step.background.value_or(kNoValue);
  }
}

Json positionsJson(const aq::AQ_PositionTimeHistory& positions) {
  std::vector<std::shared_ptr<aq::AQ_Position>> all;
  for (const auto& [place, position] : positions) all.push_back(position);
  return {{"time",
           packedFrom(all, kTimeStep,
                      [](const auto& at) { return tidySeconds(at->lazyTime().secondsOfDay()); })},
          {"x", packedFrom(all, kLengthStep, [](const auto& at) { return at->X(); })},
          {"y", packedFrom(all, kLengthStep, [](const auto& at) { return at->Y(); })},
          {"z", packedFrom(all, kLengthStep, [](const auto& at) { return at->Z(); })}};
}

Json geometryJson(const aq::AQ_GeometryTimeHistory& geometry) {
  std::vector<std::shared_ptr<aq::AQ_Geometry>> all;
  for (const auto& [record, point] : geometry) all.push_back(point);
  const auto each = [&all](double step, const auto& value) {
    return packedFrom(all, step, [&value](const auto& point) { return double{value(*point)}; });
  };
  return {
      {"time", each(kTimeStep, [](auto& at) { return tidySeconds(at.Tm()->TODseconds()); })},
      {"emission", each(kTimeStep, [](auto& at) { return tidySeconds(at.Te()->TODseconds()); })},
      {"propagation", each(kLengthStep, [](auto& at) { return at.Tprope; })},
      {"x", each(kLengthStep, [](auto& at) { return at.Pe()->X(); })},
      {"y", each(kLengthStep, [](auto& at) { return at.Pe()->Y(); })},
      {"z", each(kLengthStep, [](auto& at) { return at.Pe()->Z(); })},
      {"range", each(kLengthStep, [](auto& at) { return at.SRe; })},
      {"theta", each(kHundredth, [](auto& at) { return at.THETAe; })},
      {"beta", each(kHundredth, [](auto& at) { return at.BETAe; })}};
}

}  // namespace aqdata::report

#include "tools/aqdata/noise.h"

#include <fmt/format.h>

#include <algorithm>

#include "tools/aqdata/files.h"

namespace aqdata {

Json metricJson(const aq::RecordMetrics& record, aq::AQ_METRIC_TYPE type) {
  if (!record.has(type)) return nullptr;
  const double value = record.value(type);
  if (isBand(type) || type == aq::AQ_METRIC_INTEG) return static_cast<int>(value);
  return value;
}

std::string flagsText(int flags) {
  constexpr std::pair<int, const char*> kFlags[] = {{aq::AQ_INTEG_MAX, "max"},
                                                    {aq::AQ_INTEG_FST, "first"},
                                                    {aq::AQ_INTEG_LST, "last"},
                                                    {aq::AQ_INTEG_2ND, "2nd"}};
  std::string text;
  for (const auto& [flag, word] : kFlags) {
    if ((flags & flag) == 0) continue;
    if (!text.empty()) text += ' ';
    text += word;
  }
  return text;
}

std::string recordsText(const std::vector<int>& records) {
  constexpr std::size_t kMost = 20;  // runs of numbers
  std::vector<std::string> runs;
  for (std::size_t i = 0; i < records.size();) {
    if (runs.size() == kMost) {
      runs.push_back(fmt::format("and {} more", records.size() - i));
      break;
    }
    std::size_t end = i + 1;
    while (end < records.size() && records[end] == records[end - 1] + 1) ++end;
    runs.push_back(end - i == 1 ? fmt::format("{}", records[i])
                                : fmt::format("{}-{}", records[i], records[end - 1]));
    i = end;
  }
  return fmt::format("{}", fmt::join(runs, ", "));
}

std::string bandText(std::int16_t band) {
  const std::string_view label = aq::bandLabel(band);  // as in B34/2.5kHz
  const std::size_t slash = label.find('/');
  if (slash == label.npos) return fmt::format("{}", band);
  std::string frequency(label.substr(slash + 1));
  const std::size_t unit = frequency.find_first_of("kH");
  if (unit != frequency.npos) frequency.insert(unit, " ");
  return fmt::format("{} ({})", band, frequency);
}

std::string lastGoodBandText(int band) {
  if (band == 0) return "no band from 29 up is masked";
  if (band == aq::AQ_INVALID_LEVEL) return "no good band";
  return fmt::format("last good band {}", bandText(static_cast<std::int16_t>(band)));
}

const aq::AQ_MaskRow* rowOf(const aq::AQ_MaskMap* map, std::int16_t record) {
  return map != nullptr && map->contains(record) ? map->heldRow(record).get() : nullptr;
}

std::string toneText(const aq::ToneCorrection& tone) {
  std::string text = tone.band == 0 ? "no tone"
                                    : fmt::format("tone correction of {:.2f} dB for band {}",
                                                  tone.correction, bandText(tone.band));
  if (tone.lastBand == 40) return text;
  return tone.rows.empty()
             ? fmt::format("{}, since band 19 (80 Hz) does not count", text)
             : fmt::format("{}, computed up to band {}", text, bandText(tone.lastBand));
}

std::string csvField(const std::string& text) {
  if (text.find_first_of(",\"\n") == text.npos) return text;
  std::string quoted = "\"";
  for (const char c : text) quoted.append(c == '"' ? 2 : 1, c);
  return quoted + '"';
}

std::vector<std::string> chosenHistories(Session& session) {
  const std::vector<std::string> named = session.files;
  std::vector<std::string> files = chosenFiles(session);
  std::erase_if(files, [&](const std::string& file) {
    return std::find(named.begin(), named.end(), file) == named.end() &&
           aq::kindOfFile(file) != aq::FileKind::SpectralTimeHistory;
  });
  if (files.empty() && session.status() == kFine) throw Failure("found no history");
  return files;
}

}  // namespace aqdata

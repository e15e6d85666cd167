#include "tools/aqdata/findings.h"

#include <fmt/format.h>

#include <algorithm>

namespace aqdata {

void FileFindings::take(const aq::Finding& finding, std::size_t limit) {
  auto count = std::find_if(counts.begin(), counts.end(),
                            [&finding](const Count& known) { return known.kind == &finding.kind; });
  if (count == counts.end()) count = counts.insert(count, {&finding.kind});
  if (++count->count > limit) return;
  ++count->kept;
  (finding.place.line == 0 ? whole : kept).push_back(finding);
}

std::vector<const aq::Finding*> FileFindings::listed() const {
  std::vector<const aq::Finding*> all;
  for (const auto* const findings : {&whole, &kept}) {
    for (const aq::Finding& finding : *findings) all.push_back(&finding);
  }
  return all;
}

std::string placeText(const aq::FindingPlace& place) {
  std::string text;
  if (place.line != 0) text += fmt::format(", line {}", place.line);
  if (place.field != 0) text += fmt::format(", field {}", place.field);
  if (place.record) text += fmt::format(", record {}", *place.record);
  if (place.band) text += fmt::format(", band {}", *place.band);
  return text;
}

Json findingJson(const aq::Finding& finding) {
  Json json{{"name", finding.kind.name}, {"severity", aq::severityText(finding.kind.severity)}};
  const auto addPlace = [&json](const char* key, auto value) {
    if (value != 0) json[key] = value;
  };
  addPlace("line", finding.place.line);
  addPlace("field", finding.place.field);
  if (finding.place.record) json["record"] = *finding.place.record;
  if (finding.place.band) json["band"] = *finding.place.band;
  json["message"] = finding.message;
  return json;
}

}  // namespace aqdata

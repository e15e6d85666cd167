#include "tools/aqdata/runs.h"

#include <aq/text/number_text.h>
#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include "tools/aqdata/files.h"
#include "tools/aqdata/path.h"

namespace aqdata {
namespace {

/// Throws `Failure` unless all records have levels in the same bands without a gap, since a history
/// file lists the bands only once.
void expectWhole(const History& read, const std::string& file) {
  const auto fail = [&](std::int32_t record, const std::string& why) {
    throw Failure(
        fmt::format("{}, record {}: {}, but in a history file all records have the same bands",
                    aq::escaped(file), record, why));
  };
  const auto& history = *read.model;
  std::optional<std::pair<std::int16_t, std::int16_t>> bands;
  for (const auto& [record, spectrum] : history) {
    if (!bands) bands = {spectrum->LowBand(), spectrum->HighBand()};
    const auto low = std::min(bands->first, spectrum->LowBand());
    for (std::int32_t band = low; band <= std::max(bands->second, spectrum->HighBand()); ++band) {
      if (!spectrum->contains(band)) fail(record, fmt::format("band {} has no level", band));
    }
    if (low < bands->first || spectrum->HighBand() > bands->second) {
      fail(record, "other records have no level in some of its bands");
    }
  }
}

bool isColumns(const std::string& path) { return aq::upperCased(path).ends_with(".SPC"); }

}  // namespace

std::vector<std::string> RunFiles::all() const {
  std::vector<std::string> files;
  for (const std::string& file : {history, map, geometry}) {
    if (!file.empty()) files.push_back(file);
  }
  return files;
}

std::string nextToHistory(const std::string& history, std::string_view ending) {
  const std::filesystem::path path = pathOf(history);
  const std::string name = path.filename().string();
  constexpr std::string_view kEnding = ".sth.csv";
  const bool usual = name.ends_with(kEnding);
  const std::string stem =
      usual ? name.substr(0, name.size() - kEnding.size()) : path.stem().string();
  return (path.parent_path() / pathOf(stem + std::string(ending))).string();
}

Run openRun(const RunFiles& files) {
  Run run{openHistory(files.history)};
  if (!files.map.empty()) run.map = openMapOf(run.history, files.history, files.map);
  if (!files.geometry.empty()) run.geometry = openGeometry(files.geometry);
  return run;
}

std::vector<std::string> writeRun(const Session& session, Run& run, const RunFiles& to,
                                  const std::string& from) {
  for (const std::string& file : to.all()) expectFree(session, file);
  std::vector<std::string> notes =
      writeHistory(session, run.history, to.history, from, isColumns(to.history));
  if (run.map) {
    run.map->header->sGenerationFile = to.history;
    // Without a date here, the date of the history file is written.
    run.map->header->aqGenerationDateTime = std::make_shared<aq::AQ_Time>();
    writeAt<aq::AQ_DataMask>(to.map, run.map->header, *run.map->model);
  }
  if (run.geometry) {
    run.geometry->header->STHFileName = to.history;
    run.geometry->header->STHFileDateTime = {};
    writeAt<aq::AQ_DataGTH>(to.geometry, run.geometry->header, *run.geometry->model);
  }
  return notes;
}

void addComment(Run& run, const std::string& line) {
  run.history.header->cCommentLines->Add(line);
  if (run.map) run.map->header->cCommentLines->Add(line);
  if (run.geometry) run.geometry->header->colCommentLines->Add(line);
}

std::vector<std::string> writeHistory(const Session& session, const History& read,
                                      const std::string& to, const std::string& from,
                                      bool inColumns) {
  aq::AQ_SpectralTimeHistory& history = *read.model;
  expectKnownWords(read, from);
  std::vector<std::string> notes;
  if (!inColumns) expectWhole(read, from);
  expectFree(session, to);
  if (inColumns) {
    aq::AQ_DataSPC file;
    file.RecordLength(read.recordLength);
    file.setHeader(read.header);
    expectGood(file.writeFile(to, history), file);
    if (!aq::keepsDates(history)) {
      notes.emplace_back("dates are derived from the start date and advance at midnight");
    }
    return notes;
  }
  writeAt<aq::AQ_DataSTH>(to, read.header, history);
  if (history.startTime()->CurrentDate() != 0) notes.emplace_back("dates are left out");
  if (read.recordLength != 0.5) {
    notes.push_back(fmt::format("the record length of {} s is left out", read.recordLength));
  }
  return notes;
}

}  // namespace aqdata

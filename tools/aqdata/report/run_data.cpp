#include "tools/aqdata/report/run_data.h"

#include <aq/core/error.h>
#include <aq/text/number_text.h>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <initializer_list>

#include "tools/aqdata/event.h"
#include "tools/aqdata/files.h"
#include "tools/aqdata/findings.h"
#include "tools/aqdata/noise.h"
#include "tools/aqdata/path.h"
#include "tools/aqdata/report/model_data.h"
#include "tools/aqdata/report/packed.h"
#include "tools/aqdata/runs.h"
#include "tools/aqdata/sheet.h"

namespace aqdata::report {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kListed = 20;  // how many findings of one kind are listed per file

std::string nameOf(const std::string& path) { return pathOf(path).filename().string(); }

/// The recorded name of a file without its folders, which "/" or "\" may separate.
std::string bareName(const std::string& recorded) {
  return recorded.substr(recorded.find_last_of("/\\") + 1);
}

/// Assembles a run from its history and companion files.
class RunReader {
 public:
  RunReader(std::string path, const RunChoice& choice)
      : path_(std::move(path)), choice_(choice), history_(openHistory(path_)) {}

  RunData read() && {
    addHeader();
    run_.document["findings"] = Json::array();
    run_.checked = addFindings(path_);
    readMap();
    addRecords();
    addMetrics();
    readAmbient();
    readGeometry();
    readMicrophone();
    readPositions();
    computeGeometry();
    return std::move(run_);
  }

 private:
  /// The file that the user named, otherwise the first one next to the history with one of these
  /// endings; empty if there is none, or if `alone` excludes it.
  [[nodiscard]] std::string source(const std::string& named,
                                   std::initializer_list<std::string_view> endings) const {
    if (!named.empty() || choice_.alone) return named;
    std::error_code error;
    for (const std::string_view ending : endings) {
      std::string name = nextToHistory(path_, ending);
      if (fs::is_regular_file(pathOf(name), error)) return name;
    }
    return {};
  }

  /// Calls `use(file)`, unless `file` is empty, and adds the file's name and findings. If that
  /// fails, throws for a file that the user named; for any other, the page reports the failure and
  /// leaves the file out.
  template <class Use>
  void with(const std::string& file, const char* what, bool named, const Use& use) {
    if (file.empty()) return;
    try {
      addFindings(file);
      use(file);
      run_.document["sources"].push_back({{"what", what}, {"file", nameOf(file)}});
    } catch (const std::exception& error) {
      if (named) throw Failure(failureText(file, error));
      goWithout(file, failureText(file, error));
    }
  }

  void goWithout(const std::string& file, const std::string& why) {
    run_.complaints.push_back(why);
    run_.document["findings"].push_back(
        {{"file", nameOf(file)}, {"name", "not-used"}, {"severity", "error"}, {"message", why}});
    ++errors_;
    run_.summary["errors"] = errors_;
  }

  aq::Checked addFindings(const std::string& file) {
    FileFindings found;
    aq::Checked checked = aq::checkWithHistory(
        file, [&](const aq::Finding& finding) { found.take(finding, kListed); });
    for (const aq::Finding* const finding : found.listed()) {
      Json json = findingJson(*finding);
      json["file"] = nameOf(file);
      run_.document["findings"].push_back(std::move(json));
    }
    for (const FileFindings::Count& count : found.counts) {
      this->count(count.kind->severity, count.count);
      if (count.count == count.kept) continue;
      run_.document["findings"].push_back(
          {{"file", nameOf(file)},
           {"name", count.kind->name},
           {"severity", aq::severityText(count.kind->severity)},
           {"message", fmt::format("{} more", count.count - count.kept)}});
    }
    return checked;
  }

  void count(aq::Severity severity, std::size_t more) {
    if (severity == aq::Severity::Error) errors_ += more;
    if (severity == aq::Severity::Warning) warnings_ += more;
    run_.summary["errors"] = errors_;
    run_.summary["warnings"] = warnings_;
  }

  void addHeader() {
    const std::string name = nameOf(path_);
    const Json header = headerOf({aq::kindOfFile(path_), history_});
    run_.summary = {{"name", name},
                    {"file", path_},
                    {"project", header.value("project", "")},
                    {"microphone", header.value("microphone", "")},
                    {"records", 0},
                    {"errors", 0},
                    {"warnings", 0}};
    run_.document = {
        {"name", name}, {"file", path_}, {"header", header}, {"sources", Json::array()}};
  }

  void readMap() {
    with(source(choice_.map, {".mask.csv"}), "masks", !choice_.map.empty(),
         [this](const std::string& file) { map_ = openMapOf(history_, path_, file).model; });
  }

  void addRecords() {
    const auto [low, high] = bandsOf(*history_.model);
    std::vector<double> numbers;
    std::vector<double> times;
    std::vector<double> relative;
    std::vector<double> levels;
    std::string masks;
    for (const auto& [record, spectrum] : *history_.model) {
      const aq::AQ_Time time = spectrum->timeValue();
      if (numbers.empty()) run_.summary["begin"] = timeText(time);
      numbers.push_back(record);
      times.push_back(tidySeconds(time.TODseconds()));
      relative.push_back(time.RelSeconds());
      appendLevels(*spectrum, low, high, levels);
      if (map_) appendMasks(rowOf(map_.get(), record), low, high, masks);
    }
    run_.summary["records"] = numbers.size();
    Json& document = run_.document;
    document["low"] = low;
    document["high"] = high;
    document["records"] = packed(numbers, 1);
    document["time"] = packed(times, kTimeStep);
    document["relative"] = packed(relative, kHundredth);
    document["levels"] = packed(levels, kHundredth, true);
    if (map_) document["masks"] = packedQuarters(masks);
  }

  /// Leaves metrics out if they cannot be computed, for example if records share a time stamp.
  void addMetrics() {
    try {
      const aq::HistoryMetrics metrics = aq::historyMetrics(*history_.model, map_.get());
      addValues(metrics);
      addEvent(metrics);
    } catch (const aq::Error& error) {
      goWithout(path_, fmt::format("{}: no metrics: {}", aq::escaped(path_), error.what()));
    }
  }

  void addValues(const aq::HistoryMetrics& metrics) {
    Json& values = run_.document["metrics"];
    for (const MetricName& name : kMetricNames) {
      if (name.type == aq::AQ_METRIC_LGB && !map_) continue;
      const bool whole = isBand(name.type) || name.type == aq::AQ_METRIC_INTEG;
      values[name.text] =
          packedFrom(metrics.records, whole ? 1 : kHundredth, [&](const aq::RecordMetrics& record) {
            return record.has(name.type) ? record.value(name.type) : kNoValue;
          });
    }
    std::vector<double> background;
    for (const auto& [record, spectrum] : *history_.model) {
      appendBackground(aq::toneCorrection(*spectrum, rowOf(map_.get(), record)), background);
    }
    run_.document["background"] = packed(background, kHundredth);
  }

  void addEvent(const aq::HistoryMetrics& metrics) {
    double loudest = kNoValue;
    for (const aq::RecordMetrics& record : metrics.records) {
      if (record.has(aq::AQ_METRIC_AWT)) {
        loudest = std::fmax(loudest, record.value(aq::AQ_METRIC_AWT));
      }
    }
    const int firstRecord = metrics.records.empty() ? 0 : metrics.records.front().record;
    const Json event = eventJson(metrics.event, firstRecord);
    run_.summary["LAmax"] = loudest;
    if (!event.is_null()) {
      for (const char* const key : {"EPNL", "PNLTM", "maximum"}) run_.summary[key] = event[key];
      run_.summary["lower_bound"] = event["first"].is_null() || event["last"].is_null();
    }
    std::vector<std::string> words = eventWords(metrics, event, *history_.model, map_.get());
    for (std::string& missing : missingWords(metrics, map_.get())) {
      words.push_back(std::move(missing));
    }
    run_.document["event"] = event;
    run_.document["words"] = words;
  }

  void readAmbient() {
    with(source(choice_.ambient, {".ambient.ssr.csv", ".ssr.csv"}), "ambient",
         !choice_.ambient.empty(), [this](const std::string& file) {
           const SpectrumRecord read = openSpectrum(file);
           const std::int16_t low = read.model->LowBand();
           std::vector<double> levels;
           appendLevels(*read.model, low, read.model->HighBand(), levels);
           run_.document["ambient"] = {{"low", low}, {"levels", packed(levels, kHundredth, true)}};
         });
  }

  void readGeometry() {
    with(source(choice_.geometry, {".gth.csv"}), "geometry", !choice_.geometry.empty(),
         [this](const std::string& file) {
           const Geometry read = openGeometry(file);
           run_.document["geometry"] = geometryJson(*read.model);
           recordedPositions_ = bareName(read.header->PTHFileName);
           recordedMicrophone_ = bareName(read.header->MICFileName);
         });
  }

  /// `found` or, if it is empty, the file `name` next to the history, from which the geometry was
  /// made; empty if there is none, or if `alone` excludes it.
  [[nodiscard]] std::string recorded(const std::string& found, const std::string& name) const {
    if (!found.empty() || name.empty() || choice_.alone) return found;
    std::error_code error;
    const fs::path beside = pathOf(path_).parent_path() / pathOf(name);
    return fs::is_regular_file(beside, error) ? beside.string() : "";
  }

  void readMicrophone() {
    const std::string file = source(choice_.microphone, {".mic.csv"});
    with(recorded(file, recordedMicrophone_), "microphone", !choice_.microphone.empty(),
         [this](const std::string& name) {
           const aq::AQ_Microphone at = *openMicrophone(name).model;
           membrane_ = membraneOf(at);
           run_.document["microphone"] = {
               {"x", at.X}, {"y", at.Y}, {"z", at.Z}, {"height", at.Height}};
         });
  }

  void readPositions() {
    const std::string file = source(choice_.positions, {".pth.csv", ".tspi.csv"});
    with(recorded(file, recordedPositions_), "positions", !choice_.positions.empty(),
         [this](const std::string& name) {
           const FlownPath flown = openPath(name);
           positions_ = flown.positions;
           run_.document["positions"] = positionsJson(*positions_);
           run_.document["positions"]["rejected"] = flown.rejected;
         });
  }

  void computeGeometry() {
    if (choice_.celsius.empty() || run_.document.contains("geometry")) return;
    const auto why = [this](std::string_view reason) {
      goWithout(path_, fmt::format("{}: no geometry: {}", aq::escaped(path_), reason));
    };
    if (!positions_ || !membrane_) return why("there are no positions or no microphone");
    try {
      const double celsius = aq::doubleFrom(choice_.celsius);
      const auto points = aq::emissionGeometry(*positions_, *membrane_, *history_.model, celsius);
      run_.document["geometry"] = geometryJson(*points);
      run_.document["geometry"]["celsius"] = celsius;
    } catch (const aq::Error& error) {
      why(error.what());
    }
  }

  std::string path_;
  const RunChoice& choice_;
  History history_;
  std::shared_ptr<aq::AQ_MaskMap> map_;
  std::shared_ptr<aq::AQ_Position> membrane_;
  std::shared_ptr<aq::AQ_PositionTimeHistory> positions_;
  std::string recordedPositions_;
  std::string recordedMicrophone_;
  std::size_t errors_ = 0;
  std::size_t warnings_ = 0;
  RunData run_;
};

}  // namespace

bool RunChoice::isOfOneRun() const {
  return !(map.empty() && positions.empty() && geometry.empty());
}

RunData runData(const std::string& history, const RunChoice& choice) {
  return RunReader(history, choice).read();
}

void addFinding(RunData& run, const std::string& file, const aq::Finding& finding) {
  Json json = findingJson(finding);
  json["file"] = nameOf(file);
  run.document["findings"].push_back(std::move(json));
  const char* const count = finding.kind.severity == aq::Severity::Error ? "errors" : "warnings";
  run.summary[count] = run.summary[count].get<std::size_t>() + 1;
}

}  // namespace aqdata::report

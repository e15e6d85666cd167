#include "tools/aqdata/workbook.h"

#include <aq/core/band_label.h>
#include <aq/core/error.h>
#include <aq/text/number_text.h>
#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <utility>

#include "tools/aqdata/event.h"
#include "tools/aqdata/noise.h"
#include "tools/aqdata/path.h"
#include "tools/aqdata/sheet.h"
#include "tools/aqdata/text.h"

#ifdef AQDATA_XLSX
#include <xlsxwriter.h>
#endif

namespace aqdata {

#ifndef AQDATA_XLSX

class Workbook::Sheets {};
Workbook::Workbook(std::string path) {
  throw Failure(
      fmt::format("{}: this program was built without libxlsxwriter and cannot write workbooks",
                  aq::escaped(path)));
}
Workbook::~Workbook() = default;
std::vector<std::string> Workbook::add(const Run&, const std::string&) { return {}; }
void Workbook::finish() {}

#else

namespace {

namespace fs = std::filesystem;

/// Replaces bytes that are not UTF-8 with U+FFFD, since a workbook cannot hold them.
std::string validText(const std::string& text) {
  const auto isPlain = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  if (std::all_of(text.begin(), text.end(), isPlain)) return text;
  return Json::parse(Json(text).dump(-1, ' ', false, Json::error_handler_t::replace))
      .get<std::string>();
}

/// An unused sheet name made from a file's name: up to 31 characters, with _ for those that are not
/// printable ASCII or that a sheet name must not contain. Adds the name, in capitals, to `taken`.
std::string sheetNameOf(const std::string& file, std::set<std::string>& taken) {
  constexpr std::size_t kMost = 31;
  std::string name = pathOf(file).filename().string();
  for (const std::string_view ending : {".sth.csv", ".csv", ".spc", ".DAT"}) {
    if (aq::upperCased(name).ends_with(aq::upperCased(ending))) {
      name.resize(name.size() - ending.size());
      break;
    }
  }
  for (char& c : name) {
    const bool plain =
        static_cast<unsigned char>(c) >= 0x20 && static_cast<unsigned char>(c) < 0x7F;
    if (!plain || std::string_view("[]:*?/\\'").find(c) != std::string_view::npos) c = '_';
  }
  if (name.empty() || aq::upperCased(name) == "HISTORY") name += '_';
  name.resize(std::min(name.size(), kMost));
  for (int number = 2; !taken.insert(aq::upperCased(name)).second; ++number) {
    const std::string end = fmt::format("~{}", number);
    name.resize(std::min({name.size(), kMost - end.size(), name.rfind('~')}));
    name += end;
  }
  return name;
}

constexpr const char* kRunColumns[] = {"sheet",   "file",  "project", "microphone",
                                       "records", "begin", "end"};

}  // namespace

class Workbook::Sheets {
 public:
  explicit Sheets(std::string path)
      : path_(std::move(path)),
        part_(pathOf(path_)
                  .replace_filename(pathOf(".aq-" + pathOf(path_).filename().string()))
                  .string()),
        book_(workbook_new(part_.c_str())) {
    if (book_ == nullptr) throw Failure("out of memory while writing a workbook");
    heading_ = workbook_add_format(book_);
    format_set_bold(heading_);
    level_ = numberFormat(0);
    masked_ = {level_, numberFormat(0xFCE4D6), numberFormat(0xFFF2CC), numberFormat(0xDDEBF7)};
    runs_ = sheet("Runs");
    headers_ = sheet("Headers");
    taken_ = {"RUNS", "HEADERS"};
    writeHeadings();
  }
  Sheets(const Sheets&) = delete;
  Sheets& operator=(const Sheets&) = delete;
  ~Sheets() {
    if (book_ == nullptr) return;
    workbook_close(book_);
    std::error_code error;
    fs::remove(pathOf(part_), error);
  }

  std::vector<std::string> add(const Run& run, const std::string& file) {
    std::vector<std::string> notes;
    aq::HistoryMetrics metrics;
    try {
      metrics = aq::historyMetrics(*run.history.model, run.map ? run.map->model.get() : nullptr);
    } catch (const aq::Error& error) {
      notes.push_back(fmt::format("without metrics: {}", error.what()));
    }
    const std::string name = sheetNameOf(file, taken_);
    writeRun(run, name, metrics);
    writeHeader(name, "history", headerOf({aq::FileKind::SpectralTimeHistory, run.history}));
    if (run.map) writeHeader(name, "map", headerOf({aq::FileKind::MaskingMap, *run.map}));
    writeSummary(run, name, file, metrics);
    return notes;
  }

  void finish() {
    worksheet_set_column(runs_, 0, 1, 24, nullptr);
    worksheet_set_column(headers_, 0, 2, 24, nullptr);
    worksheet_set_column(headers_, 3, 3, 60, nullptr);
    const lxw_error result = workbook_close(std::exchange(book_, nullptr));
    std::error_code error;
    if (result == LXW_NO_ERROR && !failed_) fs::rename(pathOf(part_), pathOf(path_), error);
    if (result == LXW_NO_ERROR && !failed_ && !error) return;
    std::error_code ignored;
    fs::remove(pathOf(part_), ignored);
    throw Failure(fmt::format("cannot write {}: {}", aq::escaped(path_),
                              error     ? error.message()
                              : failed_ ? "a text is too long for a cell"
                                        : lxw_strerror(result)));
  }

 private:
  lxw_format* numberFormat(lxw_color_t background) {
    lxw_format* const format = workbook_add_format(book_);
    format_set_num_format(format, "0.00");
    if (background != 0) format_set_bg_color(format, background);
    return format;
  }
  lxw_worksheet* sheet(const std::string& name) {
    lxw_worksheet* const made = workbook_add_worksheet(book_, name.c_str());
    if (made == nullptr)
      throw Failure(fmt::format("no sheet can have the name {}", aq::shown(name)));
    return made;
  }

  void put(lxw_worksheet* to, lxw_row_t row, std::size_t column, const Json& value,
           lxw_format* format = nullptr) {
    const auto at = static_cast<lxw_col_t>(column);
    if (value.is_null()) return;
    if (value.is_number()) {
      worksheet_write_number(to, row, at, value.get<double>(), format);
      return;
    }
    const std::string text =
        validText(value.is_string() ? value.get<std::string>() : cellText(value));
    if (!text.empty() &&
        worksheet_write_string(to, row, at, text.c_str(), format) != LXW_NO_ERROR) {
      failed_ = true;
    }
  }

  void writeHeadings() {
    std::size_t column = 0;
    for (const char* name : kRunColumns) put(runs_, 0, column++, name, heading_);
    for (const char* name : kEventKeys) put(runs_, 0, column++, name, heading_);
    column = 0;
    for (const char* name : {"sheet", "part", "key", "value"})
      put(headers_, 0, column++, name, heading_);
    worksheet_freeze_panes(runs_, 1, 1);
    worksheet_freeze_panes(headers_, 1, 0);
  }

  /// Writes one row per value, except null; a list has one row per entry.
  void writeHeader(const std::string& name, const char* part, const Json& header) {
    for (const auto& [key, value] : header.items()) {
      for (const Json& entry : value.is_array() ? value : Json{value}) {
        if (entry.is_null()) continue;
        ++headerRow_;
        put(headers_, headerRow_, 0, name);
        put(headers_, headerRow_, 1, part);
        put(headers_, headerRow_, 2, key);
        put(headers_, headerRow_, 3, entry);
      }
    }
  }

  void writeSummary(const Run& run, const std::string& name, const std::string& file,
                    const aq::HistoryMetrics& metrics) {
    aq::AQ_SpectralTimeHistory& history = *run.history.model;
    const auto at = [&](bool last) -> std::string {
      std::string text;
      for (const auto& [record, spectrum] : history) {
        text = timeText(spectrum->timeValue());
        if (!last) break;
      }
      return text;
    };
    ++runRow_;
    std::size_t column = 0;
    for (const Json& cell : {Json(name), Json(file), Json(run.history.header->sProjectName),
                             Json(run.history.header->sMicrophoneID), Json(history.Count()),
                             Json(at(false)), Json(at(true))}) {
      put(runs_, runRow_, column++, cell);
    }
    const Json event =
        eventJson(metrics.event, metrics.records.empty() ? 0 : metrics.records.front().record);
    if (event.is_null()) return;
    for (const char* key : kEventKeys) {
      const Json& cell = event[key];
      put(runs_, runRow_, column++, cell, cell.is_number_float() ? level_ : nullptr);
    }
  }

  void writeRun(const Run& run, const std::string& name, const aq::HistoryMetrics& metrics) {
    lxw_worksheet* const own = sheet(name);
    const Sheet rows = sheetOf({aq::FileKind::SpectralTimeHistory, run.history});
    std::size_t column = 0;
    for (const std::string& heading : rows.columns) put(own, 0, column++, heading, heading_);
    for (std::int32_t band = rows.low; band <= rows.high; ++band) {
      const std::string_view label = aq::bandLabel(static_cast<std::int16_t>(band));
      put(own, 0, column++, label.empty() ? fmt::format("B{}", band) : std::string(label),
          heading_);
    }
    put(own, 0, column++, "last_good_band", heading_);
    put(own, 0, column++, "masks", heading_);
    for (const MetricName& metric : kMetricNames) put(own, 0, column++, metric.text, heading_);
    worksheet_freeze_panes(own, 1, 1);
    for (std::size_t i = 0; i < rows.rows.size(); ++i) {
      writeRecord(own, static_cast<lxw_row_t>(i + 1), rows, rows.rows[i], run,
                  i < metrics.records.size() ? &metrics.records[i] : nullptr);
    }
    if (!metrics.records.empty()) draw(own, name, rows);
  }

  void writeRecord(lxw_worksheet* own, lxw_row_t row, const Sheet& sheet, const Sheet::Row& record,
                   const Run& run, const aq::RecordMetrics* metrics) {
    std::size_t column = 0;
    for (const Json& cell : record.cells) put(own, row, column++, cell);
    const auto number = static_cast<std::int16_t>(record.number);
    const auto masks =
        run.map && run.map->model->contains(number) ? run.map->model->Row(number) : nullptr;
    std::string letters;
    for (std::size_t i = 0; sheet.band(i) <= sheet.high; ++i) {
      const std::int16_t band = sheet.band(i);
      const bool decided = masks && masks->contains(band);
      const aq::AQ_Mask decision = decided ? masks->decision(band) : aq::AQ_Mask();
      const auto mode = std::clamp<std::int32_t>(decision.MaskMode(), 0, 3);
      if (i < record.bands.size()) {
        put(own, row, column, record.bands[i], masked_[static_cast<std::size_t>(mode)]);
      }
      if (masks) letters += (letters.empty() ? "" : " ") + (decided ? decision.MaskString() : "..");
      ++column;
    }
    put(own, row, column++, masks ? Json(masks->LGB()) : Json());
    put(own, row, column++, masks ? Json(letters) : Json());
    for (const MetricName& metric : kMetricNames) {
      const Json value = metrics == nullptr ? Json() : metricJson(*metrics, metric.type);
      put(own, row, column++, value, value.is_number_float() ? level_ : nullptr);
    }
  }

  /// Adds a chart of the A-weighted level and PNLT over the time of day in seconds.
  void draw(lxw_worksheet* own, const std::string& name, const Sheet& rows) {
    lxw_chart* const chart = workbook_add_chart(book_, LXW_CHART_SCATTER_STRAIGHT);
    const auto last = static_cast<lxw_row_t>(rows.rows.size());
    const std::size_t metrics =
        rows.columns.size() + static_cast<std::size_t>(rows.high - rows.low + 1) + 2;
    constexpr lxw_col_t kSeconds = 2;
    for (std::size_t i = 0; i < std::size(kMetricNames); ++i) {
      const MetricName& metric = kMetricNames[i];
      if (metric.type != aq::AQ_METRIC_AWT && metric.type != aq::AQ_METRIC_PNLT) continue;
      lxw_chart_series* const series = chart_add_series(chart, nullptr, nullptr);
      const auto column = static_cast<lxw_col_t>(metrics + i);
      chart_series_set_categories(series, name.c_str(), 1, kSeconds, last, kSeconds);
      chart_series_set_values(series, name.c_str(), 1, column, last, column);
      chart_series_set_name(series, metric.text);
    }
    chart_axis_set_name(chart->x_axis, "time of day in s");
    chart_axis_set_name(chart->y_axis, "dB");
    if (!rows.rows.empty()) {
      chart_axis_set_min(chart->x_axis, rows.rows.front().cells[kSeconds].get<double>());
      chart_axis_set_max(chart->x_axis, rows.rows.back().cells[kSeconds].get<double>());
    }
    worksheet_insert_chart(own, last + 2, 0, chart);
  }

  std::string path_;
  std::string part_;
  lxw_workbook* book_;
  lxw_format* heading_ = nullptr;
  lxw_format* level_ = nullptr;
  std::vector<lxw_format*> masked_ = {};  // cell formats by mask mode
  lxw_worksheet* runs_ = nullptr;
  lxw_worksheet* headers_ = nullptr;
  std::set<std::string> taken_ = {};  // names of sheets, in capitals
  lxw_row_t runRow_ = 0;
  lxw_row_t headerRow_ = 0;
  bool failed_ = false;
};

Workbook::Workbook(std::string path) : sheets_(std::make_unique<Sheets>(std::move(path))) {}
Workbook::~Workbook() = default;
std::vector<std::string> Workbook::add(const Run& run, const std::string& file) {
  return sheets_->add(run, file);
}
void Workbook::finish() { sheets_->finish(); }

#endif

}  // namespace aqdata

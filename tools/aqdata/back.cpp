#include "tools/aqdata/back.h"

#include <aq/core/error.h>
#include <aq/describe/headers.h>
#include <aq/text/number_text.h>
#include <fmt/format.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <map>
#include <type_traits>
#include <utility>

#include "aq/text/date_text.h"
#include "aq/text/fields.h"
#include "aq/text/line_reader.h"
#include "tools/aqdata/files.h"
#include "tools/aqdata/path.h"
#include "tools/aqdata/session.h"

namespace aqdata {
namespace {

constexpr double kNoLevel = std::numeric_limits<double>::quiet_NaN();

std::string recordedName(const std::string& path) {
  return aq::escaped(aq::fileInformation()->recordedName(path));
}

// Rows of a table or a document.

/// The time of day in `text`, or `seconds` if `text` is empty or differs by 6 ms or more.
aq::AQ_Time timeOf(const std::string& text, double seconds) {
  aq::AQ_Time time;
  if (!text.empty()) {
    time.TODstring(text);
    // Text is rounded by at most 5 ms; if the two differ by more, `seconds` decides.
    if (std::abs(time.TODseconds() - seconds) < 0.006 || std::isnan(seconds)) return time;
  }
  time.assignSeconds(seconds, 0);
  return time;
}

/// Collects records by number, and makes a measurement from them at the end.
template <class Read, class Object>
class NumberedRows {
 public:
  [[nodiscard]] Read finish() && {
    Read read;
    read.header = std::make_shared<typename decltype(read.header)::element_type>();
    read.model = std::make_shared<typename decltype(read.model)::element_type>();
    for (auto& [number, object] : objects_) store(*read.model, number, std::move(object));
    return read;
  }

 protected:
  Object& at(std::int32_t number) {
    auto& object = objects_[number];
    if (!object) object = std::make_shared<Object>();
    return *object;
  }
  [[nodiscard]] bool has(std::int32_t number) const { return objects_.contains(number); }
  [[nodiscard]] std::size_t count() const { return objects_.size(); }

 private:
  static void store(aq::AQ_SpectralTimeHistory& history, std::int32_t record,
                    std::shared_ptr<Object> object) {
    history.spectrum(static_cast<std::int16_t>(record), std::move(object));
  }
  static void store(aq::AQ_MaskMap& map, std::int32_t record, std::shared_ptr<Object> object) {
    map.Row(static_cast<std::int16_t>(record), std::move(object));
  }
  static void store(aq::AQ_PositionTimeHistory& positions, std::int32_t place,
                    std::shared_ptr<Object> object) {
    positions.Position(place, std::move(object));
  }

  std::map<std::int32_t, std::shared_ptr<Object>> objects_;
};

class HistoryRows : public NumberedRows<History, aq::AQ_Spectrum> {
 public:
  void time(std::int16_t record, const aq::AQ_Time& stamp, double relative) {
    if (has(record)) return;
    at(record).lazyTime().assign(stamp.TODseconds(),
                                 static_cast<double>(static_cast<float>(relative)));
  }
  void level(std::int16_t record, std::int16_t band, double level) {
    if (!std::isnan(level)) at(record).SPL(band, level);
  }
};

/// The time from the first stamp to the second, in seconds; 0.5 if that is 0 or 1000 or more, or if
/// there is no second stamp.
double lengthOf(const aq::AQ_SpectralTimeHistory& history) {
  auto at = history.begin();
  if (at == history.end()) return 0.5;
  const double first = (*at).second->lazyTime().secondsOfDay();
  if (++at == history.end()) return 0.5;
  const double step = (*at).second->lazyTime().secondsOfDay() - first;
  const double length =
      std::round(std::fmod(step + aq::kSecondsPerDay, aq::kSecondsPerDay) * 1e3) / 1e3;
  return length > 0 && length < 1000 ? length : 0.5;
}

/// Sets what a table lacks. The start time is the first stamp, and the reference time, of type
/// OTHER, follows from the relative times. Throws `Failure` if they imply different references.
void giveTimes(History& read) {
  aq::AQ_SpectralTimeHistory& history = *read.model;
  history.AverageMethod(aq::AQ_NA);
  bool first = true;
  double reference = 0;
  for (const auto& [record, spectrum] : history) {
    const aq::AQ_Time time = spectrum->timeValue();
    const double own = time.TODseconds() - time.RelSeconds();
    if (first) history.startTime()->assignSeconds(time.TODseconds(), 0);
    if (first) reference = own;
    if (std::abs(std::remainder(own - reference, aq::kSecondsPerDay)) > 0.02) {
      throw Failure(
          fmt::format("record {}: its relative time implies a different reference "
                      "than the records before it",
                      record));
    }
    first = false;
  }
  history.ReferenceTime()->assignSeconds(
      std::round((reference - std::floor(reference / aq::kSecondsPerDay) * aq::kSecondsPerDay) *
                 1e3) /
          1e3,
      0);
  history.ReferenceType(aq::AQ_OTHER);
}

class MapRows : public NumberedRows<MaskingMap, aq::AQ_MaskRow> {
 public:
  void mask(std::int16_t record, std::int16_t lastGoodBand, std::int16_t band,
            const std::string& letters) {
    aq::AQ_MaskRow& row = at(record);
    row.LGB(lastGoodBand);
    aq::AQ_Mask mask;
    mask.MaskString(letters);
    if (mask.MaskString() != letters) {
      throw aq::Error(aq::ErrorCode::InvalidValue,
                      "expected the letters of a mask, found " + aq::shown(letters));
    }
    row.store(band, mask);
  }
};

class PositionRows : public NumberedRows<Positions, aq::AQ_Position> {
 public:
  void position(const aq::AQ_Time& time, double x, double y, double z) {
    aq::AQ_Position& position = at(static_cast<std::int32_t>(count()) + 1);
    position.lazyTime().assign(time.TODseconds());
    position.X(x);
    position.Y(y);
    position.Z(z);
  }
};

// Tables.

constexpr std::string_view kHistoryTable = "record,time,time_s,relative_s,band,level_db";
constexpr std::string_view kMapTable = "record,last_good_band,band,mask";
constexpr std::string_view kPositionTable = "position,time,time_s,x,y,z";

/// Reads all rows of a table. Throws `Failure`, which names the line, or `ReadFailure`, which also
/// names the field.
template <class Rows, class Take>
Rows rowsOf(aq::LineReader& lines, const Take& take) {
  Rows rows;
  while (lines.next()) {
    aq::FieldReader fields(lines);
    try {
      take(rows, fields);
    } catch (const aq::Error& error) {
      throw Failure(fmt::format("line {}: {}", lines.number(), error.what()));
    }
    if (!fields.rest().empty()) {
      throw Failure(fmt::format("line {}: expected as many fields as the heading has, found more",
                                lines.number()));
    }
  }
  return rows;
}

double levelIn(aq::FieldReader& fields) {
  return fields.convert("a level", [](std::string_view text) {
    return text.empty() ? kNoLevel : aq::doubleFrom(text);
  });
}

aq::AQ_Time timeIn(aq::FieldReader& fields) {
  const std::string text(fields.text("a time of day"));
  return timeOf(text, fields.number("seconds after midnight"));
}

std::optional<Measurement> tableFrom(const std::string& path) {
  aq::LineReader lines(path);
  if (!lines.next()) return std::nullopt;
  const std::string comment = "Made from the table " + recordedName(path);
  if (lines.line() == kHistoryTable) {
    History read = rowsOf<HistoryRows>(lines, [](HistoryRows& rows, aq::FieldReader& fields) {
                     const std::int16_t record = fields.int16("a record number");
                     const aq::AQ_Time time = timeIn(fields);
                     rows.time(record, time, fields.number("relative seconds"));
                     const std::int16_t band = fields.int16("a band number");
                     rows.level(record, band, levelIn(fields));
                   }).finish();
    read.header->sGeneratedBy = "aqdata";
    read.header->cCommentLines->Add(comment);
    giveTimes(read);
    read.recordLength = lengthOf(*read.model);
    return Measurement{aq::FileKind::SpectralTimeHistory, std::move(read)};
  }
  if (lines.line() == kMapTable) {
    MaskingMap read = rowsOf<MapRows>(lines, [](MapRows& rows, aq::FieldReader& fields) {
                        const std::int16_t record = fields.int16("a record number");
                        const std::int16_t lastGoodBand = fields.int16("a last good band");
                        const std::int16_t band = fields.int16("a band number");
                        rows.mask(record, lastGoodBand, band, std::string(fields.text("a mask")));
                      }).finish();
    read.header->sGeneratedBy = "aqdata";
    read.header->cCommentLines->Add(comment);
    return Measurement{aq::FileKind::MaskingMap, std::move(read)};
  }
  if (lines.line() != kPositionTable) return std::nullopt;
  Positions read = rowsOf<PositionRows>(lines, [](PositionRows& rows, aq::FieldReader& fields) {
                     fields.skip(1, "a position's number");
                     const aq::AQ_Time time = timeIn(fields);
                     const double x = fields.number("x");
                     const double y = fields.number("y");
                     rows.position(time, x, y, fields.number("z"));
                   }).finish();
  read.header->sGeneratedBy = "aqdata";
  read.header->cCommentLines->Add(comment);
  return Measurement{aq::FileKind::PositionTimeHistory, std::move(read)};
}

// Documents.

void setFrom(const Json& value, std::string& text) { text = value.get<std::string>(); }
void setFrom(const Json& value, std::int16_t& number) { number = value.get<std::int16_t>(); }
void setFrom(const Json& value, std::int32_t& number) { number = value.get<std::int32_t>(); }
void setFrom(const Json& value, std::shared_ptr<aq::Collection<std::string>>& lines) {
  for (const Json& line : value) lines->Add(line.get<std::string>());
}
void setFrom(const Json& value, std::shared_ptr<aq::AQ_Time>& time) {
  if (value.is_null()) return;
  const std::string text =
      value.get<std::string>();  // mm/dd/yyyy hh:mm:ss; at midnight, only the date
  time->CurrentDate(aq::dateFrom(text.substr(0, text.find(' '))));
  if (text.find(' ') != text.npos) time->TODstring(text.substr(text.find(' ') + 1));
}

template <class Header>
void setHeader(const Json& document, Header& header) {
  const auto values = document.find("header");
  if (values == document.end()) return;
  aq::describe::forMembers<Header>([&](const auto& member) {
    if constexpr (requires { setFrom(Json(), header.*member.member); }) {
      const auto value = values->find(member.about.key);
      if (member.about.key.empty() || value == values->end()) return;
      setFrom(*value, header.*member.member);
    }
  });
}

double numberIn(const Json& row, const char* key) {
  return row.at(key).is_null() ? kNoLevel : row.at(key).get<double>();
}

aq::AQ_Time timeIn(const Json& row) {
  return timeOf(row.at("time").is_null() ? "" : row.at("time").get<std::string>(),
                row.at("time_s").get<double>());
}

std::string wordIn(const Json& document, const char* key) {
  const auto header = document.find("header");
  return header == document.end() ? std::string() : header->value(key, std::string());
}

template <class Enumeration>
Enumeration memberIn(const Json& document, const char* key) {
  const std::string word = wordIn(document, key);
  Enumeration value{};
  if (!aq::setByWord(value, word)) {
    throw Failure(fmt::format("header, {}: expected a known word, found {}", key, aq::shown(word)));
  }
  return value;
}

History historyFrom(const Json& document) {
  HistoryRows rows;
  const auto low = document.at("low_band").get<std::int16_t>();
  for (const Json& row : document.at("rows")) {
    const auto record = row.at("record").get<std::int16_t>();
    rows.time(record, timeIn(row), numberIn(row, "relative_s"));
    std::int32_t band = low;
    for (const Json& level : row.at("level_db")) {
      rows.level(record, static_cast<std::int16_t>(band++),
                 level.is_null() ? kNoLevel : level.get<double>());
    }
  }
  History read = std::move(rows).finish();
  setHeader(document, *read.header);
  aq::AQ_SpectralTimeHistory& history = *read.model;
  history.AverageMethod(memberIn<aq::AQ_AverageMethod>(document, "averaging"));
  history.TimeStampType(memberIn<aq::AQ_TimeStampType>(document, "time_stamp"));
  history.ReferenceType(memberIn<aq::AQ_RefTimeType>(document, "reference_time_type"));
  history.startTime()->TODstring(wordIn(document, "start_time"));
  history.ReferenceTime()->TODstring(wordIn(document, "reference_time"));
  read.recordLength = lengthOf(history);
  return read;
}

MaskingMap mapFrom(const Json& document) {
  MapRows rows;
  const auto low = document.at("low_band").get<std::int16_t>();
  for (const Json& row : document.at("rows")) {
    std::int32_t band = low;
    for (const Json& letters : row.at("mask")) {
      rows.mask(row.at("record").get<std::int16_t>(), row.at("last_good_band").get<std::int16_t>(),
                static_cast<std::int16_t>(band++), letters.get<std::string>());
    }
  }
  MaskingMap read = std::move(rows).finish();
  setHeader(document, *read.header);
  return read;
}

Positions positionsFrom(const Json& document) {
  PositionRows rows;
  for (const Json& row : document.at("rows")) {
    rows.position(timeIn(row), row.at("x").get<double>(), row.at("y").get<double>(),
                  row.at("z").get<double>());
  }
  Positions read = std::move(rows).finish();
  setHeader(document, *read.header);
  return read;
}

std::optional<Measurement> documentFrom(const std::string& path) {
  std::ifstream file(pathOf(path), std::ios::binary);
  if (file.peek() != '{') return std::nullopt;
  const Json document = Json::parse(file);
  const std::string kind = document.value("kind", std::string());
  const auto found = document.find("rows");
  if (found == document.end() || !found->is_array() || found->empty()) {
    throw Failure("expected a document written by convert, found no rows");
  }
  const Json& rows = *found;
  if (rows.front().contains("level_db") && rows.front().contains("time")) {
    return Measurement{aq::FileKind::SpectralTimeHistory, historyFrom(document)};
  }
  if (rows.front().contains("mask")) {
    return Measurement{aq::FileKind::MaskingMap, mapFrom(document)};
  }
  if (rows.front().contains("position")) {
    return Measurement{aq::FileKind::PositionTimeHistory, positionsFrom(document)};
  }
  throw Failure(
      fmt::format("expected a history, a masking map or positions, found {}", aq::shown(kind)));
}

}  // namespace

std::optional<Measurement> backFrom(const std::string& path) {
  expectFile(path);
  expectOpens(path);
  const auto fail = [&](std::string_view why) {
    return Failure(fmt::format("{}: {}", aq::escaped(path), why));
  };
  try {
    if (auto document = documentFrom(path)) return document;
    return tableFrom(path);
  } catch (const aq::ReadFailure& failure) {
    aq::FileFailure told = failure.failure;
    told.file = path;
    throw Failure(told.message());
  } catch (const Json::parse_error& error) {
    throw fail(fmt::format("expected a JSON document, found an error at byte {}", error.byte));
  } catch (const Json::exception& error) {
    throw fail(fmt::format("expected a document written by convert: {}", error.what()));
  } catch (const std::exception& error) {
    throw fail(error.what());
  }
}

}  // namespace aqdata

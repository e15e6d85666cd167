// Times histories of 24 bands: reading and writing 32,767 records against plain loops over
// from_chars and to_chars, and reading a small file against merely loading its bytes.
#include <charconv>
#include <cmath>
#include <fstream>
#include <vector>

#include "bench/benches.h"
#include "bench/pairs.h"

namespace bench {
namespace {

constexpr std::int16_t kLow = 17;
constexpr std::int16_t kHigh = 40;

double level(int record, int band) {
  return std::round((70 + 20 * std::sin(record * 0.001) - band + record % 97 * 0.13) * 100) / 100;
}

struct PlainRecord {
  int number = 0;
  double timeOfDay = 0;
  double relative = 0;
  std::vector<double> levels;
};
using PlainRecords = std::vector<std::shared_ptr<PlainRecord>>;

const char* plainRecord(const char* at, const char* end, PlainRecord& record) {
  int hours = 0;
  int minutes = 0;
  double seconds = 0;
  at = std::from_chars(at, end, record.number).ptr + 1;
  at = std::from_chars(at, end, hours).ptr + 1;
  at = std::from_chars(at, end, minutes).ptr + 1;
  at = std::from_chars(at, end, seconds).ptr + 1;
  record.timeOfDay = hours * 3600 + minutes * 60 + seconds;
  at = std::from_chars(at, end, record.relative).ptr;
  record.levels.reserve(24);
  while (at != end && *at == ',') {
    double value = 0;
    at = std::from_chars(at + 1, end, value).ptr;
    record.levels.push_back(value);
  }
  return at;
}

PlainRecords plainRead(const std::string& path) {
  const std::string bytes = bytesOf(path);
  const char* const end = bytes.data() + bytes.size();
  const char* at = bytes.data() + bytes.find('\n', bytes.find("\nRec#") + 1) + 1;
  PlainRecords records;
  while (at < end) {
    auto record = std::make_shared<PlainRecord>();
    at = plainRecord(at, end, *record) + 1;
    records.push_back(std::move(record));
  }
  return records;
}

void plainWrite(const std::string& path, const PlainRecords& records) {
  std::string text;
  text.reserve(records.size() * 200);
  char field[64];
  const auto append = [&](char* end) { text.append(static_cast<char*>(field), end); };
  for (const auto& record : records) {
    append(std::to_chars(field, field + 64, record->number).ptr);
    const int second = static_cast<int>(record->timeOfDay);
    char separator = ',';
    for (const int pair : {second / 3600, second / 60 % 60, second % 60}) {
      text += separator;
      text += static_cast<char>('0' + pair / 10);
      text += static_cast<char>('0' + pair % 10);
      separator = ':';
    }
    const double fraction = record->timeOfDay - second;
    if (fraction != 0) append(std::to_chars(field, field + 64, fraction).ptr);
    text += ',';
    append(std::to_chars(field, field + 64, record->relative).ptr);
    for (const double value : record->levels) {
      text += ',';
      append(std::to_chars(field, field + 64, value, std::chars_format::fixed, 2).ptr);
    }
    text += '\n';
  }
  std::ofstream(path, std::ios::binary) << text;
}

// The same loops for fixed columns, in which a field ends with its column.

PlainRecords plainReadColumns(const std::string& path) {
  const std::string bytes = bytesOf(path);
  const char* const end = bytes.data() + bytes.size();
  const char* at = bytes.data() + bytes.find('\n', bytes.find("\nRecord ") + 1) + 1;
  const auto number = [](const char* from, const char* to, auto& value) {
    while (from != to && *from == ' ') ++from;
    std::from_chars(from, to, value);
  };
  PlainRecords records;
  while (at < end) {
    auto record = std::make_shared<PlainRecord>();
    int hours = 0;
    int minutes = 0;
    double seconds = 0;
    number(at, at + 6, record->number);
    number(at + 6, at + 10, hours);
    number(at + 11, at + 13, minutes);
    number(at + 14, at + 20, seconds);
    record->timeOfDay = hours * 3600 + minutes * 60 + seconds;
    number(at + 20, at + 32, record->relative);
    record->levels.resize(24);
    for (std::size_t band = 0; band < 24; ++band) {
      number(at + 32 + band * 8, at + 40 + band * 8, record->levels[band]);
    }
    at += 32 + 24 * 8 + 1;
    records.push_back(std::move(record));
  }
  return records;
}

void plainWriteColumns(const std::string& path, const PlainRecords& records) {
  std::string text;
  text.reserve(records.size() * 226);
  char field[64];
  const auto append = [&](std::size_t width, const char* end) {
    const auto size = static_cast<std::size_t>(end - field);
    text.append(width - size, ' ');
    text.append(static_cast<char*>(field), size);
  };
  for (const auto& record : records) {
    append(6, std::to_chars(field, field + 64, record->number).ptr);
    const int second = static_cast<int>(record->timeOfDay);
    char separator = ' ';
    text += ' ';
    for (const int pair : {second / 3600, second / 60 % 60, second % 60}) {
      text += separator;
      text += static_cast<char>('0' + pair / 10);
      text += static_cast<char>('0' + pair % 10);
      separator = ':';
    }
    char* const end =
        std::to_chars(field, field + 64, record->timeOfDay - second, std::chars_format::fixed, 3)
            .ptr;
    text.append(field + 1, end);
    append(12, std::to_chars(field, field + 64, record->relative, std::chars_format::fixed, 3).ptr);
    for (const double value : record->levels) {
      append(8, std::to_chars(field, field + 64, value, std::chars_format::fixed, 2).ptr);
    }
    text += '\n';
  }
  std::ofstream(path, std::ios::binary) << text;
}

void addColumns(const std::string& large) {
  const auto held = std::make_shared<History>();
  held->read(large);
  const std::string columns = fileInFolder("large.spc");
  const std::string out = fileInFolder("out.spc");
  const auto file = std::make_shared<aq::AQ_DataSPC>();
  file->setHeader(held->header);
  require(file->writeFile(columns, *held->history) == aq::AQ_DATA_OK, "writing columns");
  addPair(
      "columns 32,767 read",
      [=, kept = std::make_shared<PlainRecords>()] { *kept = plainReadColumns(columns); },
      [=, kept = std::make_shared<std::shared_ptr<aq::AQ_SpectralTimeHistory>>()] {
        aq::AQ_DataSPC reader;
        std::shared_ptr<aq::AQ_HeaderSTH> header;
        require(reader.readFile(columns, header, *kept) == aq::AQ_DATA_OK, "reading columns");
      });
  addPair(
      "columns 32,767 write",
      [=, records = std::make_shared<PlainRecords>(plainReadColumns(columns))] {
        plainWriteColumns(out, *records);
      },
      [=] { require(file->writeFile(out, *held->history) == aq::AQ_DATA_OK, "writing columns"); });
}

}  // namespace

std::shared_ptr<aq::AQ_SpectralTimeHistory> makeHistory(std::int16_t records) {
  auto history = std::make_shared<aq::AQ_SpectralTimeHistory>();
  for (int record = 1; record <= records; ++record) {
    auto spectrum = std::make_shared<aq::AQ_Spectrum>();
    for (std::int16_t band = kLow; band <= kHigh; ++band) spectrum->SPL(band, level(record, band));
    history->spectrum(static_cast<std::int16_t>(record), spectrum);
  }
  aq::AQ_Time start;
  start.TODstring("10:00:00");
  history->setTimeStamps(start, aq::AQ_MIDPT, start, aq::AQ_AMAX);
  return history;
}

void writeHistory(const std::string& path, aq::AQ_SpectralTimeHistory& history) {
  aq::AQ_DataSTH file;
  const auto header = std::make_shared<aq::AQ_HeaderSTH>();
  require(file.writeFile(path, header, history) == aq::AQ_DATA_OK, "writing a history");
}

void History::read(const std::string& path) {
  require(file.readFile(path, header, history) == aq::AQ_DATA_OK, "reading a history");
}

void addHistories() {
  const std::string large = fileInFolder("large.sth.csv");
  const std::string small = fileInFolder("small.sth.csv");
  const std::string out = fileInFolder("out.sth.csv");
  writeHistory(large, *makeHistory(32767));
  writeHistory(small, *makeHistory(100));
  const auto held = std::make_shared<History>();
  held->read(large);
  addPair(
      "history 32,767 read",
      [=, kept = std::make_shared<PlainRecords>()] { *kept = plainRead(large); },
      [=, kept = std::make_shared<History>()] { kept->read(large); });
  addPair(
      "history 32,767 write",
      [=, records = std::make_shared<PlainRecords>(plainRead(large))] {
        plainWrite(out, *records);
      },
      [=] {
        require(held->file.writeFile(out, held->header, *held->history) == aq::AQ_DATA_OK,
                "writing a history");
      });
  addPair(
      "history 100 read, to bare bytes", [=] { static_cast<void>(bytesOf(small)); },
      [=] { History().read(small); });
  addColumns(large);
}

}  // namespace bench

#include "aq/sdf/record_list.h"

#include <algorithm>
#include <utility>

#include "aq/sdf/numbers.h"
#include "aq/text/fields.h"

namespace aq::sdf {
namespace {

constexpr std::size_t kMeasurementSizes[] = {102, 140, 156};  // of revisions 1 to 3

std::string nameOf(RecordType type) {
  return std::string(layoutOf(type).name) + " (type " + std::to_string(static_cast<int>(type)) +
         ')';
}

std::string namesOf(std::initializer_list<RecordType> types) {
  std::string names;
  for (const RecordType type : types) names += (names.empty() ? "" : " or ") + nameOf(type);
  return names;
}

[[noreturn]] void failAt(std::initializer_list<RecordType> types, std::int64_t place,
                         const std::string& found) {
  failRead(0, 0, namesOf(types) + " at byte " + std::to_string(place), found);
}

}  // namespace

bool beginsRecording(std::string_view bytes) {
  constexpr std::string_view kBegin{"B\0\0\x0a", 4};
  return bytes.starts_with(kBegin);
}

RecordList::RecordList(std::vector<char> bytes) : bytes_(std::move(bytes)) {
  if (!std::string_view(bytes_.data(), bytes_.size()).starts_with(kMark)) {
    failRead(0, 0, "an analyzer recording, which begins with \"B\" and a NUL",
             shown({bytes_.data(), std::min(bytes_.size(), std::size_t{8})}));
  }
  const Record file = add(kMark.size(), {RecordType::File});
  static_cast<void>(add(kMark.size() + file.size(), {RecordType::Measurement}));
  requireRevision();
  addChain(kFile["num_of_DATA_HDR_record"], kFile["offset_of_DATA_HDR_record"], {RecordType::Data});
  addChain(kFile["num_of_VECTOR_record"], kFile["offset_of_VECTOR_record"], {RecordType::Vector});
  addChain(kFile["num_of_CHANNEL_record"], kFile["offset_of_CHANNEL_record"],
           {RecordType::Channel});
  addChain(kFile["num_of_UNIQUE_record"], kFile["offset_of_UNIQUE_record"], {RecordType::Unique});
  addChain(kFile["num_of_SCAN_STRUCT_record"], kFile["offset_of_SCAN_STRUCT_record"],
           {RecordType::Scans});
  addChain(kFile["num_of_XDATA_record"], kFile["offset_of_XDATA_record"], {RecordType::X});
  constexpr int kSinceMany = 3;
  if (revision() >= kSinceMany) {
    addChain(kFile["num_of_SCAN_BIG_record"], kFile["offset_of_SCAN_BIG_record"],
             {RecordType::ManyScans, RecordType::ScanVariable});
    addChain(kFile["num_of_COMMENT_record"], kFile["offset_of_COMMENT_record"],
             {RecordType::Comment});
  }
  const std::int32_t y = file.integer(kFile["offset_of_YDATA_record"]);
  if (y < 0) failAt({RecordType::Y}, y, "no such byte");
  static_cast<void>(add(static_cast<std::size_t>(y), {RecordType::Y}));
}

RecordList::RecordList(std::vector<char> bytes, const std::vector<Record>& records)
    : bytes_(std::move(bytes)) {
  for (const Record& record : records) records_[record.type()].push_back(record);
  for (const RecordType type : {RecordType::File, RecordType::Measurement, RecordType::Data}) {
    if (all(type).empty()) failRead(0, 0, "a record " + nameOf(type), "none");
  }
  requireRevision();
}

const std::vector<Record>& RecordList::all(RecordType type) const {
  static const std::vector<Record> kNone;
  const auto found = records_.find(type);
  return found == records_.end() ? kNone : found->second;
}

int RecordList::revision() const {
  const auto* const size =
      std::find(std::begin(kMeasurementSizes), std::end(kMeasurementSizes), measurement().size());
  return static_cast<int>(size - std::begin(kMeasurementSizes)) + 1;
}

std::size_t RecordList::measurementSize(std::size_t used) {
  const auto* const size =
      std::lower_bound(std::begin(kMeasurementSizes), std::end(kMeasurementSizes), used);
  return size != std::end(kMeasurementSizes) ? *size : used;
}

void RecordList::requireRevision() const {
  if (std::cmp_greater(revision(), std::size(kMeasurementSizes))) {
    measurement().fail("102, 140 or 156 bytes", std::to_string(measurement().size()) + " bytes");
  }
}

const Record& RecordList::add(std::size_t place, std::initializer_list<RecordType> types) {
  const auto at = static_cast<std::int64_t>(place);
  const std::string_view bytes(bytes_.data(), bytes_.size());
  if (place > bytes.size() || bytes.size() - place < kRecordHead) {
    failAt(types, at, "a file of " + std::to_string(bytes.size()) + " bytes");
  }
  const auto size = numberAt<std::int32_t>(bytes.data() + place + sizeof(std::int16_t));
  const auto room = bytes.size() - place;
  const Record head(bytes.substr(place, kRecordHead), kRecordHead, place);
  if (std::find(types.begin(), types.end(), head.type()) == types.end()) {
    failAt(types, at, "type " + std::to_string(numberAt<std::int16_t>(head.bytes().data())));
  }
  if (std::cmp_less(size, kRecordHead) || std::cmp_greater(size, room)) {
    failAt(types, at,
           "a record of " + std::to_string(size) + " bytes in a file of " +
               std::to_string(bytes.size()));
  }
  auto& records = records_[head.type()];
  records.emplace_back(bytes.substr(place), static_cast<std::size_t>(size), place);
  return records.back();
}

void RecordList::addChain(const Field& count, const Field& offset,
                          std::initializer_list<RecordType> types) {
  if (!file().has(count)) return;
  const std::uint32_t number = file().count(count);
  if (number == 0) return;
  const std::int32_t first = file().integer(offset);
  if (first < 0) failAt(types, first, std::to_string(number) + " of them at a negative offset");
  auto place = static_cast<std::size_t>(first);
  for (std::uint32_t i = 0; i < number; ++i) place += add(place, types).size();
}

std::int32_t RecordList::integer(const Record& record, const Field& field, int since,
                                 const Field& old) const {
  return record.integer(revision() >= since && record.has(field) ? field : old);
}

double RecordList::real(const Record& record, const Field& field, int since,
                        const Field& old) const {
  return record.real(revision() >= since && record.has(field) ? field : old);
}

}  // namespace aq::sdf

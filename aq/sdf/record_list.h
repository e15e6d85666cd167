#pragma once

#include <cstddef>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "aq/core/export.h"
#include "aq/sdf/record.h"

namespace aq::sdf {

/// The first two bytes of a recording.
inline constexpr std::string_view kMark{"B\0", 2};

/// Whether `bytes` starts with the mark and the type of a file header.
[[nodiscard]] AQ_API bool beginsRecording(std::string_view bytes);

/// The records of a recording, by type and in file order.
class AQ_API RecordList {
 public:
  /// Takes the records from the bytes of a file. Throws `ReadFailure` unless every record that the
  /// file header lists is of the expected type and ends within the file, and the measurement header
  /// has the size of a revision. Ignores bytes after these records, such as another recording.
  explicit RecordList(std::vector<char> bytes);

  /// Takes consecutive `records` in `bytes`, as read from a text file. Throws `ReadFailure` unless
  /// they include a file header, a measurement header with the size of a revision, and a data
  /// header.
  RecordList(std::vector<char> bytes, const std::vector<Record>& records);

  RecordList(const RecordList&) = delete;
  RecordList& operator=(const RecordList&) = delete;
  RecordList(RecordList&&) = default;
  RecordList& operator=(RecordList&&) = default;
  ~RecordList() = default;

  [[nodiscard]] const Record& file() const { return all(RecordType::File).front(); }
  [[nodiscard]] const Record& measurement() const { return all(RecordType::Measurement).front(); }

  /// The records of a type; empty if there are none.
  [[nodiscard]] const std::vector<Record>& all(RecordType type) const;

  /// The revision, 1 to 3, derived from the size of the measurement header, since the file header
  /// may give 0.
  [[nodiscard]] int revision() const;

  /// The size of the smallest measurement header that holds `used` bytes; `used` if none does.
  [[nodiscard]] static std::size_t measurementSize(std::size_t used);

  // The value of `field`, which replaces `old` from revision `since` on; before that, or if the
  // record lacks `field`, the value of `old`.
  [[nodiscard]] std::int32_t integer(const Record& record, const Field& field, int since,
                                     const Field& old) const;
  [[nodiscard]] double real(const Record& record, const Field& field, int since,
                            const Field& old) const;

 private:
  [[nodiscard]] const Record& add(std::size_t place, std::initializer_list<RecordType> types);
  void addChain(const Field& count, const Field& offset, std::initializer_list<RecordType> types);
  void requireRevision() const;

  std::vector<char> bytes_;
  std::map<RecordType, std::vector<Record>> records_;
};

}  // namespace aq::sdf

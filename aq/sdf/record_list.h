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

/// The two bytes that a recording begins with.
inline constexpr std::string_view kMark{"B\0", 2};

/// Whether bytes begin as a recording does.
[[nodiscard]] AQ_API bool beginsRecording(std::string_view bytes);

/// The records of a recording, by their type and in the order in which they follow each other.
class AQ_API RecordList {
 public:
  /// Of the bytes of a file. Every record that the file header counts has to be of the type that
  /// is expected there, and to end within the file; otherwise it throws `ReadFailure`. Bytes after
  /// them, a further recording among them, are not looked at.
  explicit RecordList(std::vector<char> bytes);

  /// Of records that follow each other in `bytes`, as they come from a text. A file header, a
  /// measurement header and a data header have to be among them.
  RecordList(std::vector<char> bytes, const std::vector<Record>& records);

  RecordList(const RecordList&) = delete;
  RecordList& operator=(const RecordList&) = delete;
  RecordList(RecordList&&) = default;
  RecordList& operator=(RecordList&&) = default;
  ~RecordList() = default;

  [[nodiscard]] const Record& file() const { return all(RecordType::File).front(); }
  [[nodiscard]] const Record& measurement() const { return all(RecordType::Measurement).front(); }

  /// The records of a type; none for one that there is not.
  [[nodiscard]] const std::vector<Record>& all(RecordType type) const;

  /// 1 to 3, told by the size of the measurement header: what the file header says may be 0.
  [[nodiscard]] int revision() const;

  /// The size of the measurement header whose fields end with byte `used`.
  [[nodiscard]] static std::size_t measurementSize(std::size_t used);

  // A field of `record` that revision `since` put in the place of `old`, which counts in older
  // files.
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

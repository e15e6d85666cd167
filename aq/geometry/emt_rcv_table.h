#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "aq/core/collection.h"
#include "aq/core/export.h"
#include "aq/geometry/emt_rcv_record.h"

namespace aq {

/// A series of emission and reception pairs, also available as columns. Records are shared with the
/// caller.
class AQ_API AQ_EmtRcvTable {
 public:
  using Column = std::shared_ptr<Collection<double>>;

  /// The record at a 1-based index; throws `InvalidIndex` out of range.
  [[nodiscard]] std::shared_ptr<AQ_EmtRcvRecord> Record(std::int32_t nRecord) const {
    return records_.Item(nRecord);
  }

  // Each call returns a new collection with one value per record: the times of emission or
  // reception in seconds after midnight, or the aircraft's coordinates in the length unit of its
  // positions. Throws `Overflow` if there are more than 32767 records, `ObjectNotSet` if one of
  // them is null.
  [[nodiscard]] Column T() const;
  [[nodiscard]] Column Tr() const;
  [[nodiscard]] Column X() const;
  [[nodiscard]] Column Y() const;
  [[nodiscard]] Column Z() const;

  /// The number of records. Throws `Overflow` above 32767.
  [[nodiscard]] std::int16_t Count() const;

  /// Appends a record and ignores the index: hosts rely on this.
  void Record(std::int32_t /*nRecord*/, std::shared_ptr<AQ_EmtRcvRecord> record) {
    records_.Add(std::move(record));
  }

 private:
  template <class Value>
  [[nodiscard]] Column column(const Value& value) const;

  Collection<std::shared_ptr<AQ_EmtRcvRecord>> records_;
};

}  // namespace aq

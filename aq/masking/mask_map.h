#pragma once

#include <cstdint>
#include <memory>

#include "aq/core/export.h"
#include "aq/detail/numbered_series.h"
#include "aq/masking/mask_row.h"

namespace aq {

/// The masking map of a measurement: one row per record, numbered like the records of the spectral
/// time history. Rows are shared with the caller, not copied.
class AQ_API AQ_MaskMap {
 public:
  /// A deep copy of rows 1 to `Count`. Throws `InvalidArgument` if one of them is missing.
  [[nodiscard]] std::shared_ptr<AQ_MaskMap> Copy() const;

  /// The row of a record. Reading throws `InvalidArgument` if there is none; storing replaces an
  /// existing one.
  [[nodiscard]] std::shared_ptr<AQ_MaskRow> Row(std::int16_t nRecord) const {
    return rows_.at(nRecord);
  }
  /// Like the getter, but returns a reference, so no ownership is shared.
  [[nodiscard]] const std::shared_ptr<AQ_MaskRow>& heldRow(std::int16_t nRecord) const {
    return rows_.at(nRecord);
  }
  void Row(std::int16_t nRecord, std::shared_ptr<AQ_MaskRow> row) {
    rows_.store(nRecord, std::move(row));
  }

  /// The number of rows. Throws `Overflow` above 32767.
  [[nodiscard]] std::int16_t Count() const { return rows_.count(); }

  /// Sets each row's last good band from its masks. Creates a default mask in each examined band
  /// that has none: bands 28 and 29, and those above up to the first masked one.
  void setLGB();

  /// A loop yields the stored rows as pairs of record number and row, in ascending order of record
  /// number. Storing a row invalidates iterators. `contains` creates nothing.
  [[nodiscard]] auto begin() const { return rows_.begin(); }
  [[nodiscard]] auto end() const { return rows_.end(); }
  [[nodiscard]] bool contains(std::int32_t number) const { return rows_.contains(number); }

 private:
  NumberedSeries<AQ_MaskRow, std::int16_t> rows_;
};

}  // namespace aq

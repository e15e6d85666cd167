#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "aq/core/export.h"
#include "aq/sdf/layout.h"

namespace aq::sdf {

/// The unit of values: their factor to SI units, and twice the exponents of mass, length, time,
/// current, temperature, luminous intensity, amount and plane angle.
struct UnitOfValues {
  std::string label;
  double factor = 1;
  std::array<int, 8> exponents{};

  /// Whether `exponents` has these values for mass, length and time, and 0 for the others.
  [[nodiscard]] bool isLike(int mass, int length, int time) const {
    return exponents == std::array<int, 8>{mass, length, time};
  }
  [[nodiscard]] bool isPressure() const { return isLike(2, -2, -4); }
  [[nodiscard]] bool isTime() const { return isLike(0, 0, 2); }
};

/// A view of one record in the bytes of a recording. A field that extends past the end of the
/// record counts as missing; reading it throws `ReadFailure`.
class AQ_API Record {
 public:
  /// `bytes` starts with the record, which has `size` bytes; for a record from a text file, it
  /// may hold fewer. `place` is the record's offset in the file; in a text file it has none.
  Record(std::string_view bytes, std::size_t size, std::optional<std::size_t> place);

  [[nodiscard]] RecordType type() const;
  [[nodiscard]] std::size_t size() const { return size_; }
  [[nodiscard]] const AnyLayout& layout() const { return layoutOf(type()); }
  [[nodiscard]] std::string_view bytes() const { return bytes_; }

  [[nodiscard]] bool has(const Field& field) const { return endOf(field) <= bytes_.size(); }

  // Array elements count from 0.
  [[nodiscard]] std::int32_t integer(const Field& field, std::size_t element = 0) const;
  [[nodiscard]] double real(const Field& field, std::size_t element = 0) const;
  /// The text up to its first NUL.
  [[nodiscard]] std::string_view text(const Field& field) const;
  [[nodiscard]] UnitOfValues unit(const Field& field) const;
  /// A unit or a window field, as a separate record without an offset.
  [[nodiscard]] Record part(const Field& field) const;

  /// An integer; throws `ReadFailure` if it is negative.
  [[nodiscard]] std::uint32_t count(const Field& field) const;

  /// Throws `ReadFailure` with the record's name, its offset if it has one, what was expected, such
  /// as "a domain", and what was found.
  [[noreturn]] void fail(const std::string& expected, const std::string& found) const;

 private:
  [[nodiscard]] const char* at(const Field& field, std::size_t element) const;

  std::string_view bytes_;
  std::size_t size_;
  std::optional<std::size_t> place_;
};

}  // namespace aq::sdf

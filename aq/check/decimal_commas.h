#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace aq {

/// Replaces decimal commas with points in the data lines of a history, where commas also separate
/// fields. Levels always have two decimals. The number of fields shows whether the time, the
/// relative time, both or neither have decimals; if that leaves two possibilities, the reference
/// time decides.
class DecimalCommas {
 public:
  /// Takes the bands and the reference time from the header lines.
  explicit DecimalCommas(std::span<const std::string> header);

  /// The data line with decimal points; unchanged if it has no decimal commas. Nothing if its times
  /// cannot be read in exactly one way.
  [[nodiscard]] std::optional<std::string> mended(const std::string& line);

  /// Whether any line had decimal commas.
  [[nodiscard]] bool any() const { return any_; }

 private:
  [[nodiscard]] std::optional<std::string> frontOf(std::span<const std::string_view> fields) const;
  [[nodiscard]] bool fits(const std::string& time, const std::string& relative) const;

  std::size_t bands_ = 0;
  std::optional<double> reference_;  // in seconds after midnight
  bool any_ = false;
};

}  // namespace aq

#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace aq {

/// Numbers of a history's data lines that were written with decimal commas, where commas divide
/// fields too. Levels have two decimals, always; what a line's time and relative time are follows
/// from the number of fields, and where that leaves two ways, from the reference time.
class DecimalCommas {
 public:
  /// Takes the lines of the header, for its bands and reference time.
  explicit DecimalCommas(std::span<const std::string> header);

  /// The data line with points; as it is when it has no decimal commas. Nothing when it may mean
  /// several things.
  [[nodiscard]] std::optional<std::string> mended(const std::string& line);

  /// Whether a line had decimal commas.
  [[nodiscard]] bool any() const { return any_; }

 private:
  [[nodiscard]] std::optional<std::string> frontOf(std::span<const std::string_view> fields) const;
  [[nodiscard]] bool fits(const std::string& time, const std::string& relative) const;

  std::size_t bands_ = 0;
  std::optional<double> reference_;  // in seconds of the day
  bool any_ = false;
};

}  // namespace aq

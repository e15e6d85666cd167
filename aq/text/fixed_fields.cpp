#include "aq/text/fixed_fields.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "aq/core/platform.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

std::string columnsText(Columns columns) {
  if (columns.last == std::string_view::npos) {
    return " from column " + std::to_string(columns.first) + " on";
  }
  return " in columns " + std::to_string(columns.first) + " to " + std::to_string(columns.last);
}

}  // namespace

std::string_view FixedFieldReader::takeRest(std::size_t first, const char* expected) {
  return take({first, std::string_view::npos}, expected);
}

void FixedFieldReader::expectEnd(std::size_t last) {
  const std::string_view rest = takeRest(last + 1, "nothing");
  if (!rest.empty()) fail("nothing");
}

void FixedFieldReader::fail(std::string expected) const {
  failRead(number_, field_, std::move(expected) + columnsText(columns_), shown(found_));
}

std::int64_t scaled(double value, int decimals, std::size_t width, const char* what) {
  const auto refuse = [&] {
    throw Error(ErrorCode::InvalidValue, std::string(what) + " does not fit in " +
                                             std::to_string(width) + " columns with " +
                                             std::to_string(decimals) + " decimals");
  };
  const double scale = decimals == 2 ? 1e2 : 1e3;
  if (!(std::abs(value) * scale < 1e12)) refuse();
  const std::int64_t rounded = scaledBy(value, scale);
  std::int64_t most = 1;  // the smallest magnitude that does not fit
  for (std::size_t place = rounded < 0 ? 2 : 1; place < width; ++place) most *= 10;
  if (std::abs(rounded) >= most) refuse();
  return rounded;
}

char* putScaled(char* at, std::int64_t value, int decimals, std::size_t width) {
  char* const end = at + width;
  std::fill(at, end, ' ');
  auto left = static_cast<std::uint64_t>(std::abs(value));
  char* place = end;
  for (int digits = 0; left != 0 || digits <= decimals; ++digits) {
    if (digits == decimals && decimals != 0) *--place = '.';
    *--place = static_cast<char>('0' + left % 10);
    left /= 10;
  }
  if (value < 0) *--place = '-';
  return end;
}

void appendRight(std::string& text, std::string_view field, std::size_t width) {
  text.append(width - std::min(width, field.size()), ' ');
  text += field;
}

void endLine(std::string& text, std::size_t begin) {
  while (text.size() > begin && text.back() == ' ') text.pop_back();
  text += platform::lineEnd;
}

}  // namespace aq

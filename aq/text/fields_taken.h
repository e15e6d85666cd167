#pragma once

#include <cstddef>

namespace aq {

/// How many fields were taken from the start of a line, and how many characters, including the
/// comma after the last field if there is one.
struct FieldsTaken {
  std::size_t count = 0;
  std::size_t length = 0;
  bool last = false;  // whether the line ended with the last field taken
};

}  // namespace aq

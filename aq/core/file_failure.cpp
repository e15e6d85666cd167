#include "aq/core/file_failure.h"

#include "aq/core/error.h"

namespace aq {

std::string FileFailure::message() const {
  std::string text = escaped(file);
  if (line != 0) text += ", line " + std::to_string(line);
  if (field != 0) text += ", field " + std::to_string(field);
  if (!text.empty()) text += ": ";
  return text + "expected " + expected + ", found " + found;
}

}  // namespace aq

#include "aq/core/file_failure.h"

namespace aq {

std::string FileFailure::message() const {
  std::string text = file;
  if (line != 0) text += ", line " + std::to_string(line);
  if (field != 0) text += ", field " + std::to_string(field);
  return text + ": expected " + expected + ", found " + found;
}

}  // namespace aq

#include "aq/text/file_class.h"

#include <new>
#include <utility>

#include "aq/core/platform.h"
#include "aq/text/fields.h"

namespace aq {
namespace {

/// The failure that the current exception reports; rethrows an exception that reports none.
FileFailure failureInFlight() {
  try {
    throw;
  } catch (ReadFailure& failed) {
    return std::move(failed.failure);
  } catch (const platform::SystemError& error) {
    return {.file = {}, .expected = error.wanted(), .found = error.what()};
  }
}

}  // namespace

AQ_DataMessage FileClass::failed(const std::string& name) {
  try {
    FileFailure failure = failureInFlight();
    failure.file = name;
    lastFailure_ = std::move(failure);
  } catch (const std::bad_alloc&) {
    lastFailure_ = {
        .file = {}, .expected = "more memory", .found = "none left"};  // needs no memory
  }
  return AQ_DATA_FILE_ERROR;
}

AQ_DataMessage FileClass::replace(const std::string& name, const std::string& text) {
  return withFile(name, [&](const std::string& file) { platform::replaceFile(file, text); });
}

AQ_DataMessage FileClass::append(const std::string& name, const std::string& text) {
  return withFile(name, [&](const std::string& file) { platform::appendToFile(file, text); });
}

}  // namespace aq

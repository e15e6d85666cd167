#include "aq/text/file_class.h"

#include <new>
#include <utility>

#include "aq/core/platform.h"
#include "aq/text/fields.h"

namespace aq {
namespace {

FileFailure namedFailure(FileFailure failure, const std::string& file) {
  failure.file = file;
  return failure;
}

FileFailure namedFailure(const platform::SystemError& error, const std::string& file) {
  return namedFailure({.file = {}, .expected = error.wanted(), .found = error.what()}, file);
}

// Words short enough to need no memory.
FileFailure outOfMemory() { return {.file = {}, .expected = "more memory", .found = "none left"}; }

}  // namespace

/// Turns the exception in flight into the last failure; one that is no reader's own goes on.
AQ_DataMessage FileClass::failed(const std::string& file) {
  try {
    throw;
  } catch (const ReadFailure& failure) {
    lastFailure_ = namedFailure(failure.failure, file);
  } catch (const platform::SystemError& error) {
    lastFailure_ = namedFailure(error, file);
  } catch (const std::bad_alloc&) {
    lastFailure_ = outOfMemory();
  }
  return AQ_DATA_FILE_ERROR;
}

AQ_DataMessage FileClass::replace(const std::string& file, const std::string& text) {
  return reading(file, [&] { platform::replaceFile(file, text); });
}

AQ_DataMessage FileClass::append(const std::string& file, const std::string& text) {
  return reading(file, [&] { platform::appendToFile(file, text); });
}

}  // namespace aq

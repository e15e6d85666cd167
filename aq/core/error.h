#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "aq/core/export.h"

namespace aq {

/// What kind of fault an `Error` reports.
enum class ErrorCode {
  InvalidArgument,     ///< no entry with that key, no such label, or text of another form
  InvalidIndex,        ///< no entry at that index
  InvalidValue,        ///< a value that has no text form, such as a time of day of 90,000 s
  TypeMismatch,        ///< a value that does not convert to the requested type
  Overflow,            ///< a value outside the range of the requested type
  ObjectNotSet,        ///< an object is required and missing
  MemberNotSupported,  ///< the object has no such member
};

/// The only exception type that the data model throws. The object that threw is unchanged unless
/// the operation says otherwise. Readers of files do not throw it: they return
/// `AQ_DATA_FILE_ERROR`.
class AQ_API Error : public std::runtime_error {
 public:
  Error(ErrorCode code, const std::string& message) : std::runtime_error(message), code_(code) {}

  [[nodiscard]] ErrorCode code() const noexcept { return code_; }

 private:
  ErrorCode code_;
};

/// `text` with its control bytes escaped; letters of any encoding are kept.
[[nodiscard]] AQ_API std::string escaped(std::string_view text);

/// `text` as messages show it: in quotes, unprintable bytes escaped, cut at 60 characters.
[[nodiscard]] AQ_API std::string shown(std::string_view text);

}  // namespace aq

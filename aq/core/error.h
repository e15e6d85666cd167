#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "aq/core/export.h"

namespace aq {

/// What kind of fault an `Error` reports.
enum class ErrorCode {
  InvalidArgument,     ///< no such entry or label, malformed text, or unsuitable arguments
  InvalidIndex,        ///< no entry at that index
  InvalidValue,        ///< a value that is not allowed, or a time of day that cannot be written
  TypeMismatch,        ///< a value that does not convert to the requested type
  Overflow,            ///< a value or a count outside the range of its type
  ObjectNotSet,        ///< a required object is missing
  MemberNotSupported,  ///< the object has no such member
};

/// The only exception type that the data model throws. A function that throws leaves its object
/// unchanged unless its comment says otherwise. Readers of files do not throw it: they return
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

/// `text` as messages show it: in quotes, with every byte but printable ASCII escaped, cut at 60
/// characters.
[[nodiscard]] AQ_API std::string shown(std::string_view text);

}  // namespace aq

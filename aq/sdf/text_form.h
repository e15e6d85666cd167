#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// The text form of a recording, shared by the writer and the reader.
namespace aq::sdf::form {

inline constexpr std::size_t kDots = 39;         // how many are in the line above a record
inline constexpr std::size_t kValueColumn = 30;  // the column where values begin, counted from 0

// The names of the fields above the values of a trace.
inline constexpr std::string_view kData = "data";
inline constexpr std::string_view kVector = "vector";
inline constexpr std::string_view kScan = "scan";
inline constexpr std::string_view kScanVariable = "scanVariable";
inline constexpr std::string_view kPoints = "points";

inline constexpr std::string_view kRecordType = "recordType";
inline constexpr std::string_view kRecordSize = "recordSize";

/// `text` in double quotes, with control characters and backslashes escaped, as in `\x0a`, so that
/// it fits on one line.
[[nodiscard]] std::string quoted(std::string_view text);

/// The number that `text` represents, which may be NaN or infinite. Throws in the same cases as
/// `doubleFrom`.
[[nodiscard]] double storedFrom(std::string_view text);

/// The text that `quoted` turned into `value`; also accepts a value without quotes.
[[nodiscard]] std::string unquoted(std::string_view value);

}  // namespace aq::sdf::form

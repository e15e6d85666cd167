#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "aq/core/export.h"

namespace aq::sdf {

/// A coded number, the word that the instrument prints for it, and another word that readers
/// accept, if there is one.
struct Code {
  std::int16_t number;
  std::string_view word;
  std::string_view otherWord = {};
};

/// The codes of a field. Readers also accept each word without `affix`, a prefix or suffix that the
/// words share, such as "_DATA".
struct Codes {
  std::span<const Code> codes;
  std::string_view affix;
};

/// What `numberOf` returns for an unknown word.
inline constexpr std::int16_t kUnknownCode = -99;

/// The word for `number`; empty if there is none.
[[nodiscard]] AQ_API std::string_view wordOf(const Codes& codes, std::int32_t number);

/// The number of a word; `kUnknownCode` if there is none. Ignores case, and takes any character
/// other than a letter or a digit as an underscore.
[[nodiscard]] std::int16_t numberOf(const Codes& codes, std::string_view word);

/// How a field is stored. Numbers are big-endian; text ends at its first NUL, if it has one.
enum class Type : std::uint8_t { Short, Long, Float, Double, Byte, Text, Unit, Window };

/// A field of a record.
struct Field {
  std::string_view name;
  std::size_t first;  ///< its first byte in the record, counted from 1
  Type type;
  std::size_t count = 1;  ///< number of array elements, or of bytes in a text field
  const Codes* codes = nullptr;
};

/// The size of one element in bytes; a text field is a single element of `count` bytes.
[[nodiscard]] constexpr std::size_t sizeOf(const Field& field) {
  switch (field.type) {
    case Type::Short: return 2;
    case Type::Long:
    case Type::Float: return 4;
    case Type::Double: return 8;
    case Type::Byte: return 1;
    case Type::Unit: return 22;
    case Type::Window: return 24;
    default: return field.count;
  }
}

/// The offset of the byte after a field in its record, counted from 0.
[[nodiscard]] constexpr std::size_t endOf(const Field& field) {
  const std::size_t elements = field.type == Type::Text ? 1 : field.count;
  return field.first - 1 + elements * sizeOf(field);
}

}  // namespace aq::sdf

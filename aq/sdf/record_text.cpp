#include "aq/sdf/record_text.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "aq/sdf/numbers.h"
#include "aq/sdf/text_form.h"
#include "aq/text/fields.h"
#include "aq/text/number_text.h"

namespace aq::sdf {
namespace {

/// A field found by name, with the offset of its first byte in the record.
struct Target {
  const Field* field = nullptr;
  std::size_t at = 0;
};

/// Splits a name such as `pwrOfChan[1]` into the name of the field and the index of the element.
std::pair<std::string_view, std::size_t> elementOf(std::string_view name) {
  const std::size_t bracket = name.find('[');
  if (bracket == name.npos || !name.ends_with(']')) return {name, 0};
  const std::string_view digits = name.substr(bracket + 1, name.size() - bracket - 2);
  try {
    return {name.substr(0, bracket), byteFrom(digits)};
  } catch (const Error&) {
    return {name, 0};
  }
}

Target targetIn(std::span<const Field> fields, std::string_view name, std::size_t begin) {
  const std::size_t dot = name.find('.');
  const auto [plain, element] = elementOf(name.substr(0, dot));
  const auto field = std::find_if(fields.begin(), fields.end(), [plain = plain](const Field& one) {
    return upperCased(one.name) == upperCased(plain);
  });
  if (field == fields.end() || element >= field->count) return {};
  const std::size_t at = begin + field->first - 1;
  const auto parts = partsOf(*field);
  if (parts.empty() != (dot == name.npos)) return {};
  if (!parts.empty()) return targetIn(parts, name.substr(dot + 1), at);
  return {&*field, at + element * sizeOf(*field)};
}

/// Converts `value` to a number for the field; throws `ReadFailure` for the line if it is not one.
template <class Conversion>
auto converted(const Field& field, std::string_view value, std::size_t line,
               const Conversion& conversion) {
  try {
    return conversion(value);
  } catch (const Error& error) {
    const std::string expected = "a number for " + std::string(field.name);
    failRead(line, 2, expectedFor(expected.c_str(), error), shown(value));
  }
}

bool isNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("+-0123456789") == text.npos;
}

void put(std::string& bytes, const Target& target, std::string_view value, std::size_t line) {
  const Field& field = *target.field;
  char* const at = bytes.data() + target.at;
  const auto integer = [&](const auto& conversion) {
    const std::string word = form::unquoted(value);
    if (field.codes != nullptr && !isNumber(trimmed(word))) {
      return static_cast<decltype(conversion(value))>(numberOf(*field.codes, trimmed(word)));
    }
    return converted(field, value, line, conversion);
  };
  switch (field.type) {
    case Type::Short: return putNumber(at, integer(int16From));
    case Type::Long: return putNumber(at, integer(int32From));
    case Type::Byte: return putNumber(at, static_cast<std::int8_t>(integer(int16From)));
    case Type::Float:
      return putNumber(at, floatOf(converted(field, value, line, form::storedFrom)));
    case Type::Double: return putNumber(at, converted(field, value, line, form::storedFrom));
    default: break;
  }
  const std::string text = form::unquoted(value);
  text.copy(at, field.count);
}

}  // namespace

NamedValue namedValue(std::string_view line) {
  std::size_t end = std::min(line.find("  "), line.find(':'));
  if (end == line.npos && line.size() > form::kValueColumn) end = form::kValueColumn;
  // A colon or a pair of blanks may be part of the value.
  const std::size_t blank = line.find(' ');
  if (end == line.npos || blank < end) end = blank;
  if (end == line.npos || end == 0) return {};
  return {line.substr(0, end), trimmed(line.substr(line[end] == ':' ? end + 1 : end))};
}

void RecordText::begin(const AnyLayout& layout) {
  const auto last = std::max_element(
      layout.fields.begin(), layout.fields.end(),
      [](const Field& one, const Field& other) { return endOf(one) < endOf(other); });
  Part part{&layout, std::string(last == layout.fields.end() ? kRecordHead : endOf(*last), '\0')};
  putNumber(part.bytes.data(), static_cast<std::int16_t>(layout.type));
  parts_.push_back(std::move(part));
}

void RecordText::field(std::string_view name, std::string_view value, std::size_t line) {
  if (parts_.empty() || value.empty()) return;
  Part& part = parts_.back();
  static constexpr Field kSize{form::kRecordSize, 3, Type::Long};
  if (upperCased(name) == upperCased(form::kRecordSize)) {
    const std::int32_t size = converted(kSize, value, line, int32From);
    if (std::cmp_less(size, kRecordHead)) failRead(line, 2, "a size of 6 or more", shown(value));
    part.size = static_cast<std::size_t>(size);
    return;
  }
  const Target target = targetIn(part.layout->fields, name, 0);
  if (target.field == nullptr) return;
  put(part.bytes, target, value, line);
  part.used = std::max(part.used, target.at + sizeOf(*target.field));
}

/// The size given in the text file, or else the size that the record's fields need.
std::size_t RecordText::sizeOfRecord(const Part& part) {
  if (part.size != 0) return part.size;
  switch (part.layout->type) {
    case RecordType::Measurement: return RecordList::measurementSize(part.used);
    case RecordType::Scans:
    case RecordType::ScanVariable:
      return part.bytes.size() + 1;  // beyond the header: values follow
    default: return std::max(part.used, kRecordHead);
  }
}

RecordList RecordText::take() const {
  std::size_t size = 0;
  for (const Part& part : parts_) size += part.bytes.size();
  std::vector<char> bytes;
  bytes.reserve(size);
  std::vector<Record> records;
  for (const Part& part : parts_) {
    const std::size_t place = bytes.size();
    bytes.insert(bytes.end(), part.bytes.begin(), part.bytes.end());
    records.emplace_back(std::string_view(bytes.data() + place, part.bytes.size()),
                         sizeOfRecord(part), std::nullopt);
  }
  return {std::move(bytes), records};
}

}  // namespace aq::sdf

#include "aq/sdf/record.h"

#include <algorithm>

#include "aq/sdf/numbers.h"
#include "aq/text/fields.h"

namespace aq::sdf {

Record::Record(std::string_view bytes, std::size_t size, std::optional<std::size_t> place)
    : bytes_(bytes.substr(0, size)), size_(size), place_(place) {}

RecordType Record::type() const {
  constexpr std::int16_t kLastUnique = 2000;
  const auto type = numberAt<std::int16_t>(bytes_.data());
  const bool unique = type >= static_cast<std::int16_t>(RecordType::Unique) && type <= kLastUnique;
  return unique ? RecordType::Unique : static_cast<RecordType>(type);
}

const char* Record::at(const Field& field, std::size_t element) const {
  if (!has(field)) fail(std::string(field.name), "a record of " + std::to_string(size_) + " bytes");
  return bytes_.data() + field.first - 1 + element * sizeOf(field);
}

std::int32_t Record::integer(const Field& field, std::size_t element) const {
  const char* const place = at(field, element);
  if (field.type == Type::Short) return numberAt<std::int16_t>(place);
  if (field.type == Type::Byte) return numberAt<std::int8_t>(place);
  return numberAt<std::int32_t>(place);
}

double Record::real(const Field& field, std::size_t element) const {
  const char* const place = at(field, element);
  if (field.type == Type::Float) return static_cast<double>(numberAt<float>(place));
  if (field.type == Type::Double) return numberAt<double>(place);
  return integer(field, element);
}

std::string_view Record::text(const Field& field) const {
  const std::string_view text(at(field, 0), field.count);
  return text.substr(0, text.find('\0'));
}

Record Record::part(const Field& field) const {
  return {{at(field, 0), sizeOf(field)}, sizeOf(field), std::nullopt};
}

UnitOfValues Record::unit(const Field& field) const {
  const Record unit = part(field);
  UnitOfValues values{std::string(unit.text(kUnit["label"])), unit.real(kUnit["factor"]), {}};
  const auto exponents = std::span(kUnit.fields).subspan(2);
  std::transform(exponents.begin(), exponents.end(), values.exponents.begin(),
                 [&](const Field& exponent) { return unit.integer(exponent); });
  return values;
}

std::uint32_t Record::count(const Field& field) const {
  const std::int32_t number = integer(field);
  if (number < 0) {
    fail("a " + std::string(field.name) + " of 0 or more", std::to_string(number));
  }
  return static_cast<std::uint32_t>(number);
}

void Record::fail(const std::string& expected, const std::string& found) const {
  std::string record(layout().name);
  if (place_) record += " at byte " + std::to_string(*place_);
  failRead(0, 0, record + " with " + expected, found);
}

}  // namespace aq::sdf

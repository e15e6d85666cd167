#include "aq/core/variant.h"

#include <cmath>

#include "aq/core/time.h"
#include "aq/text/date_text.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

[[noreturn]] void refuse(const char* wanted, const char* found) {
  throw Error(ErrorCode::TypeMismatch, std::string("expected ") + wanted + ", found " + found);
}

template <class Integer>
Integer rounded(double value) {
  const double whole = std::nearbyint(value);
  if (!(whole >= std::numeric_limits<Integer>::min() &&
        whole <= std::numeric_limits<Integer>::max())) {
    throw Error(ErrorCode::Overflow, "number outside the range of the integer type");
  }
  return static_cast<Integer>(whole);
}

std::string dateAndTimeText(double date) {
  const double fraction = std::abs(date - std::trunc(date));
  const int second = static_cast<int>(std::fmin(std::round(fraction * kSecondsPerDay), 86399));
  std::string text = dateText(date) + ' ';
  appendClockTime(text, second / 3600, second / 60 % 60, second % 60);
  return text;
}

}  // namespace

Variant Variant::date(double days) {
  Variant variant;
  variant.value_ = Date{days};
  return variant;
}

double Variant::toDouble() const {
  switch (type()) {
    case Type::Int16: return std::get<std::int16_t>(value_);
    case Type::Int32: return std::get<std::int32_t>(value_);
    case Type::Single: return static_cast<double>(std::get<float>(value_));
    case Type::Double: return std::get<double>(value_);
    case Type::Boolean: return std::get<bool>(value_) ? 1 : 0;
    case Type::String: return doubleFrom(std::get<std::string>(value_));
    case Type::Date: return std::get<Date>(value_).days;
    case Type::Empty: refuse("a number", "an empty value");
    case Type::Object: break;
  }
  refuse("a number", "an object");
}

float Variant::toSingle() const {
  if (type() == Type::Single) return std::get<float>(value_);
  if (type() == Type::String) return singleFrom(std::get<std::string>(value_));
  const double value = toDouble();
  const auto single = static_cast<float>(value);
  if (std::isinf(single) && !std::isinf(value)) {
    throw Error(ErrorCode::Overflow, "number outside the range of single precision");
  }
  return single;
}

std::int16_t Variant::toInt16() const {
  if (type() == Type::String) return int16From(std::get<std::string>(value_));
  return rounded<std::int16_t>(toDouble());
}

std::int32_t Variant::toInt32() const {
  if (type() == Type::String) return int32From(std::get<std::string>(value_));
  return rounded<std::int32_t>(toDouble());
}

bool Variant::toBoolean() const {
  if (type() == Type::String) {
    const std::string word = upperCased(trimmed(std::get<std::string>(value_)));
    if (word == "TRUE" || word == "FALSE") return word == "TRUE";
  }
  return toDouble() != 0;
}

std::string Variant::toString() const {
  switch (type()) {
    case Type::Int16:
    case Type::Int32: return numberText(toInt32());
    case Type::Single: return numberText(std::get<float>(value_));
    case Type::Double: return numberText(std::get<double>(value_));
    case Type::Boolean: return std::get<bool>(value_) ? "True" : "False";
    case Type::String: return std::get<std::string>(value_);
    case Type::Date: return dateAndTimeText(std::get<Date>(value_).days);
    case Type::Empty: refuse("text", "an empty value");
    case Type::Object: break;
  }
  refuse("text", "an object");
}

}  // namespace aq

#include "aq/spectral/band.h"

#include <cmath>
#include <limits>
#include <string>

#include "aq/text/number_text.h"

namespace aq {
namespace {

/// Numbers that are written as the same text have the same key.
double keyOf(const Variant& number) {
  using Type = Variant::Type;
  if (number.type() == Type::Int16 || number.type() == Type::Int32) return number.toDouble();
  const bool isSingle = number.type() == Type::Single;
  const std::string text = isSingle ? numberText(number.toSingle()) : numberText(number.toDouble());
  return doubleFrom(text);
}

bool isRecordNumber(double key) {
  using Limits = std::numeric_limits<std::int32_t>;
  return key >= Limits::min() && key <= Limits::max() && std::trunc(key) == key;
}

}  // namespace

void AQ_Band::Walk::skipOthers() {
  while (at_ != end_ && !isRecordNumber(at_->first)) ++at_;
}

std::shared_ptr<AQ_Band> AQ_Band::Copy() const {
  if (Count() == 0) return nullptr;
  throw Error(ErrorCode::ObjectNotSet, "a band with levels cannot be copied");
}

Variant AQ_Band::SPL(const Variant& nSpectrum) const {
  const auto level = levels_.find(keyOf(nSpectrum));
  if (level == levels_.end()) {
    throw Error(ErrorCode::InvalidArgument, "no level of spectrum " + nSpectrum.toString());
  }
  return level->second;
}

void AQ_Band::SPL(const Variant& nSpectrum, const Variant& level) {
  levels_.insert_or_assign(keyOf(nSpectrum), level);
}

}  // namespace aq

#include "aq/spectral/band.h"

#include <string>

#include "aq/text/number_text.h"

namespace aq {
namespace {

std::string keyOf(const Variant& number) {
  const bool isSingle = number.type() == Variant::Type::Single;
  return isSingle ? numberText(number.toSingle()) : numberText(number.toDouble());
}

}  // namespace

std::shared_ptr<AQ_Band> AQ_Band::Copy() const {
  if (Count() == 0) return nullptr;
  throw Error(ErrorCode::ObjectNotSet, "a band with levels cannot be copied");
}

Variant AQ_Band::SPL(const Variant& nSpectrum) const { return levels_.Item(keyOf(nSpectrum)); }

void AQ_Band::SPL(const Variant& nSpectrum, const Variant& level) {
  const std::string key = keyOf(nSpectrum);
  if (levels_.contains(key)) {
    levels_.Item(key) = level;  // its place may stay: nothing asks for it
  } else {
    levels_.Add(level, key);
  }
}

}  // namespace aq

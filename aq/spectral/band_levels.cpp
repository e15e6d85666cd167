#include "aq/spectral/band_levels.h"

#include <utility>

namespace aq {

std::optional<Variant> BandLevels::find(std::int16_t band) const {
  if (!contains(band)) return std::nullopt;
  const double* const number = numbers_.find(band);
  if (!mixed_) return *number;
  switch (*mixed_->kinds.find(band)) {
    case Kind::Int16: return static_cast<std::int16_t>(*number);
    case Kind::Int32: return static_cast<std::int32_t>(*number);
    case Kind::Single: return static_cast<float>(*number);
    case Kind::Double: return *number;
    default: break;
  }
  return mixed_->others.at(band);
}

bool BandLevels::contains(std::int16_t band) const {
  if (numbers_.find(band) == nullptr) return false;
  return !mixed_ || *mixed_->kinds.find(band) != Kind::Missing;
}

void BandLevels::store(std::int16_t band, const Variant& level) {
  const Kind kind = kindOf(level);
  if (!staysPlain(band, kind)) startMixed();
  // What may lack memory comes first, so that a failure leaves the old level.
  if (mixed_) static_cast<void>(mixed_.made().kinds.touch(band));
  double& number = numbers_.touch(band);
  if (kind == Kind::Other) {
    mixed_.made().others.insert_or_assign(band, level);
  } else {
    number = level.toDouble();
  }
  if (!mixed_) return;
  mixed_.made().kinds.touch(band) = kind;
  if (kind != Kind::Other) mixed_.made().others.erase(band);
}

void BandLevels::assign(std::int16_t low, std::span<const double> levels) {
  numbers_.assign(low, levels.data(), levels.size());
  mixed_.reset();
}

std::span<const double> BandLevels::plain() const {
  if (mixed_) return {};
  return {numbers_.data(), numbers_.size()};
}

BandLevels::Kind BandLevels::kindOf(const Variant& level) {
  switch (level.type()) {
    case Variant::Type::Int16: return Kind::Int16;
    case Variant::Type::Int32: return Kind::Int32;
    case Variant::Type::Single: return Kind::Single;
    case Variant::Type::Double: return Kind::Double;
    default: return Kind::Other;
  }
}

/// Whether a level can join without a kind of its own: a double in the block or at an end of it.
bool BandLevels::staysPlain(std::int16_t band, Kind kind) const {
  if (mixed_ || kind != Kind::Double) return false;
  const int at = band - numbers_.first();
  return numbers_.empty() || (at >= -1 && at <= static_cast<int>(numbers_.size()));
}

void BandLevels::startMixed() {
  if (mixed_) return;
  OnDemand<Mixed> mixed;
  for (std::size_t i = 0; i < numbers_.size(); ++i) {
    const int band = numbers_.first() + static_cast<int>(i);
    mixed.made().kinds.touch(static_cast<std::int16_t>(band)) = Kind::Double;
  }
  static_cast<void>(mixed.made());
  mixed_ = std::move(mixed);
}

}  // namespace aq

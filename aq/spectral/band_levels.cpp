#include "aq/spectral/band_levels.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace aq {
namespace {

/// Whether `block` has no gaps after it grows to hold `band`.
template <class Block>
bool adjoins(const Block& block, std::int16_t band) {
  const int at = band - block.first();
  return block.empty() || (at >= -1 && at <= static_cast<int>(block.size()));
}

std::vector<double> levelsOf(std::span<const LevelCode> codes) {
  std::vector<double> levels(codes.size());
  copyLevels(codes, levels.data());
  return levels;
}

}  // namespace

std::optional<Variant> BandLevels::find(std::int16_t band) const {
  if (!contains(band)) return std::nullopt;
  if (!doubles_) return levelOf(*codes_.find(band));
  const double number = *doubles_->numbers.find(band);
  const auto& mixed = doubles_->mixed;
  if (!mixed) return number;
  switch (*mixed->kinds.find(band)) {
    case Kind::Int16: return static_cast<std::int16_t>(number);
    case Kind::Int32: return static_cast<std::int32_t>(number);
    case Kind::Single: return static_cast<float>(number);
    case Kind::Double: return number;
    default: break;
  }
  return mixed->others.at(band);
}

bool BandLevels::contains(std::int16_t band) const {
  if (!doubles_) return codes_.find(band) != nullptr;
  if (doubles_->numbers.find(band) == nullptr) return false;
  return !doubles_->mixed || *doubles_->mixed->kinds.find(band) != Kind::Missing;
}

void BandLevels::store(std::int16_t band, const Variant& level) {
  if (storeCode(band, level)) return;
  Doubles& doubles = asDoubles();
  const Kind kind = kindOf(level);
  if (kind != Kind::Double || !adjoins(doubles.numbers, band)) startMixed(doubles);
  // Allocations come first, so that a failure leaves the old level unchanged.
  if (doubles.mixed) static_cast<void>(doubles.mixed.orCreate().kinds.touch(band));
  double& number = doubles.numbers.touch(band);
  if (kind == Kind::Other) {
    doubles.mixed.orCreate().others.insert_or_assign(band, level);
  } else {
    number = level.toDouble();
  }
  if (!doubles.mixed) return;
  doubles.mixed.orCreate().kinds.touch(band) = kind;
  if (kind != Kind::Other) doubles.mixed.orCreate().others.erase(band);
}

void BandLevels::assign(std::int16_t low, std::span<const double> levels) {
  std::vector<LevelCode> codes;
  codes.reserve(levels.size());
  for (const double level : levels) {
    const auto code = codeOf(level);
    if (!code) {
      assignDoubles(low, levels);
      return;
    }
    codes.push_back(*code);
  }
  assign(low, codes);
}

void BandLevels::assign(std::int16_t low, std::span<const LevelCode> codes) {
  if (codes.size() > kMostCodes) {
    assignDoubles(low, levelsOf(codes));
    return;
  }
  codes_.assign(low, codes);
  doubles_.reset();
}

void BandLevels::assignDoubles(std::int16_t low, std::span<const double> levels) {
  LazyPart<Doubles> doubles;
  doubles.orCreate().numbers.assign(low, levels);
  doubles_ = std::move(doubles);
  codes_ = {};
}

std::span<const double> BandLevels::plain() const {
  if (!doubles_ || doubles_->mixed) return {};
  return doubles_->numbers.all();
}

std::span<const double> BandLevels::numbers() const {
  if (!doubles_) return {};
  const auto isNoNumber = [](Kind kind) { return kind == Kind::Missing || kind == Kind::Other; };
  if (doubles_->mixed) {
    const auto kinds = doubles_->mixed->kinds.all();
    if (std::any_of(kinds.begin(), kinds.end(), isNoNumber)) return {};
  }
  return doubles_->numbers.all();
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

/// Stores the level as a code. Returns false if it has none or would leave a gap, if there are too
/// many codes, or if codes are no longer used.
bool BandLevels::storeCode(std::int16_t band, const Variant& level) {
  if (doubles_ || kindOf(level) != Kind::Double) return false;
  const auto code = codeOf(level.toDouble());
  if (!code || !adjoins(codes_, band) || codes_.size() == kMostCodes) return false;
  codes_.touch(band) = *code;
  return true;
}

BandLevels::Doubles& BandLevels::asDoubles() {
  if (!doubles_) assignDoubles(codes_.first(), levelsOf(codes()));
  return doubles_.orCreate();
}

void BandLevels::startMixed(Doubles& doubles) {
  if (doubles.mixed) return;
  LazyPart<Mixed> mixed;
  for (std::size_t i = 0; i < doubles.numbers.size(); ++i) {
    const int band = doubles.numbers.first() + static_cast<int>(i);
    mixed.orCreate().kinds.touch(static_cast<std::int16_t>(band)) = Kind::Double;
  }
  static_cast<void>(mixed.orCreate());
  doubles.mixed = std::move(mixed);
}

}  // namespace aq

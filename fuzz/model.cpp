// Random calls to the object model, whose results are compared with plain maps and vectors.
#include <aq/aq.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <utility>
#include <vector>

#include "fuzz/targets.h"

namespace aq::fuzz {
namespace {

/// Takes values from the input, and zeros after its end.
struct Calls {
  std::string_view input;

  [[nodiscard]] bool more() const { return !input.empty(); }
  template <class Value>
  Value take() {
    Value value{};
    const std::size_t size = std::min(sizeof(value), input.size());
    std::memcpy(&value, input.data(), size);
    input.remove_prefix(size);
    return value;
  }
  int below(int end) { return take<std::uint8_t>() % end; }
};

std::int16_t number(int value) { return static_cast<std::int16_t>(value); }

/// Whether a call succeeds. A call must succeed unless it is `wrong`; a wrong call must fail with
/// `code`.
template <class Call>
bool succeeds(bool wrong, ErrorCode code, const Call& call) {
  try {
    call();
    expect(!wrong, "an error");
  } catch (const Error& error) {
    expect(wrong && error.code() == code, "no other error");
  }
  return !wrong;
}

void driveCollection(Calls& calls) {
  std::vector<std::pair<std::string, int>> plain;
  Collection<int> list;
  for (int value = 1; calls.more(); ++value) {
    const int call = calls.below(7);
    const int place = calls.below(200);
    const std::string key = std::to_string(place % 20);
    const auto found =
        std::find_if(plain.begin(), plain.end(), [&](const auto& e) { return e.first == key; });
    const bool unknown = found == plain.end();
    const bool outside = place < 1 || place > static_cast<int>(plain.size());
    const auto at = outside ? plain.end() : plain.begin() + place - 1;
    constexpr auto kNoPlace = ErrorCode::InvalidIndex;
    constexpr auto kKey = ErrorCode::InvalidArgument;
    if (call == 0) list.Add(value);
    if (call == 0 || (call == 1 && succeeds(!unknown, kKey, [&] { list.Add(value, key); }))) {
      plain.emplace_back(call == 0 ? "" : key, value);
    }
    if (call == 2)
      succeeds(outside, kNoPlace, [&] { expect(list.Item(place) == at->second, "an entry"); });
    if (call == 3)
      succeeds(unknown, kKey, [&] { expect(list.Item(key) == found->second, "an entry"); });
    if (call == 4 && succeeds(outside, kNoPlace, [&] { list.Remove(place); })) plain.erase(at);
    if (call == 5 && succeeds(unknown, kKey, [&] { list.Remove(key); })) plain.erase(found);
    if (call == 6) list = Collection<int>(list);
    expect(std::equal(list.begin(), list.end(), plain.begin(), plain.end(),
                      [](int a, const auto& b) { return a == b.second; }),
           "the same entries");
  }
}

void driveSeries(Calls& calls) {
  std::vector<std::pair<std::int16_t, std::shared_ptr<AQ_Spectrum>>> plain;
  NumberedSeries<AQ_Spectrum> series;
  AQ_SpectralTimeHistory history;
  NumberRange range;
  while (calls.more()) {
    const int call = calls.below(8);
    const auto record = call == 7 ? calls.take<std::int16_t>() : number(calls.below(20));
    const auto found =
        std::find_if(plain.begin(), plain.end(), [&](const auto& e) { return e.first == record; });
    if (call < 2) {
      succeeds(found == plain.end(), ErrorCode::InvalidArgument, [&] {
        expect(series.at(record) == history.spectrum(record) && series.at(record) == found->second,
               "a record");
      });
      if (call == 1) series = NumberedSeries<AQ_Spectrum>(series);
      continue;
    }
    if (found != plain.end()) plain.erase(found);
    plain.emplace_back(record, std::make_shared<AQ_Spectrum>());
    series.store(record, std::shared_ptr(plain.back().second));
    history.spectrum(record, plain.back().second);
    range.widen(record);
    expect(std::equal(series.placed().begin(), series.placed().end(), plain.begin(), plain.end(),
                      [](const auto& a, const auto& b) { return a == b.second; }),
           "objects in the order in which they were stored");
    auto sorted = plain;
    std::sort(sorted.begin(), sorted.end());
    expect(std::equal(history.begin(), history.end(), sorted.begin(), sorted.end(),
                      [](const auto& a, const auto& b) {
                        return a.first == b.first && a.second == b.second;
                      }),
           "records in ascending order");
    const auto place = static_cast<std::size_t>(calls.below(20)) % plain.size();
    expect(series.atPlace(static_cast<int>(place) + 1) == plain[place].second, "a place");
    expect(history.Count() == static_cast<int>(plain.size()), "the count");
  }
  if (range.low != 0 && range.high != 0) {
    expect(history.LoRec() == range.low && history.HiRec() == range.high, "the range of records");
  }
}

bool same(const AQ_Mask& a, const AQ_Mask& b) {
  return a.MaskMode() == b.MaskMode() && a.AdjustMode() == b.AdjustMode();
}

/// A row as a plain map of shared masks.
struct PlainRow {
  std::map<std::int16_t, std::shared_ptr<AQ_Mask>> masks;
  NumberRange range;

  AQ_Mask& at(std::int16_t band) {
    range.widen(band);
    auto& mask = masks[band];
    if (!mask) mask = std::make_shared<AQ_Mask>();
    return *mask;
  }
  void set(std::int16_t band, std::shared_ptr<AQ_Mask> mask) {
    range.widen(band);
    if (masks.erase(band) == 0) masks[band] = std::move(mask);
  }
};

void driveRow(Calls& calls) {
  AQ_MaskRow row;
  PlainRow plain;
  auto mine = std::make_shared<AQ_Mask>();
  while (calls.more()) {
    const int call = calls.below(8);
    const std::int16_t band = calls.take<std::int8_t>();
    AQ_Mask decision;
    decision.MaskMode(static_cast<AQ_MASK_MODE>(calls.below(6) - 1));
    decision.AdjustMode(static_cast<AQ_MASK_ADJUST>(calls.below(9) - 1));
    if (call == 0) {
      expect(same(row.decision(band), plain.at(band)), "a decision");
    } else if (call == 1) {
      const auto mask = row.Mask(band);
      expect(same(*mask, plain.at(band)), "a mask");
      *mask = plain.at(band) = decision;
    } else if (call == 2 || call == 3) {
      if (call == 2) mine = decision.MaskMode() < 0 ? nullptr : decision.Copy();
      row.Mask(band, mine);
      plain.set(band, mine);
    } else if (call == 4) {
      row.store(band, decision);
      plain.set(band, decision.Copy());
    } else if (call == 5) {
      std::vector<MaskCode> codes(static_cast<std::size_t>(calls.below(50)));
      plain.masks.clear();
      for (int at = band; MaskCode & code : codes) {
        code = static_cast<MaskCode>(calls.below(29));
        plain.range.widen(number(at));
        if (code != kNoMaskCode) plain.set(number(at), maskOf(code).Copy());
        ++at;
      }
      std::copy(codes.begin(), codes.end(), row.renew(band, codes.size()).begin());
    } else if (call == 6) {
      for (int at = plain.range.low; const MaskCode code : std::as_const(row).codes()) {
        const auto mask = plain.masks.find(number(at++));
        expect(mask == plain.masks.end() ? code == kNoMaskCode : same(maskOf(code), *mask->second),
               "the code of a mask");
      }
    } else {
      const auto copy = row.Copy();
      for (int at = plain.range.low; at <= plain.range.high; ++at) {
        expect(same(copy->decision(number(at)), plain.at(number(at))), "a copied mask");
      }
    }
    expect(row.LowBand() == plain.range.low && row.HighBand() == plain.range.high, "the bands");
  }
}

Variant variantFrom(Calls& calls) {
  switch (calls.below(11)) {
    case 0: return calls.take<std::int16_t>();
    case 1: return calls.take<std::int32_t>();
    case 2: return calls.take<float>();
    case 3: return calls.take<double>();
    case 4: return calls.below(2) == 1;
    case 5: return std::to_string(calls.take<std::int32_t>());
    case 6: return Variant::date(calls.take<std::int16_t>() / 8.0);
    case 7: return {};
    case 8: return calls.take<std::int32_t>() / 1000.0;
    default: return calls.take<std::int16_t>() / 100.0;
  }
}

bool same(const Variant& a, const Variant& b) {
  if (a.type() != b.type()) return false;
  if (a.type() != Variant::Type::Double && a.type() != Variant::Type::Single) return a == b;
  const double left = a.toDouble();
  const double right = b.toDouble();
  return std::isnan(left) ? std::isnan(right)
                          : left == right && std::signbit(left) == std::signbit(right);
}

void driveSpectrum(Calls& calls) {
  AQ_Spectrum spectrum;
  std::map<std::int16_t, Variant> plain;
  NumberRange range;
  const auto store = [&](std::int16_t band, const Variant& level) {
    plain.insert_or_assign(band, level);
    range.widen(band);
  };
  while (calls.more()) {
    const int call = calls.below(8);
    const std::int16_t band = calls.take<std::int8_t>();
    const auto expectHeld = [&](const auto& held, const auto& levelOf) {
      expect(held.empty() || held.size() == plain.size(), "all levels");
      for (auto at = plain.begin(); const auto number : held) {
        expect(same(levelOf(number), at++->second), "a held level");
      }
    };
    if (call < 5) {
      const Variant level = variantFrom(calls);
      spectrum.SPL(band, level);
      store(band, level);
    } else if (call == 5) {
      std::vector<LevelCode> codes(static_cast<std::size_t>(calls.below(30)));
      std::vector<double> levels;
      plain.clear();
      const bool coded = calls.below(2) == 0;
      for (LevelCode& code : codes) {
        code = calls.take<LevelCode>();
        levels.push_back(coded ? levelOf(code) : code / 64.0);
        store(number(band + static_cast<int>(levels.size()) - 1), levels.back());
      }
      coded ? spectrum.assignCodes(band, codes) : spectrum.assignLevels(band, levels);
    } else if (call == 6) {
      const bool gap = range.high - range.low + 1 > static_cast<int>(plain.size());
      succeeds(gap && range.low <= range.high, ErrorCode::InvalidArgument,
               [&] { spectrum = *spectrum.Copy(); });
    } else {
      const auto found = plain.find(band);
      succeeds(found == plain.end(), ErrorCode::InvalidArgument, [&] {
        expect(same(spectrum.SPL(band), found->second), "the level that was stored");
      });
      expectHeld(spectrum.levelCodes(), levelOf);
      expectHeld(spectrum.plainLevels(), [](double level) { return level; });
    }
    expect(spectrum.LowBand() == range.low && spectrum.HighBand() == range.high, "the bands");
  }
}

}  // namespace

/// The first byte chooses the class under test.
void model(const Target&, std::string_view input) {
  constexpr std::array kDrives{driveCollection, driveSeries, driveRow, driveSpectrum};
  Calls calls{input};
  kDrives[static_cast<std::size_t>(calls.below(kDrives.size()))](calls);
}

}  // namespace aq::fuzz

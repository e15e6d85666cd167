#include <aq/aq.h>
#include <gtest/gtest.h>

#include <vector>

namespace aq {
namespace {

using Numbers = std::vector<std::int32_t>;

/// The numbers that a walk visits; `check` must return true for each number and entry.
template <class Series, class Check>
Numbers walked(const Series& series, const Check& check) {
  Numbers numbers;
  for (const auto& [number, entry] : series) {
    EXPECT_TRUE(series.contains(number));
    EXPECT_TRUE(check(number, entry)) << "at " << number;
    numbers.push_back(number);
  }
  return numbers;
}

/// Stores objects under these numbers, in this order; returns the numbers that a walk visits.
template <class Series, class Object, class Number>
Numbers stored(void (Series::*put)(Number, std::shared_ptr<Object>),
               std::shared_ptr<Object> (Series::*get)(Number) const, const Numbers& numbers) {
  Series series;
  for (const std::int32_t number : numbers) {
    (series.*put)(static_cast<Number>(number), std::make_shared<Object>());
  }
  EXPECT_FALSE(series.contains(7));
  EXPECT_FALSE(series.contains(70000));
  return walked(series, [&](auto number, const auto& object) {
    return object != nullptr && object == (series.*get)(number);
  });
}

TEST(Walk, SeriesGoByNumberWhateverTheOrderOfStoring) {
  struct Row {
    Numbers numbers, walk;
  };
  const std::vector<Row> rows{{{}, {}},
                              {{1, 2, 3}, {1, 2, 3}},
                              {{-2, -1, 0}, {-2, -1, 0}},
                              {{3, 1, 2}, {1, 2, 3}},
                              {{1, 2, 3, 2}, {1, 2, 3}},
                              {{1, 2, 2}, {1, 2}},
                              {{5, 32767, -32768}, {-32768, 5, 32767}},
                              {{1, 2, 3, 1, 2, 3, 1, 5}, {1, 2, 3, 5}}};
  for (const Row& row : rows) {
    using History = AQ_SpectralTimeHistory;
    EXPECT_EQ(stored(&History::spectrum, &History::spectrum, row.numbers), row.walk);
    EXPECT_EQ(stored(&AQ_MaskMap::Row, &AQ_MaskMap::Row, row.numbers), row.walk);
    using Geometry = AQ_GeometryTimeHistory;
    EXPECT_EQ(stored(&Geometry::Point, &Geometry::Point, row.numbers), row.walk);
  }
}

TEST(Walk, PositionsGoByPlace) {
  AQ_PositionTimeHistory positions;
  EXPECT_EQ(positions.begin(), positions.end());
  for (const int number : {4, 5, 6, 4}) {
    positions.Position(number, std::make_shared<AQ_Position>());
  }
  const Numbers places = walked(positions, [&](std::int32_t place, const auto& position) {
    return position == positions.Position(place);
  });
  EXPECT_EQ(places, (Numbers{1, 2, 3}));
  EXPECT_FALSE(positions.contains(0));
  EXPECT_FALSE(positions.contains(4));
}

TEST(Walk, SpectrumGivesTheBandsThatHaveALevel) {
  AQ_Spectrum spectrum;
  EXPECT_EQ(spectrum.begin(), spectrum.end());
  const auto bands = [&] {
    return walked(spectrum,
                  [&](auto band, const Variant& level) { return level == spectrum.SPL(band); });
  };
  spectrum.SPL(20, 61.5);
  spectrum.SPL(21, 62.25);
  EXPECT_EQ(bands(), (Numbers{20, 21}));
  spectrum.SPL(32767, "loud");
  spectrum.SPL(-3, std::int16_t{7});
  EXPECT_EQ(bands(), (Numbers{-3, 20, 21, 32767}));
  EXPECT_FALSE(spectrum.contains(22));
  EXPECT_FALSE(spectrum.contains(20 + 65536));
}

TEST(Walk, BandGivesRecordsInOrder) {
  AQ_Band band;
  for (const char* record : {"10", "9", "2.5", "-1", "1e12"}) band.SPL(record, record);
  const Numbers records = walked(
      band, [&](std::int32_t record, const Variant& level) { return level == band.SPL(record); });
  EXPECT_EQ(records, (Numbers{-1, 9, 10}));
  auto at = band.begin();
  EXPECT_EQ((*at++).first, -1);
  EXPECT_EQ((*at).first, 9);
  EXPECT_EQ(band.Count(), 5);
  EXPECT_FALSE(band.contains(2));
}

TEST(Walk, MaskRowGivesMasksAndMakesNone) {
  AQ_MaskRow row;
  const auto letters = [&] {
    std::string all;
    for (const auto& [band, mask] : row) all += std::to_string(band) + mask.MaskString() + ' ';
    return all;
  };
  EXPECT_EQ(letters(), "");
  row.Mask(30)->MaskMode(MASKED_BY_PRE_DETECT);
  AQ_Mask adjusted;
  adjusted.AdjustMode(ENERGY_SUBTRACTION);
  row.store(33, adjusted);
  row.Mask(31, nullptr);  // counts as a default mask
  row.Mask(29, std::make_shared<AQ_Mask>());
  row.Mask(29, std::make_shared<AQ_Mask>());  // storing a second mask only removes the first
  EXPECT_EQ(letters(), "30A- 31-- 33-S ");
  EXPECT_FALSE(row.contains(29));
  EXPECT_FALSE(row.contains(32));
  EXPECT_EQ(row.HighBand(), 33);
}

}  // namespace
}  // namespace aq

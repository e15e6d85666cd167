#include <aq/masking/mask_map.h>
#include <gtest/gtest.h>

#include <array>

#include "tests/support/errors.h"

namespace aq {
namespace {

TEST(Mask, Letters) {
  struct Row {
    const char* set;
    int mode, adjust;
    const char* read;
  };
  for (const Row& row : {Row{"", 0, 0, "--"}, Row{"FR", 3, 6, "FR"}, Row{"A", 2, 4, "AA"},
                         Row{"MxxS", 1, 1, "MS"}, Row{"ms", 0, 0, "--"}, Row{"M?", 1, 0, "M-"},
                         Row{"SF", 0, 2, "-F"}, Row{"-T", 0, 3, "-T"}, Row{"-C", 0, 5, "-C"}}) {
    AQ_Mask mask;
    mask.MaskString(row.set);
    EXPECT_EQ(mask.MaskMode(), row.mode) << row.set;
    EXPECT_EQ(mask.AdjustMode(), row.adjust) << row.set;
    EXPECT_EQ(mask.MaskString(), row.read);
  }
  AQ_Mask mask;
  mask.MaskMode(static_cast<AQ_MASK_MODE>(7));
  mask.AdjustMode(FREQUENCY_EXTRAPOLATION);
  EXPECT_EQ(mask.MaskString(), "F");
  mask.AdjustMode(static_cast<AQ_MASK_ADJUST>(-1));
  EXPECT_EQ(mask.Copy()->MaskString(), "");
}

/// Puts a column with a wrong letter or without its comma at every position among valid columns.
TEST(MaskCode, ColumnsAreTakenUpToTheFirstOfAnotherForm) {
  for (const char* wrong : {"xS,", "Mx,", "MS;", "\xFF\xFF,", ",,,"}) {
    for (std::size_t count = 0; count < 10; ++count) {
      for (std::size_t place = 0; place <= count; ++place) {
        std::string text;
        for (std::size_t i = 0; i < count; ++i) text += i == place ? wrong : "FR,";
        std::array<MaskCode, 10> codes{};
        const FieldsTaken taken = masksAtFront(text, std::span(codes).first(count));
        ASSERT_EQ(taken.count, place) << text;
        ASSERT_EQ(taken.length, place * 3);
        for (std::size_t i = 0; i < place; ++i) ASSERT_EQ(maskOf(codes[i]).MaskString(), "FR");
      }
    }
  }
}

TEST(MaskRow, FetchingMakesAMaskAndStoringTwiceRemovesIt) {
  AQ_MaskRow row;
  EXPECT_EQ(row.LowBand(), 9999);
  EXPECT_EQ(row.HighBand(), -1);
  const auto fetched = row.Mask(17);
  EXPECT_EQ(row.Mask(17), fetched);
  EXPECT_EQ(row.LowBand(), 17);
  EXPECT_EQ(row.HighBand(), 17);
  const auto mask = std::make_shared<AQ_Mask>();
  mask->MaskString("MS");
  row.Mask(20, mask);
  EXPECT_EQ(row.Mask(20), mask);
  row.Mask(20, mask->Copy());  // storing a second mask only removes the first
  EXPECT_EQ(row.Mask(20)->MaskString(), "--");
  row.Mask(17, mask);
  row.Mask(17, mask);  // the first call removed the mask, so this one stores it
  EXPECT_EQ(row.Mask(17), mask);
}

TEST(MaskRow, CopyFillsTheRange) {
  AQ_MaskRow row;
  row.Mask(24)->MaskString("MS");
  row.Mask(20)->MaskString("FR");
  row.LGB(28);
  const auto copy = row.Copy();
  EXPECT_EQ(copy->LGB(), 28);
  EXPECT_EQ(copy->LowBand(), 20);
  EXPECT_EQ(copy->HighBand(), 24);
  row.Mask(24)->MaskString("--");
  EXPECT_EQ(copy->Mask(24)->MaskString(), "MS");
  EXPECT_EQ(copy->Mask(22)->MaskString(), "--");
  row.Mask(22, std::make_shared<AQ_Mask>());  // Copy created one here, so this call removes it
  const auto given = std::make_shared<AQ_Mask>();
  row.Mask(22, given);
  EXPECT_EQ(row.Mask(22), given);
  EXPECT_EQ(AQ_MaskRow().Copy()->HighBand(), -1);
}

TEST(MaskRow, EncompassesByRange) {
  const auto range = [](std::int16_t low, std::int16_t high) {
    AQ_MaskRow row;
    row.Mask(high);
    row.Mask(low);
    return row;
  };
  const AQ_MaskRow row = range(17, 40);
  EXPECT_TRUE(row.Encompasses(range(17, 40)) && row.Encompasses(range(18, 39)));
  EXPECT_FALSE(row.Encompasses(range(17, 41)) || row.Encompasses(range(16, 40)));
}

TEST(MaskMap, CopyNeedsRowsFromOneWithoutAGap) {
  AQ_MaskMap map;
  map.setLGB();
  map.Row(1, std::make_shared<AQ_MaskRow>());
  map.Row(2, std::make_shared<AQ_MaskRow>());
  map.Row(1, std::make_shared<AQ_MaskRow>());
  EXPECT_EQ(map.Count(), 2);
  map.Row(1)->Mask(30)->MaskString("MS");
  EXPECT_EQ(map.Copy()->Row(1)->Mask(30)->MaskString(), "MS");
  EXPECT_NE(map.Copy()->Row(1), map.Row(1));
  map.Row(7, std::make_shared<AQ_MaskRow>());
  EXPECT_ERROR(map.Copy(), InvalidArgument);
  EXPECT_ERROR(map.Row(3), InvalidArgument);
}

}  // namespace
}  // namespace aq

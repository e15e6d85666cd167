#include <aq/core/collection.h>
#include <aq/detail/numbered_series.h>
#include <gtest/gtest.h>

#include <utility>

#include "tests/support/errors.h"

namespace aq {
namespace {

TEST(Collection, PlacesCountFromOne) {
  Collection<std::string> lines;
  lines.Add("a");
  for (const std::int32_t place : {0, 2, -1}) {
    EXPECT_ERROR(lines.Item(place), InvalidIndex);
    EXPECT_ERROR(lines.Remove(place), InvalidIndex);
  }
  lines.Item(1) = "b";
  const Collection<std::string> copy = lines;
  lines.Item(1) = "c";
  EXPECT_EQ(copy.Item(1), "b");
  lines.Add("d", "key");
  EXPECT_ERROR(lines.Add("e", "key"), InvalidArgument);
  EXPECT_ERROR(lines.Item("none"), InvalidArgument);
  EXPECT_ERROR(lines.Remove("none"), InvalidArgument);
  lines.Add("f", "other");
  EXPECT_EQ(std::as_const(lines).Item("other"), "f");
  lines.Remove(2);
  EXPECT_ERROR(lines.Item("key"), InvalidArgument);
  lines.Remove("other");
  EXPECT_EQ(lines.Count(), 1);
  auto at = copy.begin();
  EXPECT_EQ(at->size(), 1U);
  EXPECT_EQ(*at++, "b");
  EXPECT_EQ(at, copy.end());
  const Collection<std::string> moved = std::move(lines);
  EXPECT_EQ(moved.Item(1), "c");
  EXPECT_EQ(lines.Count(), 0);  // NOLINT(bugprone-use-after-move): a moved-from collection is empty
}

TEST(NumberedSeries, HoldsAnyNumber) {
  NumberedSeries<int> tested;
  EXPECT_ERROR(tested.at(1000), InvalidArgument);
  for (const std::int32_t number : {2147483647, -2147483647 - 1}) {
    tested.store(number, nullptr);
    EXPECT_EQ(tested.at(number), nullptr);
  }
}

}  // namespace
}  // namespace aq

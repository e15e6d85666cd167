#include <aq/core/collection.h>
#include <aq/core/numbered_series.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/support/errors.h"

namespace aq {
namespace {

/// A collection beside a plain list: both do the same, step by step.
TEST(Collection, BehavesAsAPlainListUnderRandomSteps) {
  std::mt19937 random(7);
  Collection<int> tested;
  std::vector<std::pair<std::string, int>> plain;
  for (int step = 0; step < 20000; ++step) {
    const std::string key = std::to_string(random() % 60);
    const auto entry =
        std::find_if(plain.begin(), plain.end(), [&](const auto& one) { return one.first == key; });
    const bool taken = entry != plain.end();
    const auto place = static_cast<std::int32_t>(random() % (plain.size() + 1));
    const auto action = plain.size() > 100 ? 2 : random() % 4;
    if (action == 0 && taken) {
      EXPECT_ERROR(tested.Add(step, key), InvalidArgument);
    } else if (action == 0) {
      tested.Add(step, key);
      plain.emplace_back(key, step);
    } else if (action == 1 && !taken) {
      EXPECT_ERROR(tested.Remove(key), InvalidArgument);
    } else if (action == 1) {
      tested.Remove(key);
      plain.erase(entry);
    } else if (action == 2 && place != 0) {
      tested.Remove(place);
      plain.erase(plain.begin() + place - 1);
    } else {
      tested.Add(step);
      plain.emplace_back("", step);
    }
    if (step % 100 == 0) {
      Collection<int> moved = std::move(tested);
      ASSERT_EQ(tested.Count(), 0);  // NOLINT(bugprone-use-after-move): empty, as promised
      tested = moved;
    }
    ASSERT_EQ(tested.Count(), static_cast<std::int32_t>(plain.size()));
    ASSERT_TRUE(std::equal(tested.begin(), tested.end(), plain.begin(), plain.end(),
                           [](int a, const auto& b) { return a == b.second; }));
    for (std::size_t i = 0; i < plain.size(); ++i) {
      ASSERT_EQ(tested.Item(static_cast<std::int32_t>(i + 1)), plain[i].second);
      if (!plain[i].first.empty()) {
        ASSERT_EQ(tested.Item(plain[i].first), plain[i].second);
      }
    }
  }
}

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
}

TEST(NumberedSeries, ReplacingMovesToTheEnd) {
  std::mt19937 random(11);
  NumberedSeries<int> tested;
  std::vector<std::pair<std::int32_t, std::shared_ptr<int>>> plain;
  for (int step = 0; step < 5000; ++step) {
    const auto number = step < 50 ? step + 5 : static_cast<std::int32_t>(random() % 80) - 20;
    const auto value = std::make_shared<int>(step);
    std::erase_if(plain, [&](const auto& entry) { return entry.first == number; });
    plain.emplace_back(number, value);
    tested.store(number, std::shared_ptr(value));
    ASSERT_EQ(tested.size(), plain.size());
    ASSERT_TRUE(std::equal(tested.begin(), tested.end(), plain.begin(), plain.end(),
                           [](const auto& a, const auto& b) { return a == b.second; }));
    for (const auto& [key, object] : plain) ASSERT_EQ(tested.at(key), object);
  }
  EXPECT_ERROR(tested.at(1000), InvalidArgument);
  for (const std::int32_t number : {2147483647, -2147483647 - 1}) {
    tested.store(number, nullptr);
    EXPECT_EQ(tested.at(number), nullptr);
  }
}

}  // namespace
}  // namespace aq

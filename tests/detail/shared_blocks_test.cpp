#include <aq/detail/shared_blocks.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

namespace aq {
namespace {

struct Record {
  std::int32_t number = 0;
  std::array<std::byte, 108> more;
};

TEST(SharedBlocks, AnObjectOutlivesTheOthersWhateverTheFileClaims) {
  for (const std::int32_t claim : {-1, 0, 1100, 32767, std::numeric_limits<std::int32_t>::max()}) {
    std::vector<std::shared_ptr<Record>> kept;
    {
      SharedBlocks<Record> blocks(claim);
      std::vector<std::shared_ptr<Record>> all;
      for (std::int32_t i = 0; i < 40000; ++i) {
        all.push_back(blocks.next());
        EXPECT_EQ(all.back()->number, 0);
        all.back()->number = i;
      }
      for (const std::size_t i : {0U, 1500U, 20000U, 39999U}) kept.push_back(all[i]);
    }
    EXPECT_EQ(kept[1]->number, 1500) << claim;
    EXPECT_EQ(kept[3]->number, 39999) << claim;
  }
}

}  // namespace
}  // namespace aq

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

#include "aq/core/export.h"

namespace aq {

/// Finds the slot of a record number. Records mostly come as n, n+1, n+2 …: as long as they do,
/// the slot follows from the number and no table is kept.
class AQ_API NumberIndex {
 public:
  [[nodiscard]] std::optional<std::size_t> find(std::int32_t number) const;

  /// `number` is not in the index.
  void insert(std::int32_t number, std::size_t slot);

  /// `number` is in the index.
  void erase(std::int32_t number);

  /// Slots were closed up: `newSlots` gives the new slot of every old one.
  void renumber(const std::vector<std::size_t>& newSlots);

 private:
  void endRun();

  bool isRun_ = true;
  std::int32_t first_ = 0;  // of the run; its numbers stand in slots 0, 1, 2 …
  std::size_t length_ = 0;  // of the run
  std::unordered_map<std::int32_t, std::size_t> table_;
};

}  // namespace aq

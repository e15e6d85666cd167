#pragma once

#include <aq/core/error.h>

#include <cstdint>

namespace aqdata {

/// Calls `visit(number, *get(number))` for the `count` objects that a model keeps by record number:
/// from 1 up, where nearly all are, then from 0 down.
template <class Get, class Visit>
void forRecords(std::int32_t count, const Get& get, const Visit& visit) {
  const auto visited = [&](std::int32_t number) {
    try {
      const auto object = get(static_cast<std::int16_t>(number));
      visit(static_cast<std::int16_t>(number), *object);
      return 1;
    } catch (const aq::Error&) {
      return 0;  // the number is left out
    }
  };
  for (std::int32_t number = 1; count > 0 && number <= 32767; ++number) count -= visited(number);
  for (std::int32_t number = 0; count > 0 && number >= -32768; --number) count -= visited(number);
}

}  // namespace aqdata

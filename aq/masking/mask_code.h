#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "aq/core/export.h"
#include "aq/masking/mask.h"
#include "aq/text/fields_taken.h"

namespace aq {

/// A masking decision in one byte: 1 and up for the pairs of letters, 0 for no decision or for one
/// without letters.
using MaskCode = std::uint8_t;

inline constexpr MaskCode kNoMaskCode = 0;
inline constexpr MaskCode kDefaultMaskCode = 1;

/// The code of a decision; `kNoMaskCode` when its values have no letters.
[[nodiscard]] AQ_API MaskCode maskCodeOf(const AQ_Mask& mask);

/// The decision for a code; a default one for `kNoMaskCode`.
[[nodiscard]] AQ_API AQ_Mask maskOf(MaskCode code);

/// Reads masks of two letters, each followed by ",", from the start of `text` until `codes` is full
/// or other text follows. Entries of `codes` after those read may be overwritten.
[[nodiscard]] AQ_API FieldsTaken masksAtFront(std::string_view text, std::span<MaskCode> codes);

/// The number of bytes needed while writing that many masks.
constexpr std::size_t maskBytes(std::size_t masks) { return 3 * masks + 5; }

/// Writes the letters of each code, followed by ",", at `at`, which must have room for `maskBytes`
/// bytes. Returns the end of the text, or `nullptr` if one of the codes is `kNoMaskCode`.
[[nodiscard]] AQ_API char* putMasks(char* at, std::span<const MaskCode> codes);

}  // namespace aq

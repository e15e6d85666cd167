#pragma once

#include <array>
#include <cstdint>

namespace aq {

inline constexpr std::int16_t kFirstWeightedBand = 10;  // 10 Hz
inline constexpr std::int16_t kLastWeightedBand = 43;   // 20 kHz

/// dB by band, from `kFirstWeightedBand` up.
using Weighting = std::array<double, kLastWeightedBand - kFirstWeightedBand + 1>;

/// IEC 61672-1, table 3.
inline constexpr Weighting kWeightingA{
    -70.4, -63.4, -56.7, -50.5, -44.7, -39.4, -34.6, -30.2, -26.2, -22.5, -19.1, -16.1,
    -13.4, -10.9, -8.6,  -6.6,  -4.8,  -3.2,  -1.9,  -0.8,  0,     0.6,   1,     1.2,
    1.3,   1.2,   1,     0.5,   -0.1,  -1.1,  -2.5,  -4.3,  -6.6,  -9.3};
inline constexpr Weighting kWeightingC{-14.3, -11.2, -8.5, -6.2, -4.4, -3,   -2,   -1.3, -0.8,
                                       -0.5,  -0.3,  -0.2, -0.1, 0,    0,    0,    0,    0,
                                       0,     0,     0,    0,    -0.1, -0.2, -0.3, -0.5, -0.8,
                                       -1.3,  -2,    -3,   -4.4, -6.2, -8.5, -11.2};

/// The curve of IEC 537 at the exact frequencies 10^(band/10) Hz.
inline constexpr Weighting kWeightingD{
    -26.6, -24.6, -22.6, -20.6, -18.7, -16.7, -14.7, -12.8, -10.9, -9,  -7.2, -5.5,
    -4,    -2.6,  -1.6,  -0.8,  -0.4,  -0.3,  -0.5,  -0.6,  0,     2,   4.9,  7.9,
    10.4,  11.5,  11.1,  9.6,   7.6,   5.5,   3.4,   1.4,   -0.7,  -2.7};

}  // namespace aq

#pragma once

#include <array>
#include <cstdint>
#include <limits>

namespace aq {

/// The constants of one band's curve from level to noys: levels in dB, slopes in 1/dB (14 CFR 36,
/// A36.4.7).
struct NoyBand {
  double splA, splB, splC, splD, splE;
  double mB, mC, mD, mE;

  bool operator==(const NoyBand&) const = default;
};

inline constexpr std::int16_t kFirstNoyBand = 17;  // 50 Hz
inline constexpr std::int16_t kLastNoyBand = 40;   // 10 kHz

namespace noys {
/// Used for SPL(a), SPL(c) and M(c) in bands that lack them: the piece from SPL(b) then has no
/// upper end.
inline constexpr double kNone = std::numeric_limits<double>::infinity();
}  // namespace noys

/// The curves by band, from `kFirstNoyBand` up.
inline constexpr std::array<NoyBand, 24> kNoyBands{{
    {91, 64, 52, 49, 55, 0.043478, 0.030103, 0.07952, 0.058098},                        // 50 Hz
    {85.9, 60, 51, 44, 51, 0.040570, 0.030103, 0.06816, 0.058098},                      // 63 Hz
    {87.3, 56, 49, 39, 46, 0.036831, 0.030103, 0.06816, 0.052288},                      // 80 Hz
    {79.9, 53, 47, 34, 42, 0.036831, 0.030103, 0.05964, 0.047534},                      // 100 Hz
    {79.8, 51, 46, 30, 39, 0.035336, 0.030103, 0.053013, 0.043573},                     // 125 Hz
    {76, 48, 45, 27, 36, 0.033333, 0.030103, 0.053013, 0.043573},                       // 160 Hz
    {74, 46, 43, 24, 33, 0.033333, 0.030103, 0.053013, 0.040221},                       // 200 Hz
    {74.9, 44, 42, 21, 30, 0.032051, 0.030103, 0.053013, 0.037349},                     // 250 Hz
    {94.6, 42, 41, 18, 27, 0.030675, 0.030103, 0.053013, 0.034859},                     // 315 Hz
    {noys::kNone, 40, noys::kNone, 16, 25, 0.030103, noys::kNone, 0.053013, 0.034859},  // 400 Hz
    {noys::kNone, 40, noys::kNone, 16, 25, 0.030103, noys::kNone, 0.053013, 0.034859},  // 500 Hz
    {noys::kNone, 40, noys::kNone, 16, 25, 0.030103, noys::kNone, 0.053013, 0.034859},  // 630 Hz
    {noys::kNone, 40, noys::kNone, 16, 25, 0.030103, noys::kNone, 0.053013, 0.034859},  // 800 Hz
    {noys::kNone, 40, noys::kNone, 16, 25, 0.030103, noys::kNone, 0.053013, 0.034859},  // 1000 Hz
    {noys::kNone, 38, noys::kNone, 15, 23, 0.030103, noys::kNone, 0.05964, 0.034859},   // 1250 Hz
    {noys::kNone, 34, noys::kNone, 12, 21, 0.02996, noys::kNone, 0.053013, 0.040221},   // 1600 Hz
    {noys::kNone, 32, noys::kNone, 9, 18, 0.02996, noys::kNone, 0.053013, 0.037349},    // 2000 Hz
    {noys::kNone, 30, noys::kNone, 5, 15, 0.02996, noys::kNone, 0.047712, 0.034859},    // 2500 Hz
    {noys::kNone, 29, noys::kNone, 4, 14, 0.02996, noys::kNone, 0.047712, 0.034859},    // 3150 Hz
    {noys::kNone, 29, noys::kNone, 5, 14, 0.02996, noys::kNone, 0.053013, 0.034859},    // 4000 Hz
    {noys::kNone, 30, noys::kNone, 6, 15, 0.02996, noys::kNone, 0.053013, 0.034859},    // 5000 Hz
    {noys::kNone, 31, noys::kNone, 10, 17, 0.02996, noys::kNone, 0.06816, 0.037349},    // 6300 Hz
    {44.3, 37, 34, 17, 23, 0.042285, 0.02996, 0.07952, 0.037349},                       // 8000 Hz
    {50.7, 41, 37, 21, 29, 0.042285, 0.02996, 0.05964, 0.043573},                       // 10000 Hz
}};

}  // namespace aq

#pragma once

#include <memory>

#include "arrays.h"

namespace aq::python {

using Levels = py::array_t<double, py::array::c_style>;
constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();

/// Runs `work`; prefixes model errors with `place` and `number`.
template <class Work>
auto at(const char* place, std::int16_t number, const Work& work) {
  try {
    return work();
  } catch (const Error& error) {
    throw Error(error.code(), place + (" " + std::to_string(number)) + ": " + error.what());
  }
}

/// Copies the levels of a spectrum, starting at band `low`, into `cells`, which must have room for
/// all of them.
inline void takeLevels(const AQ_Spectrum& spectrum, std::int16_t low, std::span<double> cells) {
  const auto codes = spectrum.levelCodes();
  const auto doubles = spectrum.levelDoubles();
  if (codes.size() + doubles.size() != cells.size()) {
    std::fill(cells.begin(), cells.end(), kMissing);
  }
  if (!codes.empty() || !doubles.empty()) {
    const auto first = cells.begin() + (spectrum.LowBand() - low);
    copyLevels(codes, std::to_address(first));
    std::copy(doubles.begin(), doubles.end(), first);
    return;
  }
  for (const auto& [band, level] : spectrum) {
    const int cell = band - low;
    if (cell < 0 || cell >= std::ssize(cells)) continue;  // `cells` has no room for it
    cells[static_cast<std::size_t>(cell)] =
        at("band", band, [&level = level] { return level.toDouble(); });
  }
}

/// A spectrum of these levels starting at band `low`; NaN stores no level.
inline std::shared_ptr<AQ_Spectrum> spectrumFrom(std::span<const double> levels, std::int16_t low) {
  auto spectrum = std::make_shared<AQ_Spectrum>();
  if (std::none_of(levels.begin(), levels.end(), [](double level) { return std::isnan(level); })) {
    spectrum->assignLevels(low, levels);
    return spectrum;
  }
  int band = low;
  for (const double level : levels) {
    if (!std::isnan(level)) spectrum->SPL(static_cast<std::int16_t>(band), level);
    ++band;
  }
  return spectrum;
}

}  // namespace aq::python

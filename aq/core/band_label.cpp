#include "aq/core/band_label.h"

#include <array>

#include "aq/core/error.h"

namespace aq {
namespace {

constexpr std::int16_t kFirst = 2;
constexpr std::array<std::string_view, 49> kLabels{
    "B2/1.6Hz",   "B3/2Hz",      "B4/2.5Hz",   "B5/3.15Hz",   "B6/4Hz",    "B7/5Hz",
    "B8/6.3Hz",   "B9/8Hz",      "B10/10Hz",   "B11/12.5Hz",  "B12/16Hz",  "B13/20Hz",
    "B14/25Hz",   "B15/31.5Hz",  "B16/40Hz",   "B17/50Hz",    "B18/63Hz",  "B19/80Hz",
    "B20/100Hz",  "B21/125Hz",   "B22/160Hz",  "B23/200Hz",   "B24/250Hz", "B25/315Hz",
    "B26/400Hz",  "B27/500Hz",   "B28/630Hz",  "B29/800Hz",   "B30/1kHz",  "B31/1.25kHz",
    "B32/1.6kHz", "B33/2kHz",    "B34/2.5kHz", "B35/3.15kHz", "B36/4kHz",  "B37/5kHz",
    "B38/6.3kHz", "B39/8kHz",    "B40/10kHz",  "B41/12.5kHz", "B42/16kHz", "B43/20kHz",
    "B44/25kHz",  "B45/31.5kHz", "B46/40kHz",  "B47/50kHz",   "B48/63kHz", "B49/80kHz",
    "B50/100kHz"};

}  // namespace

std::string_view bandLabel(std::int16_t band) {
  if (band < kFirst || band >= kFirst + static_cast<int>(kLabels.size())) {
    throw Error(ErrorCode::InvalidArgument, "band " + std::to_string(band) + " has no label");
  }
  return kLabels[static_cast<std::size_t>(band - kFirst)];
}

void appendBandLabels(std::string& line, std::int16_t low, std::int16_t high) {
  for (std::int16_t band = low; band < high; ++band) {
    line += bandLabel(band);
    line += ',';
  }
  line += bandLabel(high);
}

}  // namespace aq

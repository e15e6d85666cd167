#include "tools/aqdata/plot.h"

#include <aq/core/band_label.h>
#include <aq/core/enumerations.h>
#include <aq/core/error.h>
#include <aq/noise/weighted_level.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>

#include "tools/aqdata/terminal.h"
#include "tools/aqdata/text.h"

namespace aqdata {
namespace {

struct Drawn {
  double level;  // dB
  bool masked = false;
};
using Level = std::optional<Drawn>;

/// The range of the drawn levels, extended to multiples of ten.
struct Scale {
  double low = std::numeric_limits<double>::max();
  double high = std::numeric_limits<double>::lowest();

  void see(const Level& level) {
    if (!level) return;
    low = std::min(low, std::floor(level->level / 10) * 10);
    high = std::max(high, std::ceil(level->level / 10) * 10);
  }
  [[nodiscard]] bool empty() const { return low > high; }

  /// The position of a level on the scale, from 0 at the bottom to 1 at the top.
  [[nodiscard]] double share(double level) const {
    return high > low ? (level - low) / (high - low) : 1;
  }
};

Level levelOf(const Json& cell, bool masked = false) {
  return isLevel(cell) ? Level({cell.get<double>(), masked}) : Level();
}

/// The overall level, without masked bands.
Level sumOf(const Sheet::Row& row) {
  std::vector<Json> heard;
  for (std::size_t i = 0; i < row.bands.size(); ++i) {
    if (!row.masks(i)) heard.push_back(row.bands[i]);
  }
  return levelOf(energySum(heard));
}

/// Takes the loudest of the records that share a column, so that no peak is lost.
std::vector<Level> resampled(const std::vector<Level>& levels, std::size_t columns) {
  if (levels.size() <= columns) return levels;
  std::vector<Level> fewer(columns);
  for (std::size_t i = 0; i < levels.size(); ++i) {
    Level& level = fewer[i * columns / levels.size()];
    if (levels[i] && (!level || levels[i]->level > level->level)) level = levels[i];
  }
  return fewer;
}

std::string bandName(std::int16_t band) {
  try {
    return std::string(aq::bandLabel(band));
  } catch (const aq::Error&) {
    return fmt::format("B{}", band);
  }
}

constexpr std::string_view kMaskedBlock = "░";
constexpr std::string_view kMaskedCell = "·";
constexpr std::array<std::string_view, 9> kBlocks{" ", "▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};

/// The character for the part of a bar that lies in one line; `height` is in lines.
std::string_view blockIn(double height, int line) {
  const double part = std::clamp(height - line, 0.0, 1.0);
  return kBlocks[static_cast<std::size_t>(std::lround(part * 8))];
}

std::string bar(double share, std::size_t width, bool masked) {
  constexpr std::array<std::string_view, 8> kParts{"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};
  const auto eighths =
      static_cast<std::size_t>(std::lround(share * static_cast<double>(width) * 8));
  std::string text;
  for (std::size_t i = 0; i < eighths / 8; ++i) text += masked ? kMaskedBlock : "█";
  return masked ? text : text.append(kParts[eighths % 8]);
}

/// Prints the first and the last time below the ends of a drawing.
void printTimes(Session& session, const Sheet& sheet, std::size_t margin, std::size_t columns) {
  const auto text = [](const Sheet::Row& row) {
    return row.cells.size() > 1 ? cellText(row.cells[1]) : cellText(row.cells[0]);
  };
  const std::string first = text(sheet.rows.front());
  const std::string last = text(sheet.rows.back());
  const std::size_t used = first.size() + last.size();
  const std::size_t gap = columns > used ? columns - used : 1;
  session.print(std::string(margin, ' ') + first + std::string(gap, ' ') + last + '\n');
}

std::size_t room(std::size_t margin) {
  return static_cast<std::size_t>(std::max(40, terminal::width())) - margin - 1;
}

/// A colour from blue (0) through green and yellow to red (1).
std::array<int, 3> colourAt(double share) {
  static constexpr std::array<std::array<int, 3>, 5> kStops{
      {{20, 20, 70}, {30, 90, 180}, {40, 170, 120}, {240, 210, 60}, {220, 40, 30}}};
  const double at = std::clamp(share, 0.0, 1.0) * (kStops.size() - 1);
  const auto below = std::min(static_cast<std::size_t>(at), kStops.size() - 2);
  std::array<int, 3> colour{};
  for (std::size_t i = 0; i < colour.size(); ++i) {
    colour[i] = static_cast<int>(std::lround(
        std::lerp(kStops[below][i], kStops[below + 1][i], at - static_cast<double>(below))));
  }
  return colour;
}

/// One cell of a spectrogram: a coloured blank or, if the terminal has too few colours, a shaded
/// block; a dot if the level is masked.
std::string cellAt(const Level& level, const Scale& scale, terminal::Colours colours) {
  if (!level) return " ";
  const double share = scale.share(level->level);
  const std::string_view sign = level->masked ? kMaskedCell : " ";
  const auto [red, green, blue] = colourAt(share);
  if (colours == terminal::Colours::True) {
    return fmt::format("\x1b[48;2;{};{};{}m{}", red, green, blue, sign);
  }
  if (colours == terminal::Colours::Many256) {
    const auto cube = [](int value) { return (value * 5 + 127) / 255; };
    return fmt::format("\x1b[48;5;{}m{}", 16 + 36 * cube(red) + 6 * cube(green) + cube(blue), sign);
  }
  if (level->masked) return std::string(sign);
  constexpr std::array<std::string_view, 5> kShades{" ", "░", "▒", "▓", "█"};
  return std::string(kShades[static_cast<std::size_t>(std::lround(share * 4))]);
}

/// The level `levelIn(row)` of every record; no value for a missing record number.
template <class LevelIn>
std::vector<Level> levelsAcross(const Sheet& sheet, const LevelIn& levelIn) {
  std::vector<Level> levels;
  for (const Sheet::Row& row : sheet.rows) {
    levels.resize(static_cast<std::size_t>(row.number - sheet.rows.front().number));
    levels.push_back(levelIn(row));
  }
  return levels;
}

std::string scaleText(const Scale& scale) {
  return fmt::format("{:.0f} to {:.0f} dB", scale.low, scale.high);
}

}  // namespace

bool isLevel(const Json& cell) {
  constexpr double kSummable = 3000;  // dB; levels beyond are not real and would spoil the axis
  return cell.is_number() && cell.get<double>() != double{aq::AQ_INVALID_LEVEL} &&
         std::abs(cell.get<double>()) <= kSummable;
}

Json energySum(const std::vector<Json>& levels) {
  std::vector<double> valid;
  for (const Json& level : levels) {
    if (isLevel(level)) valid.push_back(level.get<double>());
  }
  const auto sum = aq::energySum(valid);
  return sum ? Json(std::round(*sum * 100) / 100) : Json();
}

void plotSpectrum(Session& session, const Sheet& sheet, const Sheet::Row& row) {
  constexpr std::size_t kMargin = 22;
  Scale scale;
  for (const Json& cell : row.bands) scale.see(levelOf(cell));
  for (std::size_t i = 0; i < row.bands.size(); ++i) {
    const Level level = levelOf(row.bands[i], row.masks(i));
    const std::string drawn =
        level ? bar(scale.share(level->level), room(kMargin), level->masked) : "";
    const char* const star = row.masks(i) ? "*" : " ";
    session.print(fmt::format("{:<11} {:>7}{} {}\n", bandName(sheet.band(i)),
                              level ? fmt::format("{:.2f}", level->level) : "-", star,
                              session.painted("36", drawn)));
  }
  if (!scale.empty()) session.print(session.faint(fmt::format("bars from {}\n", scaleText(scale))));
}

void plotHistory(Session& session, const Sheet& sheet) {
  constexpr std::size_t kMargin = 8;
  constexpr int kLines = 12;
  const bool single = sheet.low == sheet.high;
  const auto levelIn = [single](const Sheet::Row& row) {
    return single && !row.bands.empty() ? levelOf(row.bands.front(), row.masks(0)) : sumOf(row);
  };
  const bool masked = !sheet.rows.front().masked.empty();
  const std::vector<Level> levels = resampled(levelsAcross(sheet, levelIn), room(kMargin));
  Scale scale;
  for (const Level& level : levels) scale.see(level);
  if (scale.empty()) return session.print("no valid level to draw\n");
  session.print(fmt::format("Level of {}{} in dB\n",
                            single ? bandName(sheet.low) : std::string("all bands combined"),
                            !masked  ? ""
                            : single ? ", light where masked,"
                                     : ", excluding masked ones,"));
  for (int line = kLines - 1; line >= 0; --line) {
    std::string drawn;
    for (const Level& level : levels) {
      const std::string_view block =
          blockIn(level ? std::max(0.125, scale.share(level->level) * kLines) : 0, line);
      drawn += level && level->masked && block != " " ? kMaskedBlock : block;
    }
    const double at = scale.low + (scale.high - scale.low) * (line + 1) / kLines;
    const bool labelled = line == kLines - 1 || line == kLines / 2 - 1;
    session.print(fmt::format("{:>6} {}{}\n", labelled ? fmt::format("{:.0f}", at) : "",
                              labelled ? "┤" : "│", session.painted("36", drawn)));
  }
  session.print(fmt::format("{:>6.0f} └", scale.low));
  std::string axis;
  for (std::size_t i = 0; i < levels.size(); ++i) axis += "─";
  session.print(axis + '\n');
  printTimes(session, sheet, kMargin, levels.size());
}

void plotSpectrogram(Session& session, const Sheet& sheet) {
  constexpr std::size_t kMargin = 12;
  const auto colours =
      session.colourful()
          ? std::max(terminal::colours(), session.colour == "always" ? terminal::Colours::Many256
                                                                     : terminal::Colours::None)
          : terminal::Colours::None;
  Scale scale;
  std::vector<std::vector<Level>> bands;
  for (std::int32_t band = sheet.low; band <= sheet.high; ++band) {
    const auto levelIn = [place = bands.size()](const Sheet::Row& row) {
      return place < row.bands.size() ? levelOf(row.bands[place], row.masks(place)) : Level();
    };
    bands.push_back(resampled(levelsAcross(sheet, levelIn), room(kMargin)));
    for (const Level& level : bands.back()) scale.see(level);
  }
  if (scale.empty()) return session.print("no valid level to draw\n");
  const bool coloured = colours == terminal::Colours::Many256 || colours == terminal::Colours::True;
  for (std::size_t i = bands.size(); i-- > 0;) {
    std::string drawn;
    for (const Level& level : bands[i]) drawn += cellAt(level, scale, colours);
    session.print(
        fmt::format("{:<11} {}{}\n", bandName(sheet.band(i)), drawn, coloured ? "\x1b[0m" : ""));
  }
  printTimes(session, sheet, kMargin, bands.front().size());
  std::string legend;
  for (int i = 0; i <= 20; ++i)
    legend += cellAt(Drawn{scale.low + (scale.high - scale.low) * i / 20}, scale, colours);
  const bool masked = !sheet.rows.front().masked.empty();
  session.print(fmt::format("{}{}{} {}{}\n", std::string(kMargin, ' '), legend,
                            coloured ? "\x1b[0m" : "", scaleText(scale),
                            masked ? fmt::format(", {} masked", kMaskedCell) : ""));
}

}  // namespace aqdata

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "aq/check/checks.h"
#include "aq/check/header_check.h"
#include "aq/core/time.h"
#include "aq/text/number_text.h"

// Positions and geometries must agree with the files that their headers name as sources.
namespace aq {
namespace {

using PositionsRead = Content<AQ_HeaderPTH, AQ_PositionTimeHistory>;
using GeometryRead = Content<AQ_HeaderGTH, AQ_GeometryTimeHistory>;

// Line numbers in headers, which are the same in all files of a kind.
constexpr std::size_t kMicrophoneLine = 6;
constexpr std::size_t kMicrophonePositionLine = 7;
constexpr std::size_t kHistoryLine = 9;
constexpr std::size_t kPositionsLine = 11;
constexpr std::size_t kTrackingLine = 6;

/// Whether more than a tenth of the points or positions are wrong, which is too many for isolated
/// damage.
template <class Read>
bool areMany(std::size_t wrong, const Read& read) {
  return wrong * 10 > static_cast<std::size_t>(read.model->Count());
}

template <class Read>
std::string countText(std::size_t wrong, const Read& read, const char* ofWhat = " points") {
  return std::to_string(wrong) + " of " + std::to_string(read.model->Count()) + ofWhat;
}

void checkMicrophoneOf(const std::string& source, const GeometryRead& read,
                       const Reporter& report) {
  constexpr double kNear = 0.05;  // in the files' length unit
  FormatOf<AQ_Microphone>::File file;
  FormatOf<AQ_Microphone>::Content found;
  if (readContent(file, source, found) != AQ_DATA_OK) return;
  const AQ_Microphone& microphone = *found.model;
  const AQ_Position& at = *read.header->MicrophonePosition;
  const auto isNear = [](double one, double other) { return std::abs(one - other) <= kNear; };
  const bool height =
      isNear(at.Z(), microphone.Z) || isNear(at.Z(), microphone.Z + microphone.Height);
  if (isNear(at.X(), microphone.X) && isNear(at.Y(), microphone.Y) && height) return;
  report(Kind::SourceMisfit, {.line = kMicrophonePositionLine, .field = 2},
         shown(read.header->MICFileName) + " puts the microphone at " + numberText(microphone.X) +
             ", " + numberText(microphone.Y) + ", " + numberText(microphone.Z) +
             " with a height of " + numberText(microphone.Height));
}

void checkHistoryOf(const std::string& source, const GeometryRead& read, const Reporter& report) {
  constexpr double kNear = 0.0201;  // s; both times may be rounded to hundredths
  const auto found = historyIn(source);
  if (!found.model) return;
  const std::string& microphone = found.header->sMicrophoneID;
  const std::string& own = read.header->MicrophoneID;
  if (!microphone.empty() && !own.empty() && upperCased(microphone) != upperCased(own)) {
    report(Kind::SourceMisfit, {.line = kMicrophoneLine, .field = 2},
           shown(read.header->STHFileName) + " is from microphone " + shown(microphone));
  }
  std::vector<double> stamps;
  for (const auto& [record, spectrum] : *found.model) {
    stamps.push_back(spectrum->lazyTime().secondsOfDay());
  }
  std::sort(stamps.begin(), stamps.end());
  std::size_t wrong = 0;
  for (const auto& [record, point] : *read.model) {
    const double time = point->Tm()->TODseconds();
    const auto next = std::lower_bound(stamps.begin(), stamps.end(), time - kNear);
    if (next == stamps.end() || *next > time + kNear) ++wrong;
  }
  if (!areMany(wrong, read)) return;
  report(
      Kind::SourceMisfit, {.line = kHistoryLine, .field = 2},
      shown(read.header->STHFileName) + " has no record at the times of " + countText(wrong, read));
}

std::shared_ptr<AQ_PositionTimeHistory> positionsIn(const std::string& source) {
  if (kindOfFile(source) == FileKind::Tracking) {
    AQ_DataTSPI file;
    file.RT20Limit(255);
    Content<void, AQ_PositionTimeHistory> found;
    return readContent(file, source, found) == AQ_DATA_OK ? found.model : nullptr;
  }
  AQ_DataPTH file;
  Content<AQ_HeaderPTH, AQ_PositionTimeHistory> found;
  return readContent(file, source, found) == AQ_DATA_OK ? found.model : nullptr;
}

/// The path that a source file gives, with times that continue across midnight.
class SourcePath {
 public:
  explicit SourcePath(const AQ_PositionTimeHistory& positions) {
    for (const auto& [place, position] : positions) {
      const double time = position->lazyTime().secondsOfDay();
      times_.push_back(times_.empty() ? time : near(time));
      positions_.push_back(position.get());
    }
  }

  [[nodiscard]] bool isOrdered() const {
    return times_.size() > 1 && std::is_sorted(times_.begin(), times_.end());
  }

  /// Whether the path covers a time, give or take a tenth of a second.
  [[nodiscard]] bool covers(double time) const {
    constexpr double kBeyond = 0.1;
    time = near(time);
    return time >= times_.front() - kBeyond && time <= times_.back() + kBeyond;
  }

  /// Whether the path is near the position `at` at `time`. Allows for times rounded to tenths of a
  /// second and for a path that curves between positions.
  [[nodiscard]] bool passes(double time, const AQ_Position& at) const {
    if (!covers(time)) return false;
    time = near(time);
    const auto after = std::upper_bound(times_.begin() + 1, times_.end() - 1, time);
    const auto next = static_cast<std::size_t>(after - times_.begin());
    const AQ_Position& from = *positions_[next - 1];
    const AQ_Position& to = *positions_[next];
    const double step = std::max(times_[next] - times_[next - 1], 1e-3);
    const double part = (time - times_[next - 1]) / step;
    const double length = std::hypot(to.X() - from.X(), to.Y() - from.Y(), to.Z() - from.Z());
    const double off = std::hypot(at.X() - from.X() - part * (to.X() - from.X()),
                                  at.Y() - from.Y() - part * (to.Y() - from.Y()),
                                  at.Z() - from.Z() - part * (to.Z() - from.Z()));
    return off <= 10 + 0.2 * length / step + 0.05 * length;
  }

 private:
  [[nodiscard]] double near(double time) const {
    return times_.front() + std::remainder(time - times_.front(), kSecondsPerDay);
  }

  std::vector<double> times_;
  std::vector<const AQ_Position*> positions_;
};

void checkPositionsOf(const std::string& source, const GeometryRead& read, const Reporter& report) {
  const auto positions = positionsIn(source);
  if (!positions) return;
  const SourcePath path(*positions);
  if (!path.isOrdered()) return;
  std::size_t wrong = 0;
  for (const auto& [record, point] : *read.model) {
    if (!path.passes(point->Te()->TODseconds(), *point->Pe())) ++wrong;
  }
  if (!areMany(wrong, read)) return;
  report(Kind::SourceMisfit, {.line = kPositionsLine, .field = 2},
         shown(read.header->PTHFileName) + " puts the source elsewhere at the emission times of " +
             countText(wrong, read));
}

}  // namespace

void checkSources(const PositionsRead& read, const std::string& path, const Reporter& report) {
  const std::string source = sourceBeside(path, read.header->sTSPIFileName);
  const auto tracking = source.empty() ? nullptr : positionsIn(source);
  if (!tracking) return;
  const SourcePath fixes(*tracking);
  if (!fixes.isOrdered()) return;
  std::size_t wrong = 0;
  for (const auto& [place, position] : *read.model) {
    if (!fixes.covers(position->lazyTime().secondsOfDay())) ++wrong;
  }
  if (!areMany(wrong, read)) return;
  report(Kind::SourceMisfit, {.line = kTrackingLine, .field = 2},
         shown(read.header->sTSPIFileName) + " has no fix at the times of " +
             countText(wrong, read, " positions"));
}

void checkSources(const GeometryRead& read, const std::string& path, const Reporter& report) {
  const auto with = [&](const std::string& recorded, auto* check) {
    const std::string source = sourceBeside(path, recorded);
    if (!source.empty()) check(source, read, report);
  };
  with(read.header->MICFileName, checkMicrophoneOf);
  with(read.header->STHFileName, checkHistoryOf);
  with(read.header->PTHFileName, checkPositionsOf);
}

}  // namespace aq

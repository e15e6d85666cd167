#include "aq/files/recording_trace.h"

#include <algorithm>
#include <cmath>

#include "aq/core/error.h"
#include "aq/files/band_plan.h"
#include "aq/text/fields.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

using sdf::kChannel;
using sdf::kData;
using sdf::kVector;
using sdf::kWindow;
using sdf::Record;
using sdf::Recording;
using sdf::TraceSet;

// Domains.
constexpr std::int32_t kFrequency = 0;
constexpr std::int32_t kOctave = 6;
// Types of data.
constexpr std::int32_t kAutoPower = 2;
constexpr std::int32_t kThirdOctave = 12;
constexpr std::int32_t kPressure = 49;
// Kinds of window correction.
constexpr std::int32_t kNarrow = 1;
constexpr std::int32_t kWide = 2;

bool isData(const TraceSet& set, std::int32_t domain, std::int32_t type) {
  return set.header.integer(kData["domain"]) == domain &&
         set.header.integer(kData["dataType"]) == type;
}

/// Whether the points are consecutive third-octave bands.
bool hasThirdOctaves(const Recording& recording, const TraceSet& set) {
  if (set.traces == 0) return false;
  try {
    const std::size_t points = validPoints(recording, set, set.points);
    return BandPlan::ofOctaves(recording.x(set, 0, 0, points)).isWhole();
  } catch (const ReadFailure&) {
    return false;
  }
}

/// The record with this number; null for -1.
const Record* numbered(const std::vector<Record>& records, const Record& by, std::int64_t number,
                       const char* what) {
  if (number == -1) return nullptr;
  if (number < 0 || std::cmp_greater_equal(number, records.size())) {
    by.fail(std::string("the number of one of the ") + std::to_string(records.size()) + ' ' + what,
            std::to_string(number));
  }
  return &records[static_cast<std::size_t>(number)];
}

const Record* vectorOf(const Recording& recording, const TraceSet& set, std::size_t trace) {
  const auto& vectors = recording.records().all(sdf::RecordType::Vector);
  const std::int32_t first = set.header.integer(kData["first_VECTOR_recordNum"]);
  if (vectors.empty() || first == -1) return nullptr;
  const auto number = first + static_cast<std::int64_t>(trace);
  return numbered(vectors, set.header, first < 0 ? first : number, "vectors");
}

/// The amplitude factor that gives narrow-band data the window's wide-band correction, which suits
/// noise. Undoes a narrow-band correction already applied.
double windowFactor(const Record& channel) {
  const Record window = channel.part(kChannel["window"]);
  const double wide = window.real(kWindow["wideBandCorr"]);
  const std::int32_t applied = window.integer(kWindow["windowCorrMode"]);
  if (applied == kWide) return 1;
  return applied == kNarrow ? wide / window.real(kWindow["narrowBandCorr"]) : wide;
}

/// The factor that a channel contributes to a trace's gain.
double factorOf(const Record& channel, double power, bool narrow) {
  constexpr double kWholePower = 48;
  const double internal = channel.real(kChannel["int2engrUnit"]);
  if (internal == 0) channel.fail("an int2engrUnit other than 0", "0");
  return std::pow((narrow ? windowFactor(channel) : 1) / internal, power / kWholePower);
}

void requireRealData(const TraceSet& set) {
  if (set.header.integer(kData["yIsComplex"]) != 0) set.header.fail("real data", "complex data");
  if (set.valuesOfPoint != 1) {
    set.header.fail("one value per point", std::to_string(set.valuesOfPoint));
  }
}

std::size_t rowOf(const TraceSet& set, std::int16_t channel) {
  const std::uint32_t rows = set.header.count(kData["total_rows"]);
  if (channel < 1 || std::cmp_greater(channel, rows) || set.traces == 0) {
    set.header.fail("channel " + std::to_string(channel),
                    std::to_string(set.traces == 0 ? 0 : rows) + " of them");
  }
  return static_cast<std::size_t>(channel) - 1;
}

}  // namespace

bool isOctaves(const TraceSet& set) { return set.header.integer(kData["domain"]) == kOctave; }

std::size_t validPoints(const Recording& recording, const TraceSet& set, std::size_t points) {
  constexpr int kSinceLongs = 3;
  const std::int64_t last = recording.records().integer(set.header, kData["last_valid_index"],
                                                        kSinceLongs, kData["last_valid_indexOld"]);
  return std::min(points, static_cast<std::size_t>(std::max<std::int64_t>(last + 1, 0)));
}

const TraceSet& levelsOf(const Recording& recording) {
  const auto& sets = recording.sets();
  const auto octaves = std::find_if(sets.begin(), sets.end(), [&](const TraceSet& set) {
    return isData(set, kOctave, kThirdOctave) ||
           (isData(set, kOctave, kPressure) && hasThirdOctaves(recording, set));
  });
  if (octaves != sets.end()) return *octaves;
  const auto power = std::find_if(sets.begin(), sets.end(), [](const TraceSet& set) {
    return isData(set, kFrequency, kAutoPower);
  });
  if (power != sets.end()) return *power;
  failRead(0, 0, "third-octave or power data",
           sets.empty() ? "no data" : shown(sets.front().header.text(kData["dataTitle"])));
}

RecordingTrace traceOf(const Recording& recording, std::int16_t channel) {
  const TraceSet& set = levelsOf(recording);
  requireRealData(set);
  RecordingTrace trace{.set = &set,
                       .trace = rowOf(set, channel),
                       .narrow = !isOctaves(set),
                       .channel = nullptr,
                       .unit = {},
                       .pressure = false,
                       .gain = 1};
  const auto& channels = recording.records().all(sdf::RecordType::Channel);
  if (const Record* const vector = vectorOf(recording, set, trace.trace)) {
    for (const std::size_t i : {0U, 1U}) {
      const Record* const one = numbered(
          channels, *vector, vector->integer(kVector["the_CHANNEL_record"], i), "channels");
      if (one == nullptr) continue;
      if (trace.channel == nullptr) trace.channel = one;
      trace.gain *= factorOf(*one, vector->integer(kVector["pwrOfChan"], i), trace.narrow);
    }
  }
  const bool own = set.header.integer(kData["yUnitValid"]) != 0;
  if (!own && trace.channel == nullptr) {
    set.header.fail("a yUnitValid of 1, as its trace has no channel", "0");
  }
  const sdf::UnitOfValues unit =
      own ? set.header.unit(kData["yUnit"]) : trace.channel->unit(kChannel["engUnit"]);
  trace.unit = unit.label;
  trace.pressure = unit.isPressure();
  const bool power = set.header.integer(kData["yIsPowerData"]) != 0;
  trace.gain *= power ? unit.factor * unit.factor : unit.factor;
  if (!std::isfinite(trace.gain) || trace.gain == 0) {
    set.header.fail("a finite factor to its unit, other than 0", exactText(trace.gain));
  }
  constexpr int kScaled = 2;
  const bool scaled = trace.channel != nullptr && recording.records().revision() >= kScaled &&
                      trace.channel->has(kChannel["channelOffset"]);
  const auto type = sdf::numberType(set.header, kData["ydata_type"]);
  if (scaled && (type == sdf::NumberType::Short || type == sdf::NumberType::Long)) {
    trace.offset = trace.channel->real(kChannel["channelOffset"]);
    trace.scale = trace.channel->real(kChannel["channelScale"]);
    if (trace.scale == 0) trace.channel->fail("a channelScale other than 0", "0");
  }
  return trace;
}

std::vector<std::string> marksOf(const RecordingTrace& trace) {
  std::vector<std::string> marks;
  const Record& header = trace.set->header;
  if (header.integer(kData["yIsValid"]) == 0) marks.emplace_back("Data marked as not valid");
  if (trace.channel == nullptr) return marks;
  const auto word = [](const Record& record, const sdf::Field& field) {
    const std::int32_t code = record.integer(field);
    const std::string_view known = sdf::wordOf(*field.codes, code);
    return known.empty() ? std::to_string(code) : std::string(known);
  };
  const Record& channel = *trace.channel;
  if (channel.integer(kChannel["weight"]) != 0) {
    marks.push_back("Frequency weighting of the channel: " + word(channel, kChannel["weight"]));
  }
  if (channel.integer(kChannel["overloaded"]) != 0) marks.emplace_back("Channel overloaded");
  const Record window = channel.part(kChannel["window"]);
  if (window.integer(kWindow["windowCorrMode"]) != 0) {
    marks.push_back("Window correction of the analyzer: " +
                    word(window, kWindow["windowCorrMode"]));
  }
  return marks;
}

std::vector<std::string> notesOf(const RecordingTrace& trace, double calibration) {
  std::vector<std::string> notes;
  const Record& header = trace.set->header;
  notes.push_back("Channel " + std::to_string(trace.trace + 1) + " of " +
                  std::to_string(header.count(kData["total_rows"])) +
                  (trace.narrow ? ", bands summed from narrow ones" : ""));
  notes.push_back("Levels in dB re " +
                  (trace.pressure ? "20 uPa" : "1 SI unit of " + shown(trace.unit)));
  if (calibration != 0) notes.push_back("Calibration of " + numberText(calibration) + " dB added");
  for (std::string& mark : marksOf(trace)) notes.push_back(std::move(mark));
  return notes;
}

}  // namespace aq

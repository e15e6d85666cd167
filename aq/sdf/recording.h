#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "aq/core/export.h"
#include "aq/sdf/numbers.h"
#include "aq/sdf/record_list.h"

namespace aq::sdf {

/// How the x values of a trace are given.
enum class Axis : std::int16_t {
  Linear,       ///< x0 + n dx
  Logarithmic,  ///< x0 dx^n
  OfFile,       ///< one vector for all traces
  OfData,       ///< one vector for each data header
  OfTrace,      ///< one vector for each trace
};

/// The traces of one data header, and where their values are.
struct TraceSet {
  Record header;
  std::size_t points = 0;         ///< points per trace
  std::size_t valuesOfPoint = 1;  ///< `yPerPoint`, or twice that for complex data
  std::size_t traces = 0;         ///< traces per scan
  bool scanned = false;  ///< whether each scan has its own values; otherwise all share them
  NumberType type = NumberType::Float;
  std::uint64_t traceBytes = 0;
  std::uint64_t at = 0;         ///< offset of the first value in the Y record
  std::uint64_t scanBytes = 0;  ///< bytes from one scan to the next
  Axis axis = Axis::Linear;
  NumberType axisType = NumberType::Float;
  std::size_t axisStep = 1;  ///< numbers per point in the X record; the first is used
  std::uint64_t axisBytes = 0;
  std::uint64_t axisAt = 0;  ///< offset of the first x in the X record
};

/// The scans of a recording: how many it has room for, and how many are valid; the valid ones come
/// first.
struct Scans {
  bool any = false;  ///< false: everything was measured once
  std::size_t kept = 1;
  std::size_t valid = 1;
  bool byData = false;  ///< true: the scans of each data header are contiguous; false: the
                        ///< data headers of each scan are contiguous
};

/// The quantity at which each scan was measured, such as a time or a speed.
struct ScanVariable {
  const Record* record;
  UnitOfValues unit;
  bool isTime;
  NumberType type;
};

/// The values of one trace of one scan, from a text file.
struct TextTrace {
  std::string values;  ///< doubles, stored as in a binary file
  std::string x;       ///< also doubles; empty if the text file gives none
  std::optional<double> scanVariable;
};

/// The content of an analyzer recording: its records, and the values of its traces as stored,
/// without units. Traces, scans and points count from 0.
class AQ_API Recording {
 public:
  using TextTraces = std::map<std::tuple<std::size_t, std::size_t, std::size_t>, TextTrace>;

  /// Reads a binary file. Throws `platform::SystemError` if it cannot be read, and `ReadFailure` if
  /// it is not a recording or contradicts itself or its size, before allocating the memory that it
  /// claims to need.
  static Recording fromFile(const std::string& path);

  explicit Recording(RecordList records);
  /// A recording read from a text file; a key of `traces` holds the indices of a data header, a
  /// trace and a scan.
  Recording(RecordList records, TextTraces traces);

  [[nodiscard]] const RecordList& records() const { return records_; }
  [[nodiscard]] const Scans& scans() const { return scans_; }
  [[nodiscard]] const std::vector<TraceSet>& sets() const { return sets_; }

  /// How many scans of a set are stored, valid or not.
  [[nodiscard]] std::size_t scansOf(const TraceSet& set) const {
    if (set.traces == 0) return 0;
    return set.scanned ? scans_.kept : 1;
  }
  [[nodiscard]] std::size_t placeOf(const TraceSet& set) const {
    return static_cast<std::size_t>(&set - sets_.data());
  }

  /// The values of a trace; complex data alternates real and imaginary parts. Throws `ReadFailure`
  /// if a text file does not give them.
  [[nodiscard]] Numbers y(const TraceSet& set, std::size_t trace, std::size_t scan) const;

  /// The x values of the first `points` points of a trace.
  [[nodiscard]] std::vector<double> x(const TraceSet& set, std::size_t trace, std::size_t scan,
                                      std::size_t points) const;

  /// The scan variable of a set: a time if there is one, otherwise the first variable; nothing if
  /// there is none.
  [[nodiscard]] std::optional<ScanVariable> scanVariable(const TraceSet& set) const;
  /// The value of a scan variable, in its own unit; nothing if a text file gives none.
  [[nodiscard]] std::optional<double> scanValue(const ScanVariable& variable, const TraceSet& set,
                                                std::size_t trace, std::size_t scan) const;

 private:
  void readScans();
  void checkScanValues() const;
  void readSets();
  void placeY();
  void placeX();
  [[nodiscard]] std::uint64_t endOfX(bool eachScan);
  [[nodiscard]] TraceSet setOf(const Record& header) const;
  [[nodiscard]] const TextTrace& textTrace(const TraceSet& set, std::size_t trace,
                                           std::size_t scan) const;
  [[nodiscard]] bool isText() const { return fromText_; }

  RecordList records_;
  bool fromText_ = false;
  TextTraces text_;
  Scans scans_;
  std::vector<TraceSet> sets_;
  bool axisOfScan_ = true;  // the traces of each scan have their own x vectors
};

/// The number type for the code in `field`; throws `ReadFailure` if the code is unknown.
[[nodiscard]] NumberType numberType(const Record& record, const Field& field);

}  // namespace aq::sdf

#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "aq/core/collection.h"
#include "aq/core/enumerations.h"
#include "aq/core/export.h"
#include "aq/core/time.h"
#include "aq/detail/pointers.h"
#include "aq/text/file_class.h"

namespace aq {

/// The processing parameters of an analysis, and the file that holds them
/// (docs/formats/variable-initialization.md). Setters accept any value.
class AQ_API AQ_DataINI : public FileClass {
 public:
  /// The file type that the first line names.
  static constexpr std::string_view kTitle = "Variable Initialization File";

  /// The value of `NuTimg` if it is not set.
  static constexpr auto kTimingNotSet = static_cast<AQ_TimeStampType>(99);

  /// Writes the parameters that are set, replacing the file; `FileName` becomes its name. Throws,
  /// and writes nothing, for a number that is not finite (`InvalidValue`).
  AQ_DataMessage writeFile(const std::string& sFileName);

  /// Reads parameters by their keywords, in any order. Unsets `NuAvg` and `NuTimg` unless the file
  /// sets them; other parameters that the file does not name keep their values, and comments are
  /// added to the existing ones. After a failure, the values read before it remain.
  AQ_DataMessage readFile(const std::string& sFileName);

  /// Calibration adjustment, decibels; 0 is not written.
  [[nodiscard]] float CalAdj() const { return calibration_; }
  void CalAdj(float adjustment) { calibration_ = adjustment; }

  /// Averaging method; `AQ_NA` when not set.
  [[nodiscard]] AQ_AverageMethod NuAvg() const { return averaging_; }
  void NuAvg(AQ_AverageMethod method) { averaging_ = method; }

  /// Windows before and after the event, seconds; 0 is not written.
  [[nodiscard]] float PrWndo() const { return before_; }
  void PrWndo(float window) { before_ = window; }
  [[nodiscard]] float PoWndo() const { return after_; }
  void PoWndo(float window) { after_ = window; }

  /// Timing convention; 99, which is not a member of the enumeration, when not set.
  [[nodiscard]] AQ_TimeStampType NuTimg() const { return timing_; }
  void NuTimg(AQ_TimeStampType type) { timing_ = type; }

  /// Record range; 0 is not written.
  [[nodiscard]] std::int16_t LoRec() const { return lowRecord_; }
  void LoRec(std::int16_t nRecord) { lowRecord_ = nRecord; }
  [[nodiscard]] std::int16_t HiRec() const { return highRecord_; }
  void HiRec(std::int16_t nRecord) { highRecord_ = nRecord; }

  [[nodiscard]] std::string FileName() const { return fileName_; }
  void FileName(std::string name) { fileName_ = std::move(name); }

  /// The date and time in the last file read that gives them.
  std::shared_ptr<AQ_Time> FileDate() { return orCreate(fileDate_); }

  std::shared_ptr<Collection<std::string>> Comments() { return orCreate(comments_); }
  void Comments(std::shared_ptr<Collection<std::string>> comments) {
    comments_ = std::move(comments);
  }

 private:
  float calibration_ = 0;
  AQ_AverageMethod averaging_ = AQ_NA;
  AQ_TimeStampType timing_ = kTimingNotSet;
  float before_ = 0;
  float after_ = 0;
  std::int16_t lowRecord_ = 0;
  std::int16_t highRecord_ = 0;
  std::string fileName_;
  std::shared_ptr<AQ_Time> fileDate_;
  std::shared_ptr<Collection<std::string>> comments_;
};

}  // namespace aq

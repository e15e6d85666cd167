#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "aq/core/enumerations.h"
#include "aq/core/export.h"
#include "aq/core/time.h"
#include "aq/detail/number_range.h"
#include "aq/detail/numbered_series.h"
#include "aq/masking/mask_map.h"
#include "aq/spectral/band.h"
#include "aq/spectral/metric_summary.h"
#include "aq/spectral/spectrum.h"

namespace aq {

/// A numbered series of spectra measured one after another, usually half a second each, with the
/// time of the first record, a reference time, the averaging method, and the instant of a record
/// that its time stamp marks. Spectra are shared with the caller, not copied.
class AQ_API AQ_SpectralTimeHistory {
 public:
  /// A new history of records `LoRec` to `HiRec` with level 0 in bands `loBand` to `hiBand`. Does
  /// not change this one.
  [[nodiscard]] std::shared_ptr<AQ_SpectralTimeHistory> Init(std::int16_t LoRec, std::int16_t HiRec,
                                                             std::int16_t loBand,
                                                             std::int16_t hiBand) const;

  /// A new history that shares the spectra of records `LoRec` to `HiRec`, without the list of
  /// metrics; no object if the range exceeds this history's. Throws `InvalidArgument` if a record
  /// in it is missing.
  [[nodiscard]] std::shared_ptr<AQ_SpectralTimeHistory> Resize(std::int16_t LoRec,
                                                               std::int16_t HiRec);

  // The settings as words. Averaging methods: "LINEAR", "TRUSLO", "4S100", "4S95", "CONTEXPO",
  // "NA". Reference times: "START", "OVERHEAD", "AMAX", "PMAX", "TMAX", "OAMAX", "HACK", "OTHER".
  // Time stamps: "START", "MIDPT", "END", "ICAOSLO", "OLDSLO". A value without a word gives an
  // empty string. Setting is case-sensitive and ignores any other text.
  [[nodiscard]] std::string sAveragingMethod() const;
  [[nodiscard]] std::string sReferenceTimeType() const;
  [[nodiscard]] std::string sTimeStampType() const;
  void sAveragingMethod(std::string_view text);
  /// Setting never changes the reference type: hosts rely on this. `ReferenceType` sets it.
  void sReferenceTimeType(std::string_view text);
  void sTimeStampType(std::string_view text);

  /// The number of spectra. Throws `Overflow` above 32767.
  [[nodiscard]] std::int16_t Count() const { return spectra_.count(); }

  /// Whether the history has as many records as the map, and the bands of each spectrum from 1 to
  /// `Count` contain those of its row. Throws `InvalidArgument` for a missing spectrum or row.
  [[nodiscard]] bool EncompassesMask(const AQ_MaskMap& MapMask) const;

  /// Sets the metric `LGB` of each spectrum from 1 to the map's count to the last good band of the
  /// row with the same number. Creates a default mask in each examined band that has none. Throws
  /// `InvalidArgument` at the first missing spectrum or row; earlier spectra keep their new values,
  /// and a spectrum whose row is missing gets 0.
  void setLGB(const AQ_MaskMap& MapMask);

  void TimeStampType(AQ_TimeStampType type) { timeStampType_ = type; }

  /// Stamps every record: the stamp of record i is i x 0.5 s plus the start time less 0.5 s
  /// (`AQ_START`), 0.25 s (`AQ_MIDPT`), 0 (`AQ_END`), 0.75 s (`AQ_ICAOSLO`) or 1 s (`AQ_OLDSLO`),
  /// with that difference rounded to single precision. Then sets each record's time relative to
  /// `RefTime`. Copies the two times. Throws `InvalidArgument` at the first record from
  /// `LoRec` to `HiRec` without a spectrum; earlier records are already stamped.
  void setTimeStamps(const AQ_Time& startTime, AQ_TimeStampType StartTimeType,
                     const AQ_Time& RefTime, AQ_RefTimeType RefType);

  /// The spectrum of a record. Reading throws `InvalidArgument` if there is none; storing replaces
  /// an existing one and widens the record range.
  [[nodiscard]] std::shared_ptr<AQ_Spectrum> spectrum(std::int16_t nRecord) const {
    return spectra_.at(nRecord);
  }
  void spectrum(std::int16_t nRecord, std::shared_ptr<AQ_Spectrum> aqSpectrum);

  /// Created on first read; setting shares the caller's object.
  std::shared_ptr<AQ_Time> ReferenceTime() { return orCreate(referenceTime_); }
  void ReferenceTime(std::shared_ptr<AQ_Time> time) { referenceTime_ = std::move(time); }

  /// A deep copy of the records from `LoRec` to `HiRec`. The copied start and reference times have
  /// the same date and time of day, but no relative time. Throws `InvalidArgument` for a missing
  /// spectrum or level.
  [[nodiscard]] std::shared_ptr<AQ_SpectralTimeHistory> Copy();

  /// The levels of one band over all records; no object if the history is empty, or if a record
  /// from `LoRec` to `HiRec` is missing or has no level in that band.
  [[nodiscard]] std::shared_ptr<AQ_Band> Band(std::int16_t nBand) const;
  /// Stores the levels of a band in all records. Stops without an error at the first record that is
  /// missing or for which `aqBand` has no level; earlier records keep their new levels.
  void Band(std::int16_t nBand, const AQ_Band& aqBand);
  void Band(std::int16_t nBand, const std::shared_ptr<AQ_Band>& aqBand) {
    if (aqBand) Band(nBand, *aqBand);
  }

  /// Shares `ReferenceTime` and sets every record's time relative to it. Throws as
  /// `setTimeStamps` does.
  void setRelTimes(const std::shared_ptr<AQ_Time>& ReferenceTime, AQ_RefTimeType RefType);

  /// The time of the first record. Created on first read; setting shares the caller's object.
  std::shared_ptr<AQ_Time> startTime() { return orCreate(startTime_); }
  void startTime(std::shared_ptr<AQ_Time> time) { startTime_ = std::move(time); }

  [[nodiscard]] AQ_AverageMethod AverageMethod() const { return averageMethod_; }
  [[nodiscard]] AQ_RefTimeType ReferenceType() const { return referenceType_; }
  [[nodiscard]] AQ_TimeStampType TimeStampType() const { return timeStampType_; }
  void AverageMethod(AQ_AverageMethod method) { averageMethod_ = method; }
  void ReferenceType(AQ_RefTimeType type) { referenceType_ = type; }

  /// Created on first read; setting shares the caller's object.
  std::shared_ptr<AQ_MetricSummary> Metrics() { return orCreate(metrics_); }
  void Metrics(std::shared_ptr<AQ_MetricSummary> metrics) { metrics_ = std::move(metrics); }

  /// The highest and lowest record number ever stored, or as set; -1 and 9999 if there is none.
  /// Reading `HiRec` while it is 0 first sets it to `Count`; reading `LoRec` while it is 0 first
  /// sets it to 1.
  std::int16_t HiRec();
  std::int16_t LoRec();
  void LoRec(std::int16_t nRecord) { records_.low = nRecord; }
  void HiRec(std::int16_t nRecord) { records_.high = nRecord; }

  /// A loop yields the stored spectra as pairs of record number and spectrum, in ascending order of
  /// record number. Storing a spectrum invalidates iterators. `contains` creates nothing.
  [[nodiscard]] auto begin() const { return spectra_.begin(); }
  [[nodiscard]] auto end() const { return spectra_.end(); }
  [[nodiscard]] bool contains(std::int32_t number) const { return spectra_.contains(number); }

 private:
  [[nodiscard]] std::shared_ptr<AQ_SpectralTimeHistory> withoutSpectra();
  void relateRecords(const AQ_Time& reference);

  std::shared_ptr<AQ_Time> startTime_;
  AQ_TimeStampType timeStampType_ = AQ_START;
  NumberedSeries<AQ_Spectrum, std::int16_t> spectra_;
  std::shared_ptr<AQ_Time> referenceTime_;
  AQ_RefTimeType referenceType_ = AQ_START_REF;
  AQ_AverageMethod averageMethod_ = AQ_LINEAR;
  std::shared_ptr<AQ_MetricSummary> metrics_;
  NumberRange records_;
};

}  // namespace aq

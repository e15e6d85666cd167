#include "aq/spectral/spectral_time_history.h"

#include <utility>

#include "aq/core/words.h"
#include "aq/detail/half_second.h"
#include "aq/detail/pointers.h"
#include "aq/masking/last_good_band.h"

namespace aq {
namespace {

/// Calls `visit(number)` for every number of the range, which may end at the last 16-bit number.
template <class Visit>
void forEach(std::int16_t low, std::int16_t high, const Visit& visit) {
  for (std::int32_t number = low; number <= high; ++number) {
    visit(static_cast<std::int16_t>(number));
  }
}

}  // namespace

std::shared_ptr<AQ_SpectralTimeHistory> AQ_SpectralTimeHistory::Init(std::int16_t LoRec,
                                                                     std::int16_t HiRec,
                                                                     std::int16_t loBand,
                                                                     std::int16_t hiBand) const {
  auto history = std::make_shared<AQ_SpectralTimeHistory>();
  forEach(LoRec, HiRec, [&](std::int16_t record) {
    auto zero = std::make_shared<AQ_Spectrum>();
    forEach(loBand, hiBand, [&](std::int16_t band) { zero->SPL(band, std::int16_t{0}); });
    history->spectrum(record, std::move(zero));
  });
  return history;
}

std::shared_ptr<AQ_SpectralTimeHistory> AQ_SpectralTimeHistory::withoutSpectra() {
  auto history = std::make_shared<AQ_SpectralTimeHistory>();
  history->averageMethod_ = averageMethod_;
  copyDateAndTimeOfDay(*startTime(), *history->startTime());
  history->timeStampType_ = timeStampType_;
  copyDateAndTimeOfDay(*ReferenceTime(), *history->ReferenceTime());
  history->referenceType_ = referenceType_;
  return history;
}

std::shared_ptr<AQ_SpectralTimeHistory> AQ_SpectralTimeHistory::Resize(std::int16_t LoRec,
                                                                       std::int16_t HiRec) {
  const std::int16_t low = this->LoRec();  // read both, since reading may set them
  const std::int16_t high = this->HiRec();
  if (LoRec < low || HiRec > high) return nullptr;
  auto history = withoutSpectra();
  forEach(LoRec, HiRec, [&](std::int16_t record) { history->spectrum(record, spectrum(record)); });
  return history;
}

std::shared_ptr<AQ_SpectralTimeHistory> AQ_SpectralTimeHistory::Copy() {
  auto history = withoutSpectra();
  forEach(LoRec(), HiRec(), [&](std::int16_t record) {
    history->spectrum(record, orThrow(spectrum(record)).Copy());
  });
  history->Metrics(Metrics()->Copy());
  return history;
}

std::string AQ_SpectralTimeHistory::sAveragingMethod() const {
  return std::string(wordOf(averageMethod_));
}

std::string AQ_SpectralTimeHistory::sReferenceTimeType() const {
  return std::string(wordOf(referenceType_));
}

std::string AQ_SpectralTimeHistory::sTimeStampType() const {
  return std::string(wordOf(timeStampType_));
}

void AQ_SpectralTimeHistory::sAveragingMethod(std::string_view text) {
  setByWord(averageMethod_, text);
}

void AQ_SpectralTimeHistory::sReferenceTimeType(std::string_view) {}

void AQ_SpectralTimeHistory::sTimeStampType(std::string_view text) {
  setByWord(timeStampType_, text);
}

bool AQ_SpectralTimeHistory::EncompassesMask(const AQ_MaskMap& MapMask) const {
  const std::int16_t count = Count();
  if (count != MapMask.Count()) return false;
  for (std::int32_t number = 1; number <= count; ++number) {
    const auto record = static_cast<std::int16_t>(number);
    if (!orThrow(spectrum(record)).Encompasses(orThrow(MapMask.Row(record)))) return false;
  }
  return true;
}

void AQ_SpectralTimeHistory::setLGB(const AQ_MaskMap& MapMask) {
  forEach(1, MapMask.Count(), [&](std::int16_t record) {
    const auto metric = orThrow(spectrum(record)).Metric();
    metric->LGB(0);
    metric->LGB(static_cast<float>(lastGoodBand(orThrow(MapMask.Row(record)))));
  });
}

void AQ_SpectralTimeHistory::setTimeStamps(const AQ_Time& startTime, AQ_TimeStampType StartTimeType,
                                           const AQ_Time& RefTime, AQ_RefTimeType RefType) {
  copyDateAndTimeOfDay(startTime, *this->startTime());
  copyDateAndTimeOfDay(RefTime, *ReferenceTime());
  timeStampType_ = StartTimeType;
  referenceType_ = RefType;
  const HalfSecondStamps stamps(*this->startTime(), StartTimeType);
  forEach(records_.low, records_.high,
          [&](std::int16_t record) { stamps.stamp(record, *orThrow(spectrum(record)).Time()); });
  relateRecords(RefTime);
}

void AQ_SpectralTimeHistory::spectrum(std::int16_t nRecord,
                                      std::shared_ptr<AQ_Spectrum> aqSpectrum) {
  spectra_.store(nRecord, std::move(aqSpectrum));
  records_.widen(nRecord);
}

std::shared_ptr<AQ_Band> AQ_SpectralTimeHistory::Band(std::int16_t nBand) const {
  if (spectra_.size() == 0) return nullptr;
  auto band = std::make_shared<AQ_Band>();
  try {
    forEach(records_.low, records_.high,
            [&](std::int16_t record) { band->SPL(record, orThrow(spectrum(record)).SPL(nBand)); });
  } catch (const Error&) {
    return nullptr;
  }
  return band;
}

void AQ_SpectralTimeHistory::Band(std::int16_t nBand, const AQ_Band& aqBand) {
  if (spectra_.size() == 0) return;
  try {
    forEach(records_.low, records_.high,
            [&](std::int16_t record) { orThrow(spectrum(record)).SPL(nBand, aqBand.SPL(record)); });
  } catch (const Error&) {
    return;  // earlier records keep their new levels: hosts rely on it
  }
}

void AQ_SpectralTimeHistory::setRelTimes(const std::shared_ptr<AQ_Time>& ReferenceTime,
                                         AQ_RefTimeType RefType) {
  const AQ_Time& reference = orThrow(ReferenceTime);
  referenceTime_ = ReferenceTime;
  referenceType_ = RefType;
  relateRecords(reference);
}

void AQ_SpectralTimeHistory::relateRecords(const AQ_Time& reference) {
  forEach(records_.low, records_.high,
          [&](std::int16_t record) { orThrow(spectrum(record)).Time()->setRelTime(reference); });
}

std::int16_t AQ_SpectralTimeHistory::HiRec() {
  if (records_.high == 0) records_.high = Count();
  return records_.high;
}

std::int16_t AQ_SpectralTimeHistory::LoRec() {
  if (records_.low == 0) records_.low = 1;
  return records_.low;
}

}  // namespace aq

#include <aq/spectral/ambient_masking.h>
#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/errors.h"

namespace aq {
namespace {

AQ_Time at(double seconds, double date = 0) {
  AQ_Time time;
  time.CurrentDate(date);
  time.TODseconds(seconds);
  return time;
}

std::shared_ptr<AQ_SpectralTimeHistory> history(std::int16_t low, std::int16_t high) {
  return AQ_SpectralTimeHistory().Init(low, high, 10, 40);
}

TEST(History, InitFillsWithIntegerZeros) {
  const auto made = history(1, 3);
  EXPECT_EQ(made->Count(), 3);
  EXPECT_EQ(made->LoRec(), 1);
  EXPECT_EQ(made->HiRec(), 3);
  EXPECT_EQ(made->spectrum(2)->SPL(40), Variant(std::int16_t{0}));
  EXPECT_EQ(made->spectrum(2)->LowBand(), 10);
  EXPECT_ERROR(made->spectrum(4), InvalidArgument);
  EXPECT_EQ(AQ_SpectralTimeHistory().Init(32766, 32767, 32766, 32767)->Count(), 2);
}

TEST(History, ARecordRangeOfZeroIsFilledInOnReading) {
  AQ_SpectralTimeHistory made;
  EXPECT_EQ(made.LoRec(), 9999);
  EXPECT_EQ(made.HiRec(), -1);
  made.spectrum(0, std::make_shared<AQ_Spectrum>());
  EXPECT_EQ(made.LoRec(), 1);
  EXPECT_EQ(made.HiRec(), 1);
  made.LoRec(-3);
  made.HiRec(7);
  EXPECT_EQ(made.LoRec(), -3);
  EXPECT_EQ(made.HiRec(), 7);
}

TEST(History, TextForms) {
  AQ_SpectralTimeHistory made;
  for (const char* text : {"LINEAR", "TRUSLO", "4S100", "4S95", "CONTEXPO", "NA"}) {
    made.sAveragingMethod(text);
    EXPECT_EQ(made.sAveragingMethod(), text);
  }
  for (const char* text : {"MIDPT", "END", "ICAOSLO", "OLDSLO", "START"}) {
    made.sTimeStampType(text);
    EXPECT_EQ(made.sTimeStampType(), text);
  }
  for (const char* other : {"linear", ""}) made.sAveragingMethod(other);
  EXPECT_EQ(made.sAveragingMethod(), "NA");
  made.AverageMethod(static_cast<AQ_AverageMethod>(5));
  EXPECT_EQ(made.sAveragingMethod(), "");
  std::string all;
  for (int type = 0; type <= 8; ++type) {
    made.ReferenceType(static_cast<AQ_RefTimeType>(type));
    all += made.sReferenceTimeType() + ' ';
    made.sReferenceTimeType("HACK");  // setting the text never changes the type
    EXPECT_EQ(made.ReferenceType(), type);
  }
  EXPECT_EQ(all, "START OVERHEAD AMAX PMAX TMAX OAMAX HACK OTHER  ");
}

TEST(History, StampsHalfSeconds) {
  const std::pair<int, double> shifts[] = {{AQ_START, 0.5},    {AQ_MIDPT, 0.25}, {AQ_END, 0},
                                           {AQ_ICAOSLO, 0.75}, {AQ_OLDSLO, 1},   {99, 36000}};
  for (const auto& [type, shift] : shifts) {
    const auto made = history(1, 4);
    made->setTimeStamps(at(36000, 38000), static_cast<AQ_TimeStampType>(type), at(35990, 38000),
                        AQ_AMAX);
    const auto last = made->spectrum(4)->Time();
    EXPECT_EQ(last->TODseconds(), 36000 - shift + 2);
    EXPECT_EQ(last->CurrentDate(), 38000);
    EXPECT_EQ(last->RelSeconds(), 12 - shift);
    EXPECT_EQ(made->ReferenceType(), AQ_AMAX);
    EXPECT_EQ(made->ReferenceTime()->TODseconds(), 35990);
  }
  const auto fine = history(1, 1);
  fine->setTimeStamps(at(86000.123), AQ_END, at(0), AQ_OTHER);
  EXPECT_EQ(fine->spectrum(1)->Time()->TODseconds(), 0.5 + static_cast<double>(86000.123F));
}

TEST(History, StampingStopsAtAMissingRecord) {
  const auto made = history(1, 2);
  made->spectrum(4, std::make_shared<AQ_Spectrum>());
  EXPECT_ERROR(made->setTimeStamps(at(100), AQ_END, at(0), AQ_HACK), InvalidArgument);
  EXPECT_EQ(made->spectrum(2)->Time()->TODseconds(), 101);
  EXPECT_EQ(made->spectrum(4)->Time()->TODseconds(), 0);
  const auto reference = std::make_shared<AQ_Time>(at(1));
  EXPECT_ERROR(made->setRelTimes(reference, AQ_PMAX), InvalidArgument);
  EXPECT_EQ(made->ReferenceTime(), reference);
  EXPECT_EQ(made->spectrum(2)->Time()->RelSeconds(), 100);
}

TEST(History, ResizeSharesAndCopyDoesNot) {
  const auto made = history(1, 5);
  made->setTimeStamps(at(10), AQ_MIDPT, at(20), AQ_TMAX);
  made->AverageMethod(AQ_TRUSLO);
  made->Metrics()->MetricType(AQ_METRIC_PNL);
  const auto part = made->Resize(2, 4);
  EXPECT_EQ(part->Count(), 3);
  EXPECT_EQ(part->spectrum(3), made->spectrum(3));
  EXPECT_EQ(part->Metrics()->MetricTypes()->Count(), 0);
  EXPECT_NE(made->Resize(1, 5), nullptr);
  EXPECT_EQ(made->Resize(0, 4), nullptr);
  EXPECT_EQ(made->Resize(2, 6), nullptr);
  const auto copy = made->Copy();
  EXPECT_NE(copy->spectrum(3), made->spectrum(3));
  EXPECT_EQ(copy->spectrum(3)->Time()->TODseconds(), made->spectrum(3)->Time()->TODseconds());
  EXPECT_EQ(copy->Metrics()->MetricTypeString(), "PNL");
  for (const auto& one : {part, copy}) {
    EXPECT_EQ(one->AverageMethod(), AQ_TRUSLO);
    EXPECT_EQ(one->TimeStampType(), AQ_MIDPT);
    EXPECT_EQ(one->ReferenceType(), AQ_TMAX);
    EXPECT_EQ(one->ReferenceTime()->TODseconds(), 20);
    EXPECT_EQ(one->startTime()->TODseconds(), 10);
  }
}

TEST(History, BandsAcrossRecords) {
  EXPECT_EQ(AQ_SpectralTimeHistory().Band(20), nullptr);
  const auto made = history(3, 6);
  made->spectrum(4)->SPL(20, 64.5);
  const auto band = made->Band(20);
  EXPECT_EQ(band->Count(), 4);
  EXPECT_EQ(band->SPL(4), Variant(64.5));
  EXPECT_EQ(made->Band(41), nullptr);
  AQ_Band partial;
  partial.SPL(3, 1.0);
  partial.SPL(4, 2.0);
  partial.SPL(6, 4.0);
  made->Band(20, partial);  // stops without an error at record 5
  EXPECT_EQ(made->spectrum(4)->SPL(20), Variant(2.0));
  EXPECT_EQ(made->spectrum(6)->SPL(20), Variant(std::int16_t{0}));
  const auto one = history(4, 4);
  one->Band(20, partial);
  EXPECT_EQ(one->spectrum(4)->SPL(20), Variant(2.0));
  made->Band(21, band);
  EXPECT_EQ(made->spectrum(4)->SPL(21), Variant(64.5));
}

TEST(History, AMissingObjectIsAnErrorNotACrash) {
  const auto made = history(1, 2);
  made->spectrum(1, nullptr);
  AQ_MaskMap map;
  map.Row(1, nullptr);
  EXPECT_ERROR(made->Copy(), ObjectNotSet);
  EXPECT_ERROR(made->setLGB(map), ObjectNotSet);
  EXPECT_ERROR(made->setTimeStamps(at(1), AQ_END, at(1), AQ_HACK), ObjectNotSet);
  EXPECT_ERROR(made->setRelTimes(nullptr, AQ_HACK), ObjectNotSet);
  EXPECT_ERROR(map.Copy(), ObjectNotSet);
  EXPECT_ERROR(map.setLGB(), ObjectNotSet);
  EXPECT_EQ(made->Band(20), nullptr);
  made->Band(20, std::make_shared<AQ_Band>());
  made->Band(20, nullptr);
  map.Row(2, std::make_shared<AQ_MaskRow>());
  EXPECT_ERROR(made->EncompassesMask(map), ObjectNotSet);
}

TEST(History, ReplacingARecordKeepsTheCount) {
  const auto made = history(1, 3);
  const auto other = std::make_shared<AQ_Spectrum>();
  made->spectrum(2, other);
  EXPECT_EQ(made->Count(), 3);
  EXPECT_EQ(made->spectrum(2), other);
  const auto full = AQ_SpectralTimeHistory().Init(-1, 32766, 1, 1);
  EXPECT_ERROR(full->Count(), Overflow);
}

TEST(History, LastGoodBandsFromTheMap) {
  struct Row {
    std::vector<std::int16_t> masked;
    std::int16_t high;
    float lastGood;
  };
  const Row rows[] = {{{31, 35}, 40, 30}, {{29}, 40, 28},     {{28, 29, 31}, 40, 9999},
                      {{28}, 40, 0},      {{28, 33}, 40, 32}, {{}, 20, 0},
                      {{40}, 40, 39},     {{27, 28}, 28, 0}};
  AQ_MaskMap map;
  AQ_SpectralTimeHistory made;
  for (const Row& row : rows) {
    const auto cells = std::make_shared<AQ_MaskRow>();
    for (std::int16_t band = 17; band <= row.high; ++band) cells->Mask(band);
    for (const std::int16_t band : row.masked) cells->Mask(band)->MaskMode(MASKED_BY_PRE_DETECT);
    const auto record = static_cast<std::int16_t>(map.Count() + 1);
    map.Row(record, cells);
    made.spectrum(record, std::make_shared<AQ_Spectrum>());
  }
  EXPECT_FALSE(made.EncompassesMask(map));
  made.setLGB(map);
  map.setLGB();
  for (std::int16_t record = 1; record <= map.Count(); ++record) {
    const float expected = rows[record - 1].lastGood;
    EXPECT_EQ(made.spectrum(record)->Metric()->LGB(), expected) << record;
    EXPECT_EQ(static_cast<float>(map.Row(record)->LGB()), expected) << record;
  }
  EXPECT_EQ(map.Row(6)->HighBand(), 29);  // map.setLGB creates bands 28 and 29
  map.Row(9, map.Row(1));
  EXPECT_ERROR(made.setLGB(map), InvalidArgument);
  map.Row(1, nullptr);
  EXPECT_ERROR(made.setLGB(map), ObjectNotSet);
  EXPECT_EQ(made.spectrum(1)->Metric()->LGB(), 0);  // reset before the missing row is found
}

TEST(History, EncompassesTheMapRowByRow) {
  const auto made = history(1, 2);
  AQ_MaskMap map;
  EXPECT_FALSE(made->EncompassesMask(map));
  for (const std::int16_t record : {std::int16_t{1}, std::int16_t{2}}) {
    map.Row(record, std::make_shared<AQ_MaskRow>());
    map.Row(record)->Mask(10);
    map.Row(record)->Mask(40);
  }
  EXPECT_TRUE(made->EncompassesMask(map));
  map.Row(2)->Mask(41);
  EXPECT_FALSE(made->EncompassesMask(map));
  const auto shifted = history(2, 3);
  EXPECT_ERROR(shifted->EncompassesMask(map), InvalidArgument);
}

/// The masks and last good bands for an ambient with these levels from band 20 up, at a margin of
/// 3 dB, or the text of the error.
std::string maskedBy(const AQ_SpectralTimeHistory& history, const std::vector<double>& ambient) {
  AQ_Spectrum spectrum;
  spectrum.assignLevels(20, ambient);
  std::string bands;
  try {
    const auto map = maskByAmbient(history, spectrum, 3);
    for (const auto& [record, row] : *map) {
      for (const auto& [band, mask] : *row) bands += mask.MaskString();
      bands += ' ' + std::to_string(row->LGB());
    }
  } catch (const Error& error) {
    return error.what();
  }
  return bands;
}

TEST(AmbientMasking, ALevelTheMarginAboveIsNotMasked) {
  AQ_SpectralTimeHistory history;
  EXPECT_EQ(maskedBy(history, {}),
            "a map needs records numbered from 1 without a gap, but record 1 is missing");
  auto spectrum = std::make_shared<AQ_Spectrum>();
  for (const double level : {63.0, 62.99, 9999.0}) {
    spectrum->SPL(static_cast<std::int16_t>(std::max<int>(20, spectrum->HighBand() + 1)), level);
  }
  history.spectrum(1, spectrum);
  // Finding the last good band creates bands 28 and 29.
  EXPECT_EQ(maskedBy(history, {60.0000000004, 60, 60}), "--M------- 0");
  EXPECT_EQ(maskedBy(history, {60, 60}), "expected an ambient level in band 22, found none");
  EXPECT_EQ(maskedBy(history, {60, 9999, 60}), "expected an ambient level in band 21, found 9999");
  AQ_Spectrum ambient;
  for (const double margin : {-3.0, std::nan("")}) {
    EXPECT_ERROR(static_cast<void>(maskByAmbient(history, ambient, margin)), InvalidValue);
  }
  history.spectrum(3, spectrum);
  EXPECT_EQ(maskedBy(history, {60, 60, 60}),
            "a map needs records numbered from 1 without a gap, but record 2 is missing");
}

}  // namespace
}  // namespace aq

#pragma once

#include "aq/describe/masking.h"
#include "aq/spectral/ambient_masking.h"
#include "aq/spectral/band.h"
#include "aq/spectral/metric.h"
#include "aq/spectral/metric_summary.h"
#include "aq/spectral/spectral_time_history.h"
#include "aq/spectral/spectrum.h"

namespace aq::describe {

template <>
struct Description<AQ_Metric> {
  static constexpr char name[] = "AQ_Metric";
  static constexpr int number = 11;
  static constexpr char text[] =
      "The noise metrics computed for one spectrum. A metric that was never set reads as 0";
  template <class To>
  static void members(To& to) {
    using M = AQ_Metric;
    to.property("AWT", &M::AWT, &M::AWT, "A-weighted level", kDecibels)
        .method("Copy", &M::Copy, "A deep copy, in which every metric that was not set is set to 0")
        .property("CWT", &M::CWT, &M::CWT, "C-weighted level", kDecibels)
        .property("DWT", &M::DWT, &M::DWT, "D-weighted level", kDecibels)
        .property("OA", &M::OA, &M::OA,
                  "Overall level: the energy sum of all levels but those that are masked and not "
                  "adjusted",
                  kDecibels)
        .property("PNL", &M::PNL, &M::PNL, "Perceived noise level", Quantity{"PNdB"})
        .property("PNLT", &M::PNLT, &M::PNLT, "Tone-corrected perceived noise level",
                  Quantity{"TPNdB"})
        .property("TONECOR", &M::TONECOR, &M::TONECOR, "Tone correction", kDecibels)
        .property("TONEBND", &M::TONEBND, &M::TONEBND, "The band that caused the tone correction",
                  kBand)
        .property("LGB", &M::LGB, &M::LGB,
                  "The last good band: 0 when no band from 29 up is masked, 9999 when bands 28 and "
                  "29 are both masked",
                  kLastGoodBand)
        .property("INTEG", &M::INTEG, &M::INTEG, "The role of the record in the EPNL integration")
        .indexed("MetricValue", &M::MetricValue, &M::MetricValue, in("aqMetric", "Which metric"),
                 "Any metric by its type; one that was never set reads as 0", kOfTheMetric);
  }
};

template <>
struct Description<AQ_MetricSummary> {
  static constexpr char name[] = "AQ_MetricSummary";
  static constexpr int number = 12;
  static constexpr char text[] =
      "The ordered list of the metrics that a spectral time history carries";
  template <class To>
  static void members(To& to) {
    using S = AQ_MetricSummary;
    to.method("Copy", &S::Copy, "A new summary of the same metrics")
        .setter("MetricType", &S::MetricType,
                "Adds a metric; a metric already listed moves to the end",
                in("aqMetric", "Which metric"))
        .property("MetricTypes", &S::MetricTypes, "The summary's own list, not a copy")
        .method("isMetric", &S::isMetric, "Whether a metric is listed",
                in("aqMetric", "Which metric"))
        .form("MetricTypeString", &S::MetricTypeString, &S::MetricTypeString,
              "The list as text, for example AWT, PNLT; setting adds the metric with the given "
              "name unless it is listed, and ignores other text");
  }
};

template <>
struct Description<AQ_Spectrum> {
  static constexpr char name[] = "AQ_Spectrum";
  static constexpr int number = 13;
  static constexpr char text[] =
      "One measured one-third-octave spectrum: levels in dB by band, the time of the measurement, "
      "an overall level and the metrics. Band n is centred at 10^(n/10) Hz; 9999 marks an invalid "
      "level";
  template <class To>
  static void members(To& to) {
    using S = AQ_Spectrum;
    to.method("Copy", &S::Copy,
              "A deep copy; raises if a band from LowBand to HighBand has no level")
        .indexed("SPL", &S::SPL, &S::SPL, in("nBand", "The band", kBand),
                 "The level of a band; reading raises if the band has none", kDecibels)
        .property("LowBand", &S::LowBand, "The lowest band ever stored; 9999 if there is none",
                  kBand)
        .property("HighBand", &S::HighBand, "The highest band ever stored; -1 if there is none",
                  kBand)
        .banded(
            "Encompasses",
            [](const S& self, const auto& spectrum) { return self.Encompasses(spectrum); },
            "Whether the bands of another object, LowBand to HighBand, lie within this one's",
            in("spectrum", "Any object with LowBand and HighBand"))
        .property("Level", &S::Level, &S::Level,
                  "An overall level for the caller's own use. The library only copies it; the "
                  "overall level that it computes is the metric OA",
                  kDecibels)
        .property("Time", &S::Time, &S::Time, "The time of the measurement")
        .property("Metric", &S::Metric, &S::Metric, "The noise metrics")
        .method("contains", &S::contains, "Whether a band has a level",
                in("band", "The band", kBand));
  }
};

template <>
struct Description<AQ_Band> {
  static constexpr char name[] = "AQ_Band";
  static constexpr int number = 14;
  static constexpr char text[] =
      "The levels of one band across a series of spectra, by spectrum number";
  template <class To>
  static void members(To& to) {
    using B = AQ_Band;
    to.method("Copy", &B::Copy,
              "No object if the band is empty; raises if it has levels, which cannot be copied")
        .indexed("SPL", &B::SPL, &B::SPL, in("nSpectrum", "The spectrum's number", kRecord),
                 "The level of a spectrum, by its number; reading raises if it is missing",
                 kDecibels)
        .property("Count", &B::Count, "Number of stored levels", kRecords)
        .method("contains", &B::contains, "Whether there is a level for a spectrum number",
                in("number", "The spectrum's number", kRecord));
  }
};

template <>
struct Description<AQ_SpectralTimeHistory> {
  static constexpr char name[] = "AQ_SpectralTimeHistory";
  static constexpr int number = 15;
  static constexpr char text[] =
      "A numbered series of consecutive spectra, usually half a second each, with the time of the "
      "first record, a reference time, the averaging method and the instant of a record that its "
      "time stamp marks. Spectra are shared, not copied";
  template <class To>
  static void members(To& to) {
    using H = AQ_SpectralTimeHistory;
    to.method("Init", &H::Init,
              "A new history of records LoRec to HiRec with level 0 in bands loBand to hiBand",
              in("LoRec", "The first record", kRecord), in("HiRec", "The last record", kRecord),
              in("loBand", "The lowest band", kBand), in("hiBand", "The highest band", kBand))
        .method("Resize", &H::Resize,
                "A new history that shares the spectra of records LoRec to HiRec, but lists no "
                "metrics; no object if the range exceeds this history's. Raises if a record in the "
                "range is missing",
                in("LoRec", "The first record", kRecord), in("HiRec", "The last record", kRecord))
        .form("sAveragingMethod", &H::sAveragingMethod, &H::sAveragingMethod,
              "AverageMethod as a word: LINEAR, TRUSLO, 4S100, 4S95, CONTEXPO or NA; other text "
              "changes nothing")
        .form("sReferenceTimeType", &H::sReferenceTimeType, &H::sReferenceTimeType,
              "ReferenceType as a word: START, OVERHEAD, AMAX, PMAX, TMAX, OAMAX, HACK or OTHER; "
              "setting never changes it")
        .form("sTimeStampType", &H::sTimeStampType, &H::sTimeStampType,
              "TimeStampType as a word: START, MIDPT, END, ICAOSLO or OLDSLO; other text changes "
              "nothing")
        .property("Count", &H::Count, "The number of spectra; raises if there are more than 32767",
                  kCount)
        .method("EncompassesMask", &H::EncompassesMask,
                "Whether the map has as many rows as the history has records, and no row goes "
                "beyond the bands of its record; raises at a missing record or row",
                in("MapMask", "The masking map"))
        .setter("setLGB", &H::setLGB,
                "Sets the metric LGB of each spectrum from the masks in the map's row with the "
                "same number, creating default masks as the map's own setLGB does; raises at a "
                "missing record or row, after setting those before it",
                in("MapMask", "The masking map"))
        .property("TimeStampType", &H::TimeStampType, &H::TimeStampType,
                  "Which instant the time stamp of a record marks")
        .method("setTimeStamps", &H::setTimeStamps,
                "Stamps the records half a second apart, and sets each record's relative time; "
                "raises at "
                "a missing record, after stamping those before it",
                in("startTime", "The time of the first record"),
                in("StartTimeType", "Which instant the time stamp of a record marks"),
                in("RefTime", "The reference time"),
                in("RefType", "Which event the reference time marks"))
        .indexed("spectrum", &H::spectrum, &H::spectrum, in("nRecord", "The record", kRecord),
                 "The spectrum of a record, shared; reading raises if it is missing")
        .property("ReferenceTime", &H::ReferenceTime, &H::ReferenceTime, "The reference time")
        .method("Copy", &H::Copy,
                "A deep copy; raises if a record from LoRec to HiRec or a level is missing")
        .indexed("Band", &H::Band,
                 static_cast<void (H::*)(std::int16_t, const std::shared_ptr<AQ_Band>&)>(&H::Band),
                 in("nBand", "The band", kBand),
                 "The levels of one band over all records; no object if there are no records, or "
                 "if one is missing or lacks the band. Setting stops without an error at the first "
                 "record that is missing or for which the given object has no level")
        .method("setRelTimes", &H::setRelTimes,
                "Stores the reference time, shared with the caller, and its type, and sets every "
                "record's relative time; raises in the same cases as setTimeStamps",
                in("ReferenceTime", "The reference time"),
                in("RefType", "Which event the reference time marks"))
        .property("startTime", &H::startTime, &H::startTime, "The time of the first record")
        .property("AverageMethod", &H::AverageMethod, &H::AverageMethod,
                  "How the levels of a record were averaged")
        .property("ReferenceType", &H::ReferenceType, &H::ReferenceType,
                  "Which event the reference time marks")
        .property("Metrics", &H::Metrics, &H::Metrics, "Which metrics the history carries")
        .property("HiRec", &H::HiRec, &H::HiRec,
                  "The highest record number ever stored, or the number set; -1 until then. While "
                  "it is 0, reading sets it to Count",
                  kRecord)
        .property("LoRec", &H::LoRec, &H::LoRec,
                  "The lowest record number ever stored, or the number set; 9999 until then. While "
                  "it is 0, reading sets it to 1",
                  kRecord)
        .method("contains", &H::contains, "Whether a record has a spectrum",
                in("number", "The record", kRecord));
  }
};

/// The functions of `aq/spectral`.
struct SpectralFunctions;

template <>
struct Description<SpectralFunctions> {
  static constexpr char name[] = "spectral";
  template <class To>
  static void members(To& to) {
    to.function(
        "maskByAmbient", &maskByAmbient,
        about("The masking map of a history, made from an ambient spectrum; raises unless the "
              "records are numbered from 1 without gaps, the ambient has a valid level in each of "
              "their bands, and the margin is 0 dB or more"),
        in("history", "The levels to mask"), in("ambient", "The levels of the ambient"),
        in("margin", "Levels that do not exceed the ambient by at least this much are masked",
           Quantity{"dB", 0}));
  }
};

inline constexpr List<AQ_Metric, AQ_MetricSummary, AQ_Spectrum, AQ_Band, AQ_SpectralTimeHistory>
    kSpectralClasses;

}  // namespace aq::describe

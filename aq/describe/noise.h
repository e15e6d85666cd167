#pragma once

#include "aq/describe/description.h"
#include "aq/noise/audit_metrics.h"
#include "aq/noise/emission_geometry.h"
#include "aq/noise/noise_event.h"
#include "aq/noise/perceived_noise_level.h"
#include "aq/noise/set_metrics.h"
#include "aq/noise/tone_correction.h"
#include "aq/noise/weighted_level.h"

namespace aq::describe {

inline constexpr Quantity kToneBand{"band", 19, 40};
inline constexpr Quantity kToneDecibels{"dB", 0, 6.7};
inline constexpr Quantity kPlaceFrom0{"index", 0};
inline constexpr auto kAir = in("celsius", "The air temperature", Quantity{"degC", -273.15});

template <>
struct Description<ToneStep> {
  static constexpr char name[] = "ToneStep";
  static constexpr int number = 41;
  static constexpr char text[] =
      "The results of the tone correction procedure for one band; values that are not defined for "
      "the band are empty";
  template <class To>
  static void members(To& to) {
    using S = ToneStep;
    to.field("band", &S::band, "The band", kToneBand)
        .field("level", &S::level, "The level of the band", kDecibels)
        .field("slope", &S::slope, "The band's level minus that of the band below", kDecibels)
        .field("slopeMarked", &S::slopeMarked,
               "Whether the slope differs by more than 5 dB from that of the band below")
        .field("levelMarked", &S::levelMarked,
               "Whether the level is replaced to find the background")
        .field("adjusted", &S::adjusted, "The level, or its replacement if it is marked", kDecibels)
        .field("adjustedSlope", &S::adjustedSlope, "The slope of the adjusted levels", kDecibels)
        .field("meanSlope", &S::meanSlope,
               "The mean of three adjusted slopes, this band's and the next two", kDecibels)
        .field("background", &S::background, "The level that the band would have without tones",
               kDecibels)
        .field("difference", &S::difference,
               "The level minus the background; gives a correction if it is above 1.5 dB",
               kDecibels)
        .field("correction", &S::correction,
               "The correction of this band; 0 if the difference gives none", kToneDecibels);
  }
};

template <>
struct Description<ToneCorrection> {
  static constexpr char name[] = "ToneCorrection";
  static constexpr int number = 42;
  static constexpr char text[] = "The tone correction of a spectrum, with the steps for each band";
  template <class To>
  static void members(To& to) {
    using C = ToneCorrection;
    to.field("correction", &C::correction, "The largest correction of all bands", kToneDecibels)
        .field("band", &C::band,
               "The band that caused the correction, the lowest if several; 0 for none", kToneBand)
        .field("lastBand", &C::lastBand,
               "The last band used; 18 if the level of band 19 does not count, so that no band is "
               "used",
               kToneBand)
        .field("rows", &C::rows, "One entry for each band used, from 19 up");
  }
};

template <>
struct Description<NoiseEvent> {
  static constexpr char name[] = "NoiseEvent";
  static constexpr int number = 43;
  static constexpr char text[] =
      "The noise of one aircraft passing by: its largest tone-corrected perceived noise level, its "
      "effective perceived noise level, and the records of the maxima and limits, as zero-based "
      "indices";
  template <class To>
  static void members(To& to) {
    using E = NoiseEvent;
    to.field("maximum", &E::maximum, "The first record with the largest PNLT", kPlaceFrom0)
        .field("first", &E::first,
               "The 10 dB-down limit before the maximum; empty if the records begin above it",
               kPlaceFrom0)
        .field("last", &E::last,
               "The 10 dB-down limit after the maximum; empty if the records end above it",
               kPlaceFrom0)
        .field("secondPeaks", &E::secondPeaks,
               "Other local maxima of PNLT between the limits, within 2 dB of the largest and at "
               "least 0.1 dB above both neighbours",
               kPlaceFrom0)
        .field("pnltm", &E::pnltm, "The largest PNLT, without the band-sharing adjustment",
               Quantity{"TPNdB"})
        .field("epnl", &E::epnl,
               "Effective perceived noise level, without the band-sharing adjustment",
               Quantity{"EPNdB"})
        .field("epnlWithBandSharing", &E::epnlWithBandSharing,
               "Effective perceived noise level, with the band-sharing adjustment",
               Quantity{"EPNdB"})
        .field("duration", &E::duration, "The duration correction, epnl minus pnltm", kDecibels)
        .field("bandSharing", &E::bandSharing,
               "Adjustment for a tone between two bands; never negative", kDecibels);
  }
};

template <>
struct Description<MetricDifference> {
  static constexpr char name[] = "MetricDifference";
  static constexpr int number = 44;
  static constexpr char text[] =
      "A stored metric that differs from the one computed from the levels";
  template <class To>
  static void members(To& to) {
    using D = MetricDifference;
    to.field("record", &D::record, "The record whose metric differs", kRecord)
        .field("metric", &D::metric, "Which metric differs")
        .field("stored", &D::stored, "The value stored in the record", kOfTheMetric)
        .field("computed", &D::computed, "The value computed from the levels; NaN if there is none",
               kOfTheMetric);
  }
};

/// The functions of `aq/noise`.
struct NoiseFunctions;

template <>
struct Description<NoiseFunctions> {
  static constexpr char name[] = "noise";
  template <class To>
  static void members(To& to) {
    constexpr auto spectrum = in("spectrum", "The levels");
    constexpr auto masks =
        optionally("masks", "Which levels are masked; these count only if they were adjusted");
    constexpr auto history = in("history", "The history of levels");
    constexpr auto map = optionally("map", "Which levels of the records are masked");
    to.function("weightedLevel", &weightedLevel,
                about("The A-, C- or D-weighted level of a spectrum, or its overall level; nothing "
                      "if no level in the bands used counts. Raises for any other metric",
                      kDecibels),
                spectrum, in("weighting", "AQ_METRIC_AWT, _CWT, _DWT or _OA"), masks)
        .function("perceivedNoiseLevel", &perceivedNoiseLevel,
                  about("The perceived noise level of a spectrum, from bands 17 to 40; raises if "
                        "the levels are too high for it",
                        Quantity{"PNdB", 0}),
                  spectrum, masks)
        .function("toneCorrection", &toneCorrection,
                  about("The tone correction of a spectrum, from bands 19 to 40, up to the first "
                        "level that does not count"),
                  spectrum, masks)
        .function(
            "noiseEvent", &noiseEvent,
            about("The event in a series of tone-corrected perceived noise levels; raises if no "
                  "level is given, if the sizes differ, if a level is infinite, or if a duration "
                  "is not a finite number above 0"),
            in("pnlt", "One PNLT per record; NaN if it has none", Quantity{"TPNdB"}),
            in("seconds", "How long a record lasts: one value for all, or one per record",
               Quantity{"s", 0}),
            optionally("toneCorrections", "One tone correction per record; NaN if it has none",
                       kToneDecibels))
        .function(
            "setMetrics", &setMetrics,
            about(
                "Computes and stores the ten metrics of every record (the last good band only with "
                "a map) and returns the event, or nothing if no record has a PNLT. Raises if "
                "consecutive records have the same time stamp or a level is too high for a metric"),
            history, map)
        .function("auditMetrics", &auditMetrics,
                  about("Every stored metric that differs from the computed one; raises in the "
                        "same cases as setMetrics, and if the tolerance is negative or NaN"),
                  history, map,
                  in("tolerance",
                     "Levels and tone corrections differ if they are further apart than this",
                     Quantity{"dB", 0}))
        .function("speedOfSound", &speedOfSound,
                  about("The speed of sound in air (ISO 9613-1); raises unless the temperature is "
                        "finite and above -273.15 degrees Celsius",
                        Quantity{"m/s", 0}),
                  kAir)
        .function(
            "emissionGeometry", &emissionGeometry,
            about("Where and when each record's sound was emitted, in metres, degrees and "
                  "seconds; no point if that was outside the times of the positions. Raises "
                  "in the same cases as speedOfSound, and for a position earlier than the previous "
                  "one or a coordinate that is not finite"),
            in("positions", "The source's positions, in metres"),
            in("microphone", "The microphone's position, in metres"),
            in("records", "The measured records"), kAir);
  }
};

inline constexpr List<ToneStep, ToneCorrection, NoiseEvent, MetricDifference> kNoiseClasses;

}  // namespace aq::describe

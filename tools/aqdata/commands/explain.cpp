#include <fmt/format.h>

#include <cmath>
#include <optional>

#include "tools/aqdata/measurement.h"
#include "tools/aqdata/noise.h"
#include "tools/aqdata/program.h"
#include "tools/aqdata/text.h"

namespace aqdata {
namespace {

struct ExplainChoice {
  std::string file;
  std::string record;
  std::string map;
};

/// The spectrum to explain, with its record number and map, if it has them.
struct Explained {
  std::shared_ptr<aq::AQ_Spectrum> spectrum;
  std::optional<int> record;
  std::shared_ptr<aq::AQ_MaskMap> map;

  [[nodiscard]] const aq::AQ_MaskRow* masks() const {
    return record ? rowOf(map.get(), static_cast<std::int16_t>(*record)) : nullptr;
  }
};

Explained openExplained(const ExplainChoice& choice) {
  const Measurement read = openFile(choice.file);
  Explained explained;
  if (const auto* const spectrum = std::get_if<SpectrumRecord>(&read.data)) {
    if (!choice.record.empty() || !choice.map.empty()) {
      throw Failure(fmt::format("{}: is a single spectrum, which has no records or map",
                                aq::escaped(choice.file)));
    }
    explained.spectrum = spectrum->model;
    return explained;
  }
  const auto* const history = std::get_if<History>(&read.data);
  if (history == nullptr) {
    throw Failure(
        fmt::format("{}: expected a spectral time history or a spectrum record, found a "
                    "{} file",
                    aq::escaped(choice.file), aq::kindText(read.kind)));
  }
  if (choice.record.empty()) throw Failure("expected --record N to choose the record");
  const Range record = rangeFrom(choice.record, "record");
  if (record.first != record.last || !history->model->contains(record.first)) {
    throw Failure(fmt::format("{}: has no record {}", aq::escaped(choice.file), choice.record));
  }
  explained.record = record.first;
  explained.spectrum = history->model->spectrum(record.first);
  if (!choice.map.empty()) explained.map = openMap(choice.map).model;
  return explained;
}

Json optionalJson(const std::optional<double>& value) { return value ? Json(*value) : Json(); }

Json stepJson(const aq::ToneStep& step) {
  return {{"band", step.band},
          {"level", step.level},
          {"slope", optionalJson(step.slope)},
          {"slope_marked", step.slopeMarked},
          {"level_marked", step.levelMarked},
          {"adjusted", optionalJson(step.adjusted)},
          {"adjusted_slope", optionalJson(step.adjustedSlope)},
          {"mean_slope", optionalJson(step.meanSlope)},
          {"background", optionalJson(step.background)},
          {"difference", optionalJson(step.difference)},
          {"correction", optionalJson(step.correction)}};
}

std::string stepNumber(const std::optional<double>& value) {
  constexpr double kHalfHundredth = 0.005;
  if (!value) return "";
  return fmt::format("{:.2f}", std::abs(*value) < kHalfHundredth ? 0 : *value);  // no -0.00
}

/// Why a step marks a slope or a level; empty if it marks neither. `before` and `next` are the
/// steps of the bands below and above, null if there is none.
std::string reason(const aq::ToneStep& step, const aq::ToneStep* before, const aq::ToneStep* next) {
  std::string text;
  if (step.slopeMarked) {
    text = fmt::format("slope changes by {:+.2f}", *step.slope - *before->slope);
  }
  if (step.levelMarked) {
    const bool rises = step.slopeMarked && *step.slope > 0 && *step.slope > *before->slope;
    if (rises) text += " and is positive: level removed";
    if (!rises && next != nullptr) {
      text += fmt::format("{}next slope changes by {:+.2f} and is not positive: level removed",
                          text.empty() ? "" : ", ", *next->slope - *step.slope);
    }
  }
  return text;
}

void printSteps(Session& session, const std::vector<aq::ToneStep>& rows) {
  Table table({{"band", false},
               {"level", true},
               {"slope", true},
               {"L'", true},
               {"s'", true},
               {"mean", true},
               {"background", true},
               {"difference", true},
               {"correction", true},
               {"marked", false}});
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const aq::ToneStep& step = rows[i];
    const bool tone = step.correction.value_or(0) > 0;
    const std::string correction = stepNumber(step.correction);
    table.add({bandText(step.band), stepNumber(step.level),
               stepNumber(step.slope) + (step.slopeMarked ? "*" : ""),
               stepNumber(step.adjusted) + (step.levelMarked ? "*" : ""),
               stepNumber(step.adjustedSlope), stepNumber(step.meanSlope),
               stepNumber(step.background), stepNumber(step.difference),
               tone ? session.strong(correction) : correction,
               reason(step, i > 0 ? &rows[i - 1] : nullptr,
                      i + 1 < rows.size() ? &rows[i + 1] : nullptr)});
  }
  table.print(session);
}

/// The bands from 17 to 40 that metrics leave out.
std::vector<int> bandsWithout(const Explained& explained) {
  std::vector<int> bands;
  for (std::int16_t band = 17; band <= 40; ++band) {
    aq::AQ_Spectrum one;
    if (explained.spectrum->contains(band)) one.SPL(band, explained.spectrum->SPL(band));
    if (!aq::weightedLevel(one, aq::AQ_METRIC_OA, explained.masks())) bands.push_back(band);
  }
  return bands;
}

/// Explains the correction in a few sentences.
std::string sentenceOf(const Explained& explained, const aq::ToneCorrection& tone) {
  const std::string record =
      explained.record ? fmt::format("Record {}", *explained.record) : "The spectrum";
  std::string text;
  if (tone.band == 0) {
    text = fmt::format("{} has no tone correction", record);
    text += tone.rows.size() < 3 ? ", which needs the bands at 80, 100 and 125 Hz."
                                 : ": no level is more than 1.5 dB above the background.";
  } else {
    const aq::ToneStep& step = tone.rows[static_cast<std::size_t>(tone.band - 19)];
    text = fmt::format(
        "{} has a tone correction of {:.2f} dB for band {}: its level of {:.2f} dB lies {:.2f} dB "
        "above the background of {:.2f} dB.",
        record, tone.correction, bandText(tone.band), step.level, *step.difference,
        *step.background);
  }
  const std::vector<int> without = bandsWithout(explained);
  if (without.size() < 24) {
    const double pnl = aq::perceivedNoiseLevel(*explained.spectrum, explained.masks());
    text += fmt::format(" PNL {:.2f} PNdB, PNLT {:.2f} TPNdB.", pnl, pnl + tone.correction);
  }
  if (without.empty()) return text;
  text += fmt::format(" Bands that do not count: {}", recordsText(without));
  if (tone.lastBand < 40 && !tone.rows.empty()) {
    text += fmt::format("; the procedure ends at band {}", bandText(tone.lastBand));
  }
  return text + '.';
}

void explain(Session& session, const ExplainChoice& choice) {
  const Explained explained = openExplained(choice);
  const aq::ToneCorrection tone = aq::toneCorrection(*explained.spectrum, explained.masks());
  const std::string sentence = sentenceOf(explained, tone);
  if (session.json) {
    Json steps = Json::array();
    for (const aq::ToneStep& step : tone.rows) steps.push_back(stepJson(step));
    return session.printDocument({{"file", choice.file},
                                  {"record", explained.record ? Json(*explained.record) : Json()},
                                  {"correction", tone.correction},
                                  {"band", tone.band},
                                  {"last_band", tone.lastBand},
                                  {"steps", std::move(steps)},
                                  {"sentence", sentence}});
  }
  if (!tone.rows.empty()) {
    printSteps(session, tone.rows);
    session.print("\n");
  }
  session.print(sentence + "\n");
}

}  // namespace

void addExplain(CLI::App& program, Session& session) {
  const auto choice = std::make_shared<ExplainChoice>();
  CLI::App* const command = addCommand(
      program, session, "explain", "Explain the tone correction of a record, step by step",
      "A star marks a slope that changes by more than 5 dB, and a level that is removed\n"
      "to find the background. A spectrum record needs no --record.\n\n"
      "Examples:\n"
      "  aqdata explain fly-over.sth.csv --record 30 --mask fly-over.mask.csv\n",
      [&session, choice] { explain(session, *choice); });
  addFile(*command, choice->file, "FILE", "A spectral time history or a spectrum record");
  command->add_option("--record", choice->record, "The record to explain")->option_text("N");
  command->add_option("--mask", choice->map, "The masking map of the history")->option_text("MAP");
}

}  // namespace aqdata

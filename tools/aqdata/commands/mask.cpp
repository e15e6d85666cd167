#include <fmt/format.h>

#include <algorithm>

#include "tools/aqdata/files.h"
#include "tools/aqdata/measurement.h"
#include "tools/aqdata/program.h"
#include "tools/aqdata/text.h"

namespace aqdata {
namespace {

struct MaskChoice {
  std::string history;
  std::string ambient;
  double margin = 3;
};

/// Levels have two decimals, so a difference of 2.9999999996 dB is one of 3 dB, and not less.
bool isMasked(double level, double ambient, double margin) {
  constexpr double kRounding = 1e-6;
  return level - ambient < margin - kRounding;
}

std::shared_ptr<aq::AQ_MaskRow> maskedRow(const aq::AQ_Spectrum& spectrum,
                                          const aq::AQ_Spectrum& ambient, double margin) {
  auto row = std::make_shared<aq::AQ_MaskRow>();
  for (std::int32_t number = spectrum.LowBand(); number <= spectrum.HighBand(); ++number) {
    const auto band = static_cast<std::int16_t>(number);
    const bool masked =
        isMasked(spectrum.SPL(band).toDouble(), ambient.SPL(band).toDouble(), margin);
    row->Mask(band)->MaskMode(masked ? aq::MASKED_BY_MASK_CRITERION : aq::NOT_MASKED);
  }
  return row;
}

/// An ambient without a level in a band of the spectrum would mask that band throughout.
void expectValid(const aq::AQ_Spectrum& ambient, const aq::AQ_Spectrum& spectrum,
                 const std::string& file) {
  for (std::int32_t band = spectrum.LowBand(); band <= spectrum.HighBand(); ++band) {
    if (ambient.SPL(static_cast<std::int16_t>(band)).toDouble() != double{aq::AQ_INVALID_LEVEL})
      continue;
    throw Failure(
        fmt::format("{}: expected a level in band {}, found 9999", aq::escaped(file), band));
  }
}

aq::AQ_MaskMap mapOf(const History& read, const aq::AQ_Spectrum& ambient,
                     const MaskChoice& choice) {
  aq::AQ_MaskMap map;
  const std::int16_t count = read.history->Count();
  if (count == 0) throw Failure(fmt::format("{}: has no records", aq::escaped(choice.history)));
  for (std::int32_t number = 1; number <= count; ++number) {
    const auto record = static_cast<std::int16_t>(number);
    if (!read.history->contains(record)) {
      throw Failure(
          fmt::format("{}: a map needs records numbered from 1 without a gap, record {} is missing",
                      aq::escaped(choice.history), number));
    }
    const auto spectrum = read.history->spectrum(record);
    if (!ambient.Encompasses(*spectrum)) {
      throw Failure(fmt::format("{}: expected levels for bands {} to {}, found {} to {}",
                                aq::escaped(choice.ambient), spectrum->LowBand(),
                                spectrum->HighBand(), ambient.LowBand(), ambient.HighBand()));
    }
    expectValid(ambient, *spectrum, choice.ambient);
    map.Row(record, maskedRow(*spectrum, ambient, choice.margin));
  }
  map.setLGB();
  return map;
}

std::shared_ptr<aq::AQ_HeaderMask> headerFor(const MaskChoice& choice) {
  auto header = std::make_shared<aq::AQ_HeaderMask>();
  header->sGeneratedBy = "aqdata";
  header->sGenerationFile = choice.history;
  header->cCommentLines->Add(fmt::format("Criterion: less than {} dB above the ambient {}",
                                         choice.margin,
                                         aq::fileInformation()->recordedName(choice.ambient)));
  return header;
}

std::size_t invalidIn(const aq::AQ_SpectralTimeHistory& history) {
  std::size_t invalid = 0;
  for (const auto& [record, spectrum] : history) {
    const std::vector<double> levels = spectrum->plainLevels();
    invalid += static_cast<std::size_t>(
        std::count(levels.begin(), levels.end(), double{aq::AQ_INVALID_LEVEL}));
  }
  return invalid;
}

std::size_t maskedIn(const aq::AQ_MaskMap& map) {
  std::size_t masked = 0;
  for (const auto& [record, row] : map) {
    for (const auto& [band, decision] : *row) {
      if (decision.MaskMode() != aq::NOT_MASKED) ++masked;
    }
  }
  return masked;
}

void mask(Session& session, const MaskChoice& choice) {
  expectOutput(session, {".mask.csv", ".csv"}, {choice.history, choice.ambient});
  const History read = openHistory(choice.history);
  const SpectrumRecord ambient = openSpectrum(choice.ambient);
  const aq::AQ_MaskMap map = mapOf(read, *ambient.spectrum, choice);
  const auto header = headerFor(choice);
  writeOutput<aq::AQ_DataMask>(session, header, map);
  const std::size_t invalid = invalidIn(*read.history);
  session.wrote(fmt::format(
      "{}, {} masked{}", counted(static_cast<std::size_t>(map.Count()), "row"),
      counted(maskedIn(map), "level"),
      invalid == 0
          ? ""
          : fmt::format("; {} of 9999, not valid and not masked", counted(invalid, "level"))));
}

}  // namespace

void addMask(CLI::App& program, Session& session) {
  const auto choice = std::make_shared<MaskChoice>();
  CLI::App* const command =
      addCommand(program, session, "mask", "Make a masking map: what is too near to the ambient",
                 "Examples:\n"
                 "  aqdata mask fly-over.sth.csv --ambient fly-over.ssr.csv --margin 3 \\\n"
                 "    -o made.mask.csv\n",
                 [&session, choice] { mask(session, *choice); });
  addFile(*command, choice->history, "HISTORY", "The spectral time history");
  command->add_option("--ambient", choice->ambient, "The spectrum record of the ambient")
      ->required()
      ->option_text("AMBIENT");
  command
      ->add_option("--margin", choice->margin,
                   "Levels less than this above the ambient are masked (3)")
      ->check(finiteNumber, "")
      ->option_text("DB");
  addOutputFile(*command, session, "The masking map to write");
}

}  // namespace aqdata

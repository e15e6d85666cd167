#include <fmt/format.h>

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

std::shared_ptr<aq::AQ_MaskMap> mapOf(const History& read, const aq::AQ_Spectrum& ambient,
                                      const MaskChoice& choice) {
  try {
    return aq::maskByAmbient(*read.model, ambient, choice.margin);
  } catch (const aq::Error& error) {
    const bool isOfHistory = error.code() == aq::ErrorCode::InvalidArgument;
    throw Failure(fmt::format("{}: {}", aq::escaped(isOfHistory ? choice.history : choice.ambient),
                              error.what()));
  }
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
    for (const auto& [band, level] : *spectrum) {
      if (level.toDouble() == double{aq::AQ_INVALID_LEVEL}) ++invalid;
    }
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
  const auto map = mapOf(read, *ambient.model, choice);
  const auto header = headerFor(choice);
  writeOutput<aq::AQ_DataMask>(session, header, *map);
  const std::size_t invalid = invalidIn(*read.model);
  session.wrote(fmt::format(
      "{}, {} masked{}", counted(static_cast<std::size_t>(map->Count()), "row"),
      counted(maskedIn(*map), "level"),
      invalid == 0
          ? ""
          : fmt::format("; {} of 9999, not valid and not masked", counted(invalid, "level"))));
}

}  // namespace

void addMask(CLI::App& program, Session& session) {
  const auto choice = std::make_shared<MaskChoice>();
  CLI::App* const command =
      addCommand(program, session, "mask", "Make a masking map of levels close to the ambient",
                 "Examples:\n"
                 "  aqdata mask fly-over.sth.csv --ambient fly-over.ssr.csv --margin 3 \\\n"
                 "    -o made.mask.csv\n",
                 [&session, choice] { mask(session, *choice); });
  addFile(*command, choice->history, "HISTORY", "The spectral time history");
  command->add_option("--ambient", choice->ambient, "The spectrum record of the ambient")
      ->required()
      ->option_text("AMBIENT");
  command->add_option("--margin", choice->margin, "Mask levels less than DB above the ambient (3)")
      ->check(numberFromZero, "")
      ->option_text("DB");
  addOutputFile(*command, session, "The masking map to write");
}

}  // namespace aqdata

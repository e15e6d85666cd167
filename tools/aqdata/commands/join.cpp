#include <aq/core/error.h>
#include <aq/geometry/cut_geometry.h>
#include <aq/masking/cut_map.h>
#include <aq/noise/record_geometry.h>
#include <aq/spectral/join_histories.h>
#include <fmt/format.h>

#include <tuple>

#include "tools/aqdata/files.h"
#include "tools/aqdata/program.h"
#include "tools/aqdata/runs.h"
#include "tools/aqdata/text.h"

namespace aqdata {
namespace {

struct JoinChoice {
  bool fill = false;
  bool maps = false;
  bool geometries = false;
};

/// Throws `Failure` unless both headers have the same project, microphone and adjustment.
void expectSameHeader(const History& one, const History& other, const std::string& file) {
  const auto expectWord = [&](const char* what, const std::string& a, const std::string& b) {
    if (a == b) return;
    throw Failure(fmt::format("{}: has the {} {}, but the piece before it has {}",
                              aq::escaped(file), what, aq::shown(b), aq::shown(a)));
  };
  expectWord("project", one.header->sProjectName, other.header->sProjectName);
  expectWord("microphone", one.header->sMicrophoneID, other.header->sMicrophoneID);
  expectWord("adjustment", one.header->sAdjustmentCode, other.header->sAdjustmentCode);
}

std::string pieceText(const std::string& file, std::int32_t low, std::int32_t high,
                      std::int32_t was) {
  const std::string name = aq::escaped(aq::fileInformation()->recordedName(file));
  return low == was
             ? fmt::format("{} (records {} to {})", name, low, high)
             : fmt::format("{} (records {} to {}, previously from {})", name, low, high, was);
}

/// The points of a run's records, one for each. Throws `aq::Error` if a record has none.
std::shared_ptr<aq::AQ_GeometryTimeHistory> wholeGeometry(const Run& run) {
  aq::AQ_SpectralTimeHistory& history = *run.history.model;
  return aq::geometryOf(*run.geometry->model, history, {history.LoRec(), history.HiRec()});
}

void expectSameGeometry(const aq::AQ_HeaderGTH& one, const aq::AQ_HeaderGTH& other) {
  const auto place = [](const aq::AQ_HeaderGTH& header) {
    const aq::AQ_Position& at = *header.MicrophonePosition;
    return std::tuple(at.X(), at.Y(), at.Z());
  };
  if (place(one) != place(other)) {
    throw Failure("the geometries have different microphone positions");
  }
  if (one.Temperature != other.Temperature) {
    throw Failure(fmt::format("the geometries have different temperatures: {} and {}",
                              one.Temperature, other.Temperature));
  }
}

/// Appends a piece to the run; returns how many records were missing between the two.
std::int32_t append(Run& run, Run& piece, const std::string& file, const JoinChoice& choice) {
  expectSameHeader(run.history, piece.history, file);
  expectKnownWords(piece.history, file);
  try {
    const std::int32_t gap = aq::recordsMissing(*run.history.model, *piece.history.model);
    if (gap > 0 && !choice.fill) {
      throw Failure(fmt::format(
          "{} missing before it; --fill adds records of 9999",
          counted(static_cast<std::size_t>(gap), "record") + (gap == 1 ? " is" : " are")));
    }
    if (run.geometry) {
      if (gap > 0) throw Failure("a gap in a geometry cannot be filled: join without --geometries");
      expectSameGeometry(*run.geometry->header, *piece.geometry->header);
      run.geometry->model = aq::joinGeometries(*wholeGeometry(run), *wholeGeometry(piece));
    }
    run.history.model = aq::joinHistories(*run.history.model, *piece.history.model, choice.fill);
    if (run.map) run.map->model = aq::joinMaps(*run.map->model, *piece.map->model, gap);
    return gap;
  } catch (const std::exception& error) {
    throw Failure(fmt::format("{}: {}", aq::escaped(file), error.what()));
  }
}

void join(Session& session, const JoinChoice& choice) {
  const std::vector<std::string>& files = session.files;
  if (files.size() < 2) throw Failure("expected two pieces or more, in time order");
  expectEnding(session.output, {".sth.csv", ".spc", ".csv"});
  const auto filesOf = [&](const std::string& history) {
    return RunFiles{history, choice.maps ? nextToHistory(history, ".mask.csv") : std::string(),
                    choice.geometries ? nextToHistory(history, ".gth.csv") : std::string()};
  };
  const RunFiles to = filesOf(session.output);
  for (const std::string& output : to.all()) {
    for (const std::string& file : files) expectNoInput(output, filesOf(file).all());
  }
  Run run = openRun(filesOf(files.front()));
  std::string pieces = pieceText(files.front(), run.history.model->LoRec(),
                                 run.history.model->HiRec(), run.history.model->LoRec());
  std::int32_t filled = 0;
  for (std::size_t i = 1; i < files.size(); ++i) {
    Run piece = openRun(filesOf(files[i]));
    const std::int32_t end = run.history.model->HiRec();
    const std::int32_t gap = append(run, piece, files[i], choice);
    filled += gap;
    pieces += ", " + pieceText(files[i], end + gap + 1, run.history.model->HiRec(),
                               piece.history.model->LoRec());
  }
  addComment(
      run,
      fmt::format("Joined from {}{}", pieces,
                  filled == 0 ? ""
                              : fmt::format("; --fill: {} of 9999 between",
                                            counted(static_cast<std::size_t>(filled), "record"))));
  const auto notes = writeRun(session, run, to, files.front());
  session.wrote(fmt::format("{}{}",
                            counted(static_cast<std::size_t>(run.history.model->Count()), "record"),
                            filled == 0 ? "" : fmt::format(", {} filled with 9999", filled)));
  for (const std::string& note : notes) {
    session.tell(fmt::format("{}: {}", aq::escaped(session.output), note));
  }
}

}  // namespace

void addJoin(CLI::App& program, Session& session) {
  const auto choice = std::make_shared<JoinChoice>();
  CLI::App* const command =
      addCommand(program, session, "join", "Join the pieces of one run",
                 "The pieces must be in time order; their time stamps do not change. They must\n"
                 "agree in bands, averaging, stamp type, record length, reference, project,\n"
                 "microphone and adjustment; use stamp to change the reference of a piece.\n"
                 "Record numbers continue from the first piece.\n\n"
                 "Examples:\n"
                 "  aqdata cut fly-over.sth.csv --records :20 -o a.sth.csv\n"
                 "  aqdata cut fly-over.sth.csv --records 24: -o b.sth.csv\n"
                 "  aqdata join a.sth.csv b.sth.csv --fill -o whole.sth.csv\n",
                 [&session, choice] { join(session, *choice); });
  command->add_option("HISTORIES", session.files, "The pieces, in time order")
      ->required()
      ->type_name("");
  command->add_flag("--fill", choice->fill,
                    "Fill gaps with records whose levels are 9999 (not valid)");
  command->add_flag("--masks", choice->maps, "Also join the maps next to the pieces");
  command->add_flag("--geometries", choice->geometries,
                    "Also join the geometries, if no record is missing");
  addOutputFile(*command, session, "The history to write");
}

}  // namespace aqdata

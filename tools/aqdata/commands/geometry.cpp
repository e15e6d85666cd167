#include <aq/core/error.h>
#include <aq/text/number_text.h>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "tools/aqdata/files.h"
#include "tools/aqdata/measurement.h"
#include "tools/aqdata/noise.h"
#include "tools/aqdata/program.h"
#include "tools/aqdata/text.h"

namespace aqdata {
namespace {

struct GeometryChoice {
  std::string history;
  std::string positions;
  std::string microphone;
  std::string celsius;
  std::string records;
};

/// The points of the records in the range, numbered from 1 as the file format requires. Throws
/// `Failure` if a record has no point, or if a point has no angles.
aq::AQ_GeometryTimeHistory numberedPoints(const aq::AQ_SpectralTimeHistory& history,
                                          const aq::AQ_GeometryTimeHistory& points,
                                          const Range& range, const std::string& file) {
  aq::AQ_GeometryTimeHistory geometry;
  std::vector<int> without;
  std::int32_t next = 0;
  for (const auto& [record, spectrum] : history) {
    if (record < range.first || record > range.last) continue;
    if (!points.contains(record)) {
      without.push_back(record);
      continue;
    }
    const auto point = points.Point(record);
    if (std::isnan(point->THETAe)) {
      throw Failure(
          fmt::format("{}: the source does not move, so there are no angles", aq::escaped(file)));
    }
    geometry.Point(++next, point);
  }
  if (!without.empty()) {
    throw Failure(
        fmt::format("{}: no position for the emission of {}: {}; --records A:B selects others",
                    aq::escaped(file), counted(without.size(), "record"), recordsText(without)));
  }
  return geometry;
}

std::shared_ptr<aq::AQ_HeaderGTH> headerFor(const GeometryChoice& choice, const History& read,
                                            const Microphone& microphone, double celsius,
                                            const Range& range) {
  auto header = std::make_shared<aq::AQ_HeaderGTH>();
  header->ProjectName = read.header->sProjectName;
  header->GeneratedBy = "aqdata";
  header->MicrophoneID = microphone.header->sMicrophoneID;
  header->MicrophonePosition = membraneOf(*microphone.model);
  header->Temperature = static_cast<float>(celsius);
  header->STHFileName = choice.history;
  header->PTHFileName = choice.positions;
  header->MICFileName = choice.microphone;
  if (!choice.records.empty() || read.model->LoRec() != 1) {
    const auto first = std::find_if(read.model->begin(), read.model->end(),
                                    [&](const auto& one) { return one.first >= range.first; });
    header->colCommentLines->Add(fmt::format("Point 1 belongs to record {}", (*first).first));
  }
  return header;
}

void geometry(Session& session, const GeometryChoice& choice) {
  expectOutput(session, {".gth.csv", ".csv"},
               {choice.history, choice.positions, choice.microphone});
  const double celsius = aq::doubleFrom(choice.celsius);
  const Range range = choice.records.empty() ? Range() : rangeFrom(choice.records, "records");
  const History read = openHistory(choice.history);
  const auto positions = openPath(choice.positions).positions;
  const Microphone microphone = openMicrophone(choice.microphone);
  const auto points =
      aq::emissionGeometry(*positions, *membraneOf(*microphone.model), *read.model, celsius);
  const auto made = numberedPoints(*read.model, *points, range, choice.positions);
  if (made.Count() == 0) {
    throw Failure(
        fmt::format("{}: has none of the records asked for", aq::escaped(choice.history)));
  }
  const auto header = headerFor(choice, read, microphone, celsius, range);
  writeOutput<aq::AQ_DataGTH>(session, header, made);
  session.wrote(fmt::format("{}, sound at {:.2f} m/s",
                            counted(static_cast<std::size_t>(made.Count()), "point"),
                            aq::speedOfSound(celsius)));
}

}  // namespace

void addGeometry(CLI::App& program, Session& session) {
  const auto choice = std::make_shared<GeometryChoice>();
  CLI::App* const command = addCommand(
      program, session, "geometry", "Compute where the source emitted each record's sound",
      "Coordinates are in metres. The source is assumed to fly straight between\n"
      "positions. The sound of every record asked for must have been emitted between\n"
      "the first position and the last.\n\n"
      "Examples:\n"
      "  aqdata geometry fly-over.sth.csv fly-over.tspi.csv fly-over.mic.csv \\\n"
      "    --celsius 20 --records 10:50 -o made.gth.csv\n",
      [&session, choice] { geometry(session, *choice); });
  addFile(*command, choice->history, "HISTORY", "The spectral time history");
  addFile(*command, choice->positions, "POSITIONS", "A position time history or tracking file");
  addFile(*command, choice->microphone, "MICROPHONE", "The microphone position file");
  command->add_option("--celsius", choice->celsius, "The air temperature in degrees Celsius")
      ->required()
      ->check(finiteNumber, "")
      ->option_text("T");
  command->add_option("--records", choice->records, "Compute only these records")
      ->option_text("A:B");
  addOutputFile(*command, session, "The geometric time history to write");
}

}  // namespace aqdata

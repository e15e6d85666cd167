#include <aq/core/band_label.h>
#include <fmt/format.h>

#include "tools/aqdata/measurement.h"
#include "tools/aqdata/program.h"
#include "tools/aqdata/text.h"

namespace aqdata {
namespace {

struct LgbChoice {
  std::string history;
  std::string map;
};

std::string text(int band) {
  if (band == 0) return "no band from 29 up is masked";
  return band == aq::AQ_INVALID_LEVEL ? "none"
                                      : std::string(aq::bandLabel(static_cast<std::int16_t>(band)));
}

void lgb(Session& session, const LgbChoice& choice) {
  const History read = openHistory(choice.history);
  const MaskingMap map = openMapOf(read, choice.history, choice.map);
  read.model->setLGB(*map.model);
  Table table({{"record", true}, {"time"}, {"last good band", true}, {""}});
  Json rows = Json::array();
  for (const auto& [record, spectrum] : *read.model) {
    const int band = static_cast<int>(spectrum->Metric()->LGB());
    rows.push_back({{"record", record}, {"last_good_band", band}});
    table.add({std::to_string(record), timeText(spectrum->timeValue()), std::to_string(band),
               text(band)});
  }
  if (!session.json) return table.print(session);
  session.printDocument(
      Json{{"file", choice.history}, {"map", choice.map}, {"records", std::move(rows)}});
}

}  // namespace

void addLgb(CLI::App& program, Session& session) {
  const auto choice = std::make_shared<LgbChoice>();
  CLI::App* const command = addCommand(
      program, session, "lgb", "Find the last good band of every record",
      "The last good band is the band below the first masked band from 29 (800 Hz) up.\n"
      "0 means that no band from 29 up is masked, 9999 that bands 28 and 29 both are.\n\n"
      "Examples:\n"
      "  aqdata lgb fly-over.sth.csv fly-over.mask.csv\n",
      [&session, choice] { lgb(session, *choice); });
  addFile(*command, choice->history, "HISTORY", "The spectral time history");
  addFile(*command, choice->map, "MAP", "The masking map of the history");
}

}  // namespace aqdata

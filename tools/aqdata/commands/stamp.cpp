#include <fmt/format.h>

#include "aq/text/date_text.h"
#include "tools/aqdata/files.h"
#include "tools/aqdata/measurement.h"
#include "tools/aqdata/program.h"
#include "tools/aqdata/text.h"

namespace aqdata {
namespace {

struct StampChoice {
  std::string file;
  std::string start;
  std::string type = "START";
  std::string reference;
  std::string referenceType = "OTHER";
};

aq::AQ_Time timeFrom(const std::string& text) {
  aq::AQ_Time time;
  try {
    time.TODstring(aq::clockTimeFrom(text.substr(0, text.find('.'))));  // refuses hours past 23
    time.TODstring(text);
  } catch (const aq::Error&) {
    throw Failure(fmt::format("expected a time of day hh:mm:ss, found {}", aq::shown(text)));
  }
  return time;
}

/// The value of an enumeration, counted from 0, whose text a history gives as `text`.
template <class Enumeration, class TextOf>
Enumeration valueFrom(const std::string& text, const char* what, const TextOf& textOf) {
  std::vector<std::string> known;
  for (std::int32_t number = 0;; ++number) {
    const auto value = static_cast<Enumeration>(number);
    known.push_back(textOf(value));
    if (known.back().empty()) break;
    if (CLI::detail::to_lower(known.back()) == CLI::detail::to_lower(text)) return value;
  }
  known.pop_back();
  throw Failure(fmt::format("expected a {}, one of {}, found {}", what, fmt::join(known, ", "),
                            aq::shown(text)));
}

/// A run lasts minutes, so a reference half a day away is one on the other side of midnight.
void setDates(aq::AQ_Time& start, aq::AQ_Time& reference) {
  constexpr std::int32_t kDay = 36526;  // any will do: a history's file has no dates of records
  constexpr double kHalfDay = 43200;
  const double ahead = reference.TODseconds() - start.TODseconds();
  start.CurrentDate(kDay);
  reference.CurrentDate(kDay + (ahead < -kHalfDay ? 1 : 0) - (ahead > kHalfDay ? 1 : 0));
}

void stamp(Session& session, const StampChoice& choice) {
  const History read = openHistory(choice.file);
  aq::AQ_SpectralTimeHistory texts;
  const auto type =
      valueFrom<aq::AQ_TimeStampType>(choice.type, "time stamp type", [&](auto value) {
        texts.TimeStampType(value);
        return texts.sTimeStampType();
      });
  const auto referenceType =
      valueFrom<aq::AQ_RefTimeType>(choice.referenceType, "reference time type", [&](auto value) {
        texts.ReferenceType(value);
        return texts.sReferenceTimeType();
      });
  aq::AQ_Time start = timeFrom(choice.start);
  aq::AQ_Time reference = timeFrom(choice.reference);
  setDates(start, reference);
  try {
    // NOLINTNEXTLINE(readability-suspicious-call-argument): two times, each with its type
    read.history->setTimeStamps(start, type, reference, referenceType);
  } catch (const aq::Error& error) {
    throw Failure(fmt::format("{}: {}", aq::escaped(choice.file), error.what()));
  }
  writeOutput<aq::AQ_DataSTH>(session, read.header, *read.history);
  session.tell(fmt::format("{}: {} from {} on, relative to {}", aq::escaped(session.output),
                           counted(static_cast<std::size_t>(read.history->Count()), "record"),
                           choice.start, choice.reference));
}

}  // namespace

void addStamp(CLI::App& program, Session& session) {
  const auto choice = std::make_shared<StampChoice>();
  CLI::App* const command =
      addCommand(program, session, "stamp", "Stamp the records of a history, half a second each",
                 "Examples:\n"
                 "  aqdata stamp fly-over.sth.csv --start 10:00:00 --type MIDPT \\\n"
                 "    --ref 10:00:14.75 --ref-type OVERHEAD -o stamped.sth.csv\n",
                 [&session, choice] { stamp(session, *choice); });
  addFile(*command, choice->file, "HISTORY", "The spectral time history");
  const auto add = [&](const char* name, std::string& value, const char* what, const char* form) {
    return command->add_option(name, value, what)->option_text(form);
  };
  add("--start", choice->start, "The time of day at which record 1 begins", "TIME")->required();
  add("--type", choice->type, "What a stamp names: START, MIDPT, END, ICAOSLO or OLDSLO", "TYPE");
  add("--ref", choice->reference, "The time of day that times are relative to", "TIME")->required();
  add("--ref-type", choice->referenceType,
      "START, OVERHEAD, AMAX, PMAX, TMAX, OAMAX, HACK or OTHER", "TYPE");
  addOutputFile(*command, session, "The history to write");
  command->add_flag("-q,--quiet", session.quiet, "Say nothing");
}

}  // namespace aqdata

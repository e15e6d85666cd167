#include <aq/text/number_text.h>
#include <fmt/format.h>

#include <algorithm>

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
  std::string referenceType = {};  // empty for the file's own
};

/// The names of an enumeration's members, whose values start at 0.
template <class Enumeration>
std::vector<std::string> wordsOf() {
  std::vector<std::string> words;
  for (std::int32_t number = 0;; ++number) {
    const std::string_view word = aq::wordOf(static_cast<Enumeration>(number));
    if (word.empty()) return words;
    words.emplace_back(word);
  }
}

/// The enumerator with the name `word`, which must exist.
template <class Enumeration>
Enumeration valueOf(const std::string& word) {
  Enumeration value{};
  aq::setByWord(value, word);
  return value;
}

/// The reference type to write: the requested one, or the file's own.
aq::AQ_RefTimeType referenceOf(const History& read, const StampChoice& choice) {
  if (!choice.referenceType.empty()) {
    return valueOf<aq::AQ_RefTimeType>(choice.referenceType);
  }
  if (const auto own = read.words.referenceType()) return *own;
  throw Failure(
      fmt::format("{}: has the reference time type {}, which is unknown; --ref-type "
                  "sets the one to write",
                  aq::escaped(choice.file), aq::shown(read.words.reference())));
}

/// Throws `Failure` for an unknown averaging method. Other unknown words do not matter: stamping
/// replaces them.
void expectKnownAveraging(History read, const std::string& file) {
  std::erase_if(read.others, [](const auto& other) { return other.what != "averaging method"; });
  expectKnownWords(read, file);
}

/// A run lasts minutes, so a reference time more than half a day away is on the other side of
/// midnight.
void setDates(aq::AQ_Time& start, aq::AQ_Time& reference) {
  constexpr std::int32_t kDay = 36526;  // any date, since records in a history file have none
  constexpr double kHalfDay = 43200;
  const double ahead = reference.TODseconds() - start.TODseconds();
  start.CurrentDate(kDay);
  reference.CurrentDate(kDay + (ahead < -kHalfDay ? 1 : 0) - (ahead > kHalfDay ? 1 : 0));
}

void stamp(Session& session, const StampChoice& choice) {
  expectOutput(session, {".sth.csv", ".csv"}, {});
  aq::AQ_Time start = timeFrom("--start", choice.start);
  aq::AQ_Time reference = timeFrom("--ref", choice.reference);
  const History read = openHistory(choice.file);
  expectKnownAveraging(read, choice.file);
  const auto type = valueOf<aq::AQ_TimeStampType>(choice.type);
  const auto referenceType = referenceOf(read, choice);
  setDates(start, reference);
  try {
    // NOLINTNEXTLINE(readability-suspicious-call-argument): two times, each with its type
    read.model->setTimeStamps(start, type, reference, referenceType);
  } catch (const aq::Error& error) {
    throw Failure(fmt::format("{}: {}", aq::escaped(choice.file), error.what()));
  }
  writeOutput<aq::AQ_DataSTH>(session, read.header, *read.model);
  session.wrote(fmt::format("{} from {}, relative to {}",
                            counted(static_cast<std::size_t>(read.model->Count()), "record"),
                            choice.start, choice.reference));
}

}  // namespace

void addStamp(CLI::App& program, Session& session) {
  const auto choice = std::make_shared<StampChoice>();
  CLI::App* const command =
      addCommand(program, session, "stamp", "Set the time stamps of a history",
                 "Records are half a second long. The reference marks the START of the\n"
                 "measurement, the source OVERHEAD, the largest A-weighted level (AMAX), PNL\n"
                 "(PMAX), PNLT (TMAX) or overall level (OAMAX), a mark set by hand (HACK), or\n"
                 "an OTHER event.\n\n"
                 "Examples:\n"
                 "  aqdata stamp fly-over.sth.csv --start 10:00:00 --type MIDPT \\\n"
                 "    --ref 10:00:14.75 --ref-type OVERHEAD -o stamped.sth.csv\n",
                 [&session, choice] { stamp(session, *choice); });
  addFile(*command, choice->file, "HISTORY", "The spectral time history");
  const auto add = [&](const char* name, std::string& value, const char* what, const char* form) {
    return command->add_option(name, value, what)->option_text(form);
  };
  add("--start", choice->start, "The time of day at which record 1 begins", "TIME")->required();
  addWords(session,
           *add("--type", choice->type, "What a stamp marks: START, MIDPT, END, ICAOSLO, OLDSLO",
                "TYPE"),
           wordsOf<aq::AQ_TimeStampType>());
  add("--ref", choice->reference, "The time of day from which relative times are measured", "TIME")
      ->required();
  addWords(session,
           *add("--ref-type", choice->referenceType,
                "What the reference marks (default: as in the file)", "TYPE"),
           wordsOf<aq::AQ_RefTimeType>());
  addOutputFile(*command, session, "The history to write");
}

}  // namespace aqdata

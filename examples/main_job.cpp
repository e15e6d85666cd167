// The main job: reads a history and its masking map, stamps the history, finds its last good bands,
// prints it, writes it, reads it back, and prints what is equal and what the file does not contain.
#include <algorithm>
#include <iomanip>
#include <string>
#include <utility>

#include "examples/outcome.h"

namespace {

using aq::AQ_SpectralTimeHistory;

constexpr int kShown = 8;  // records in a table

struct Measurement {
  std::shared_ptr<aq::AQ_HeaderSTH> header;
  std::shared_ptr<AQ_SpectralTimeHistory> history;
};

void showHeader(const Measurement& read) {
  AQ_SpectralTimeHistory& history = *read.history;
  const auto first = history.spectrum(history.LoRec());
  std::cout << read.header->sFileName << ": spectral time history\n"
            << "  project     " << read.header->sProjectName << "\n  microphone  "
            << read.header->sMicrophoneID << "\n  records     " << history.LoRec() << " to "
            << history.HiRec() << " (" << history.Count() << ")\n  bands       " << first->LowBand()
            << " to " << first->HighBand() << "\n  averaging   " << history.sAveragingMethod()
            << "\n  start       " << history.startTime()->TODstring() << " ("
            << history.sTimeStampType() << ")\n  reference   "
            << history.ReferenceTime()->TODstring() << "\n\n";
}

template <class Show>
void forFirstRecords(AQ_SpectralTimeHistory& history, const Show& show) {
  const int last = std::min<int>(history.HiRec(), history.LoRec() + kShown - 1);
  for (int record = history.LoRec(); record <= last; ++record) {
    show(static_cast<std::int16_t>(record));
  }
  std::cout << '\n';
}

void showRecords(AQ_SpectralTimeHistory& history) {
  const auto first = history.spectrum(history.LoRec());
  const int step = std::max(1, (first->HighBand() - first->LowBand()) / 5);
  std::cout << "record  time            rel s";
  for (int band = first->LowBand(); band <= first->HighBand(); band += step) {
    std::cout << std::setw(8) << band;
  }
  std::cout << "   last good\n" << std::fixed << std::setprecision(2);
  forFirstRecords(history, [&](std::int16_t record) {
    const auto spectrum = history.spectrum(record);
    std::cout << std::setw(6) << record << "  " << std::left << std::setw(12)
              << spectrum->Time()->TODstring() << std::right << std::setw(9)
              << spectrum->Time()->RelSeconds();
    for (int band = first->LowBand(); band <= first->HighBand(); band += step) {
      std::cout << std::setw(8) << spectrum->SPL(static_cast<std::int16_t>(band)).toDouble();
    }
    std::cout << std::setw(12) << static_cast<int>(spectrum->Metric()->LGB()) << '\n';
  });
}

void showMasks(AQ_SpectralTimeHistory& history, const aq::AQ_MaskMap& map) {
  std::cout << "record  masked bands\n";
  forFirstRecords(history, [&](std::int16_t record) {
    const auto row = map.Row(record);
    std::cout << std::setw(6) << record << ' ';
    for (std::int16_t band = row->LowBand(); band <= row->HighBand(); ++band) {
      const auto mask = row->Mask(band);
      if (mask->MaskMode() != aq::NOT_MASKED) std::cout << ' ' << band << mask->MaskString();
    }
    std::cout << '\n';
  });
}

bool sameLevels(AQ_SpectralTimeHistory& a, AQ_SpectralTimeHistory& b, std::int16_t record) {
  const auto one = a.spectrum(record);
  const auto other = b.spectrum(record);
  if (!one->Encompasses(*other) || !other->Encompasses(*one)) return false;
  for (std::int16_t band = one->LowBand(); band <= one->HighBand(); ++band) {
    if (one->SPL(band) != other->SPL(band)) return false;
  }
  return true;
}

/// Whether `same(record)` holds for every record of the history.
template <class Same>
bool allRecords(AQ_SpectralTimeHistory& history, const Same& same) {
  for (int record = history.LoRec(); record <= history.HiRec(); ++record) {
    if (!same(static_cast<std::int16_t>(record))) return false;
  }
  return true;
}

void report(const std::string& what, const std::string& found) {
  std::cout << "  " << std::left << std::setw(26) << what << std::right << found << '\n';
}

/// Prints which parts of `a` and of `b`, its copy read back, are equal; false if a part that a copy
/// should keep differs.
bool compare(const Measurement& a, const Measurement& b) {
  AQ_SpectralTimeHistory& one = *a.history;
  AQ_SpectralTimeHistory& two = *b.history;
  const auto time = [](AQ_SpectralTimeHistory& history, std::int16_t record) {
    return history.spectrum(record)->Time()->TODstring();
  };
  const auto relative = [](AQ_SpectralTimeHistory& history, std::int16_t record) {
    return static_cast<float>(history.spectrum(record)->Time()->RelSeconds());
  };
  const std::pair<const char*, bool> carried[] = {
      {"records", one.Count() == two.Count()},
      {"levels", allRecords(one, [&](auto r) { return sameLevels(one, two, r); })},
      {"times", allRecords(one, [&](auto r) { return time(one, r) == time(two, r); })},
      {"relative times (single)",
       allRecords(one, [&](auto r) { return relative(one, r) == relative(two, r); })},
      {"averaging method", one.AverageMethod() == two.AverageMethod()},
      {"time stamp type", one.TimeStampType() == two.TimeStampType()},
      {"project", a.header->sProjectName == b.header->sProjectName},
      {"microphone", a.header->sMicrophoneID == b.header->sMicrophoneID},
  };
  bool allEqual = true;
  for (const auto& [what, equal] : carried) {
    report(what, equal ? "equal" : "NOT EQUAL");
    allEqual = allEqual && equal;
  }
  report("file name", "not equal: the new file's, " + b.header->sFileName);
  report("file date and time", "not equal: when this file was written");
  report("reference time type",
         "not read back: " + one.sReferenceTimeType() + " reads as " + two.sReferenceTimeType());
  report("last good bands", "not in this file; they come from the map");
  return allEqual;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "usage: main_job HISTORY MAP FOLDER\n";
    return 2;
  }
  Measurement read;
  Measurement again;
  std::shared_ptr<aq::AQ_HeaderMask> mapHeader;
  std::shared_ptr<aq::AQ_MaskMap> map;
  aq::AQ_DataSTH file;
  aq::AQ_DataMask mapFile;
  if (!isGood(file.readFile(argv[1], read.header, read.history), file)) return 1;
  if (!isGood(mapFile.readFile(argv[2], mapHeader, map), mapFile)) return 1;
  try {
    AQ_SpectralTimeHistory& history = *read.history;
    const auto start = history.startTime()->Copy();
    const auto reference = history.ReferenceTime()->Copy();
    // Reading does not set the reference type, so the caller must.
    history.setTimeStamps(*start, history.TimeStampType(), *reference, aq::AQ_AMAX);
    std::cout << "The map " << (history.EncompassesMask(*map) ? "fits" : "does not fit")
              << " the history.\n";
    history.setLGB(*map);
    showHeader(read);
    showRecords(history);
    showMasks(history, *map);

    const std::string copy = std::string(argv[3]) + "/stamped.sth.csv";
    if (!isGood(file.writeFile(copy, read.header, history), file)) return 1;
    if (!isGood(file.readFile(copy, again.header, again.history), file)) return 1;
    std::cout << "Written to " << copy << " and read again:\n";
    return compare(read, again) ? 0 : 1;
  } catch (const aq::Error& error) {
    std::cerr << "the history and its map do not fit: " << error.what() << '\n';
    return 1;
  }
}

// The cost of a record in a history of 32,767 records, compared with its cost in one of 1,000; and
// the gain from a second thread.
#include <array>
#include <thread>

#include "bench/benches.h"
#include "bench/pairs.h"

namespace bench {
namespace {

constexpr std::int16_t kFew = 1000;
constexpr std::int16_t kMany = 32767;

using Work = std::function<void()>;

/// Times `workFor(records)` for `kFew` and `kMany` records.
template <class WorkFor>
void addGrowthOf(const std::string& name, const WorkFor& workFor) {
  const Work few = workFor(kFew);
  const Work many = workFor(kMany);
  addPair(name + ", a record", few, many, static_cast<double>(kFew) / kMany);
}

void storeAll(const aq::AQ_SpectralTimeHistory& from, aq::AQ_SpectralTimeHistory& into) {
  const std::int16_t count = from.Count();
  for (std::int32_t record = 1; record <= count; ++record) {
    const auto nRecord = static_cast<std::int16_t>(record);
    into.spectrum(nRecord, from.spectrum(nRecord));
  }
}

constexpr int kFiles = 200;

std::string fileOf(int number) {
  return fileInFolder("many." + std::to_string(number) + ".sth.csv");
}

void readEvery(int step, int first) {
  for (int file = first; file < kFiles; file += step) History().read(fileOf(file));
}

}  // namespace

void addGrowth() {
  addGrowthOf("reading", [](std::int16_t records) -> Work {
    const std::string path = fileInFolder("grown." + std::to_string(records) + ".sth.csv");
    writeHistory(path, *makeHistory(records));
    return [path] { History().read(path); };
  });
  addGrowthOf("storing", [](std::int16_t records) -> Work {
    return [all = makeHistory(records)] {
      aq::AQ_SpectralTimeHistory history;
      storeAll(*all, history);
    };
  });
  addGrowthOf("replacing", [](std::int16_t records) -> Work {
    return
        [all = makeHistory(records), history = makeHistory(records)] { storeAll(*all, *history); };
  });
  addGrowthOf("copying", [](std::int16_t records) -> Work {
    return [all = makeHistory(records)] { static_cast<void>(all->Copy()); };
  });
  addGrowthOf("stamping", [](std::int16_t records) -> Work {
    return [all = makeHistory(records)] {
      all->setTimeStamps(aq::AQ_Time(), aq::AQ_MIDPT, aq::AQ_Time(), aq::AQ_AMAX);
    };
  });
}

void addThreads() {
  const auto history = makeHistory(400);
  for (int file = 0; file < kFiles; ++file) writeHistory(fileOf(file), *history);
  addPair(
      "200 files of 400 records, two threads to one", [] { readEvery(1, 0); },
      [] {
        std::thread other(readEvery, 2, 1);
        readEvery(2, 0);
        other.join();
      });
}

}  // namespace bench

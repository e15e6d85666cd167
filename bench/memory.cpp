// The memory that a process holds for a history after reading it, and the additional peak while
// reading, from figures that the system reports.
#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "bench/benches.h"
#include "bench/pairs.h"

namespace bench {
namespace {

double residentNow() {
  double total = 0;
  double resident = 0;
  std::ifstream("/proc/self/statm") >> total >> resident;
  return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
}

double residentAtMost() {
  rusage usage{};
  require(getrusage(RUSAGE_SELF, &usage) == 0, "getting the peak memory");
  return static_cast<double>(usage.ru_maxrss) * 1024;
}

}  // namespace

nlohmann::ordered_json memoryOfReading(const std::string& path) {
  constexpr double kMiB = 1048576;
  const double start = residentNow();
  History history;
  history.read(path);
  const double held = residentNow();
  const double peak = residentAtMost() - held;
  const auto file = static_cast<double>(std::filesystem::file_size(path));
  return {{{"name", "history 32,767 held in memory"}, {"mib", (held - start) / kMiB}},
          {{"name", "additional peak while reading it"}, {"mib", peak / kMiB}},
          {{"name", "size of the file"}, {"mib", file / kMiB}}};
}

}  // namespace bench

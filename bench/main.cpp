// Runs pairs of a plain loop and a library call, interleaved, and prints `name ratio median spread`
// for each pair. The ratio is the median time of the library's call divided by that of the loop;
// the median is that of the library's call in milliseconds; the spread is its standard deviation as
// a percentage of the median. The growth pairs compare library calls with each other; the memory
// rows show a size in MiB instead.
//
//   aq_bench FOLDER [--json FILE] [Google Benchmark options]
//
// Each group runs in its own process, since memory left by one group slows the next.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <vector>

#include "bench/benches.h"
#include "bench/pairs.h"

namespace bench {
namespace {

struct Pair {
  std::string name;
  double scale = 1;
};

std::vector<Pair>& pairs() {
  static std::vector<Pair> all;
  return all;
}

std::string& folder() {
  static std::string path;
  return path;
}

void add(const std::string& name, const std::function<void()>& work) {
  benchmark::RegisterBenchmark(name.c_str(),
                               [work](benchmark::State& state) {
                                 for (auto _ : state) work();
                               })
      ->Unit(benchmark::kMillisecond)
      ->Repetitions(15)
      ->ReportAggregatesOnly();
}

/// Keeps medians and spreads instead of printing them.
class Table : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      values_[run.run_name.function_name + ' ' + run.aggregate_name] = run.GetAdjustedRealTime();
    }
  }

  /// A row for each pair whose benchmarks have both run.
  [[nodiscard]] nlohmann::ordered_json rows() const {
    auto rows = nlohmann::ordered_json::array();
    for (const auto& [name, scale] : pairs()) {
      const auto tested = values_.find(name + " median");
      const auto plain = values_.find("plain " + name + " median");
      if (tested == values_.end() || plain == values_.end()) continue;
      rows.push_back({{"name", name},
                      {"ratio", tested->second / plain->second * scale},
                      {"median_ms", tested->second},
                      {"spread", values_.at(name + " stddev") / tested->second}});
    }
    return rows;
  }

 private:
  std::map<std::string, double> values_;
};

nlohmann::ordered_json runPairs(const std::vector<void (*)()>& adders,
                                std::vector<char*> arguments) {
  for (const auto& addAll : adders) addAll();
  std::string interleaved = "--benchmark_enable_random_interleaving=true";
  std::string shorter = "--benchmark_min_time=0.2";  // unless an argument sets another time
  arguments.push_back(interleaved.data());
  arguments.insert(arguments.begin() + 1, shorter.data());
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  Table table;
  benchmark::RunSpecifiedBenchmarks(&table);
  return table.rows();
}

nlohmann::ordered_json runGroup(const std::string& group, const std::vector<char*>& arguments) {
  if (group == "formats") {
    return runPairs({addHistories, addMaps, addPositions, addRecordings, addDelimited}, arguments);
  }
  if (group == "growth") return runPairs({addGrowth, addThreads}, arguments);
  return memoryOfReading(fileInFolder("large.sth.csv"));
}

void print(const nlohmann::ordered_json& row) {
  const std::string name = row["name"];
  if (row.contains("ratio")) {
    std::printf("%-36s %5.2f %9.3f ms %5.1f %%\n", name.c_str(), row["ratio"].get<double>(),
                row["median_ms"].get<double>(), 100 * row["spread"].get<double>());
  } else {
    std::printf("%-36s %5.2f MiB\n", name.c_str(), row["mib"].get<double>());
  }
}

/// Runs a group in its own process and returns its rows.
nlohmann::ordered_json rowsOf(const std::string& group, const std::vector<char*>& arguments) {
  const std::string rows = fileInFolder(group + ".json");
  std::string command = "'/proc/" + std::to_string(getpid()) + "/exe' --group " + group;
  for (const char* argument : arguments) command += " '" + std::string(argument) + '\'';
  require(std::system((command + " > '" + rows + '\'').c_str()) == 0, group.c_str());
  return nlohmann::ordered_json::parse(bytesOf(rows));
}

/// Removes `name VALUE` from the arguments and returns the value; empty if it is not there.
std::string taken(std::vector<char*>& arguments, std::string_view name) {
  const auto at = std::find(arguments.begin(), arguments.end(), name);
  if (at == arguments.end() || at + 1 == arguments.end()) return {};
  std::string value = at[1];
  arguments.erase(at, at + 2);
  return value;
}

}  // namespace

void addPair(const std::string& name, const std::function<void()>& plain,
             const std::function<void()>& tested, double scale) {
  pairs().push_back({name, scale});
  add("plain " + name, plain);
  add(name, tested);
}

std::string fileInFolder(const std::string& name) { return folder() + '/' + name; }

std::string bytesOf(const std::string& path) {
  const int handle = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  struct stat status {};
  require(::fstat(handle, &status) == 0, "opening a file");
  std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
  require(::read(handle, bytes.data(), bytes.size()) == status.st_size, "reading a file");
  ::close(handle);
  return bytes;
}

void require(bool good, const char* what) {
  if (good) return;
  std::cerr << "failed: " << what << '\n';
  std::exit(1);
}

}  // namespace bench

int main(int argc, char** argv) {
  std::vector<char*> arguments(argv, argv + argc);
  const std::string group = bench::taken(arguments, "--group");
  const std::string json = bench::taken(arguments, "--json");
  arguments.erase(arguments.begin());
  bench::require(!arguments.empty(), "the first argument must be a folder to work in");
  bench::folder() = arguments.front();
  if (!group.empty()) {
    std::cout << bench::runGroup(group, arguments) << '\n';
    return 0;
  }
  auto table = nlohmann::ordered_json::array();
  for (const char* const each : {"formats", "growth", "memory"}) {
    for (const auto& row : bench::rowsOf(each, arguments)) {
      bench::print(row);
      table.push_back(row);
    }
  }
  if (!json.empty()) bench::require((std::ofstream(json) << table.dump(2) << '\n').good(), "JSON");
}

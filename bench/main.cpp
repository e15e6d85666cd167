// Runs pairs of plain loops and library calls, interleaved, and prints the ratio of the medians of
// each pair: `name ratio median spread`, the median of the library's call in milliseconds and its
// spread, the coefficient of variation.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <vector>

#include "bench/benches.h"
#include "bench/pairs.h"

namespace bench {
namespace {

std::vector<std::string>& names() {
  static std::vector<std::string> all;
  return all;
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

  void print() const {
    for (const std::string& name : names()) {
      const double median = values_.at(name + " median");
      std::printf("%-34s %5.2f %9.3f ms %5.1f %%\n", name.c_str(),
                  median / values_.at("plain " + name + " median"), median,
                  100 * values_.at(name + " stddev") / median);
    }
  }

 private:
  std::map<std::string, double> values_;
};

}  // namespace

void addPair(const std::string& name, const std::function<void()>& plain,
             const std::function<void()>& tested) {
  names().push_back(name);
  add("plain " + name, plain);
  add(name, tested);
}

std::string fileInMemory(const std::string& name) {
  const std::filesystem::path memory = "/dev/shm";
  const auto folder =
      std::filesystem::exists(memory) ? memory : std::filesystem::temp_directory_path();
  return (folder / ("aq-bench-" + name)).string();
}

std::string bytesOf(const std::string& path) {
  std::ifstream stream(path, std::ios::binary | std::ios::ate);
  std::string bytes(static_cast<std::size_t>(stream.tellg()), '\0');
  stream.seekg(0);
  stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return bytes;
}

void require(bool good, const char* what) {
  if (good) return;
  std::cerr << "failed: " << what << '\n';
  std::exit(1);
}

}  // namespace bench

int main(int argc, char** argv) {
  const double held = bench::addHistories();
  bench::addMaps();
  bench::addPositions();
  bench::addDelimited();
  std::vector<char*> arguments(argv, argv + argc);
  std::string interleaved = "--benchmark_enable_random_interleaving=true";
  arguments.push_back(interleaved.data());
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  bench::Table table;
  benchmark::RunSpecifiedBenchmarks(&table);
  table.print();
  std::printf("memory of a history of 32,767 x 24: %.1f MiB\n", held);
}

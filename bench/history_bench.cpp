// Reading and writing a history of 32,767 records of 24 bands, each beside a plain loop that does
// the same work: bytes to one object a record by from_chars, records to lines by to_chars. The last
// lines give the ratios of the medians, and the memory that the history holds.
#include <aq/aq.h>
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <vector>

namespace {

constexpr std::int16_t kRecords = 32767;
constexpr std::int16_t kLow = 17;
constexpr std::int16_t kHigh = 40;
const std::string kFile = "/dev/shm/aq-bench.sth.csv";

double level(int record, int band) {
  return std::round((70 + 20 * std::sin(record * 0.001) - band + record % 97 * 0.13) * 100) / 100;
}

std::shared_ptr<aq::AQ_SpectralTimeHistory> makeHistory() {
  auto history = std::make_shared<aq::AQ_SpectralTimeHistory>();
  for (int record = 1; record <= kRecords; ++record) {
    auto spectrum = std::make_shared<aq::AQ_Spectrum>();
    for (std::int16_t band = kLow; band <= kHigh; ++band) spectrum->SPL(band, level(record, band));
    history->spectrum(static_cast<std::int16_t>(record), spectrum);
  }
  aq::AQ_Time start;
  start.TODstring("10:00:00");
  history->setTimeStamps(start, aq::AQ_MIDPT, start, aq::AQ_AMAX);
  return history;
}

struct PlainRecord {
  int number = 0;
  double timeOfDay = 0;
  double relative = 0;
  std::vector<double> levels;
};

std::vector<std::shared_ptr<PlainRecord>> plainRecords;  // what the plain loops read and write

std::string bytesOf(const std::string& path) {
  std::ifstream stream(path, std::ios::binary | std::ios::ate);
  std::string bytes(static_cast<std::size_t>(stream.tellg()), '\0');
  stream.seekg(0);
  stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return bytes;
}

const char* plainRecord(const char* at, const char* end, PlainRecord& record) {
  int hours = 0;
  int minutes = 0;
  double seconds = 0;
  at = std::from_chars(at, end, record.number).ptr + 1;
  at = std::from_chars(at, end, hours).ptr + 1;
  at = std::from_chars(at, end, minutes).ptr + 1;
  at = std::from_chars(at, end, seconds).ptr + 1;
  record.timeOfDay = hours * 3600 + minutes * 60 + seconds;
  at = std::from_chars(at, end, record.relative).ptr;
  record.levels.reserve(24);
  while (at != end && *at == ',') {
    double value = 0;
    at = std::from_chars(at + 1, end, value).ptr;
    record.levels.push_back(value);
  }
  return at;
}

void plainRead() {
  const std::string bytes = bytesOf(kFile);
  const char* const end = bytes.data() + bytes.size();
  const char* at = bytes.data() + bytes.find('\n', bytes.find("\nRec#") + 1) + 1;
  plainRecords.clear();
  while (at < end) {
    auto record = std::make_shared<PlainRecord>();
    at = plainRecord(at, end, *record) + 1;
    plainRecords.push_back(std::move(record));
  }
}

void plainWrite() {
  std::string text;
  char field[64];
  const auto append = [&](char* end) { text.append(static_cast<char*>(field), end); };
  for (const auto& record : plainRecords) {
    append(std::to_chars(field, field + 64, record->number).ptr);
    const int second = static_cast<int>(record->timeOfDay);
    std::snprintf(field, sizeof field, ",%02d:%02d:%02d", second / 3600, second / 60 % 60,
                  second % 60);
    text += field;
    const double fraction = record->timeOfDay - second;
    if (fraction != 0) append(std::to_chars(field, field + 64, fraction).ptr);
    text += ',';
    append(std::to_chars(field, field + 64, record->relative).ptr);
    for (const double value : record->levels) {
      text += ',';
      append(std::to_chars(field, field + 64, value, std::chars_format::fixed, 2).ptr);
    }
    text += '\n';
  }
  std::ofstream(kFile + ".plain", std::ios::binary) << text;
}

void readPlain(benchmark::State& state) {
  for (auto _ : state) plainRead();
}

void readHistory(benchmark::State& state) {
  aq::AQ_DataSTH file;
  std::shared_ptr<aq::AQ_HeaderSTH> header;
  std::shared_ptr<aq::AQ_SpectralTimeHistory> history;
  for (auto _ : state) {
    if (file.readFile(kFile, header, history) != aq::AQ_DATA_OK) state.SkipWithError("unread");
  }
}

void writePlain(benchmark::State& state) {
  plainRead();
  for (auto _ : state) plainWrite();
}

void writeHistory(benchmark::State& state) {
  const auto history = makeHistory();
  const auto header = std::make_shared<aq::AQ_HeaderSTH>();
  aq::AQ_DataSTH file;
  for (auto _ : state) {
    if (file.writeFile(kFile, header, *history) != aq::AQ_DATA_OK) state.SkipWithError("unwritten");
  }
}

/// Keeps the medians that the console shows, for the ratios.
class Medians : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.aggregate_name == "median")
        medians_[run.run_name.function_name] = run.real_accumulated_time;
    }
    ConsoleReporter::ReportRuns(runs);
  }

  [[nodiscard]] double ratio(const std::string& tested, const std::string& plain) const {
    return medians_.at(tested) / medians_.at(plain);
  }

 private:
  std::map<std::string, double> medians_;
};

double mebibytesHeld() { return static_cast<double>(mallinfo2().uordblks) / 1048576; }

double mebibytesOfAHistory() {
  const double before = mebibytesHeld();
  aq::AQ_DataSTH file;
  std::shared_ptr<aq::AQ_HeaderSTH> header;
  std::shared_ptr<aq::AQ_SpectralTimeHistory> history;
  return file.readFile(kFile, header, history) == aq::AQ_DATA_OK ? mebibytesHeld() - before : -1;
}

}  // namespace

int main(int argc, char** argv) {
  aq::AQ_DataSTH file;
  if (file.writeFile(kFile, std::make_shared<aq::AQ_HeaderSTH>(), *makeHistory()) !=
      aq::AQ_DATA_OK) {
    std::cerr << file.lastFailure()->message() << '\n';
    return 1;
  }
  const double held = mebibytesOfAHistory();
  for (auto* const run : {benchmark::RegisterBenchmark("readPlain", readPlain),
                          benchmark::RegisterBenchmark("readHistory", readHistory),
                          benchmark::RegisterBenchmark("writePlain", writePlain),
                          benchmark::RegisterBenchmark("writeHistory", writeHistory)}) {
    run->Unit(benchmark::kMillisecond)->Repetitions(15)->ReportAggregatesOnly();
  }
  std::vector<char*> arguments(argv, argv + argc);
  std::string interleaved = "--benchmark_enable_random_interleaving=true";
  arguments.push_back(interleaved.data());
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  Medians medians;
  benchmark::RunSpecifiedBenchmarks(&medians);
  std::printf("reading, to the plain loop: %.2f\n", medians.ratio("readHistory", "readPlain"));
  std::printf("writing, to the plain loop: %.2f\n", medians.ratio("writeHistory", "writePlain"));
  std::printf("memory of 32,767 records after reading: %.1f MiB\n", held);
  std::remove(kFile.c_str());
  std::remove((kFile + ".plain").c_str());
}

// Runs each target without the fuzzer, so with any compiler, on its saved inputs and on all samples
// of every format. Also runs the targets numbers and model on generated inputs:
//   replay CORPUS SAMPLES
#include <array>
#include <filesystem>
#include <iostream>
#include <random>

#include "fuzz/targets.h"
#include "tests/support/files.h"

namespace {

int replay(const std::string& target, const std::filesystem::path& folder) {
  int count = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    std::cerr << target << ' ' << entry.path() << '\n';  // names the input if the run ends early
    aq::fuzz::run(target, aq::test::contentOf(entry.path()));
    ++count;
  }
  return count;
}

/// A byte from which the target makes a choice, followed by arbitrary bytes or, half of the time,
/// by fields that resemble numbers, levels or clock times.
std::string made(std::mt19937& random, std::size_t most) {
  constexpr std::array kForms{"0",         "-0",    "00000",           "32767",  ".00",
                              "-.00",      "00.00", "000.00",          "327.68", "0.0000",
                              "9999.00",   "0e00",  "-0.00E-000",      "nan",    "+0.0",
                              "000000.00", "1e400", "00:00:00.000000", "0.0.0",  "0000000000.0000"};
  std::string input(1 + random() % most, '\0');
  for (char& byte : input) byte = static_cast<char>(random());
  if (random() % 2 != 0) return input;
  input.resize(1);
  do {
    std::string field = kForms[random() % kForms.size()];
    if (random() % 4 == 0)
      field = std::string(random() % 8, '0') + '.' + std::string(random() % 16, '0');
    for (char& c : field) c = c == '0' ? static_cast<char>('0' + random() % 10) : c;
    if (random() % 8 == 0) field[random() % field.size()] = "0/:.,- e"[random() % 8];
    if (random() % 8 == 0) field.resize(random() % field.size());
    input += field + ',';
  } while (random() % 3 != 0);
  if (random() % 2 != 0) input.pop_back();
  return input;
}

}  // namespace

int main(int, char** arguments) {
  for (const auto& target : aq::fuzz::targets()) {
    const int kept = replay(target.name, std::filesystem::path(arguments[1]) / target.name);
    std::cout << target.name << ": " << kept << " kept, " << replay(target.name, arguments[2])
              << " samples\n";
    aq::fuzz::expect(kept != 0, "kept inputs");
  }
  std::mt19937 random(20260315);
  for (int i = 0; i < 50000; ++i) aq::fuzz::run("numbers", made(random, 16));
  for (int i = 0; i < 500; ++i) aq::fuzz::run("model", made(random, 4096));
}

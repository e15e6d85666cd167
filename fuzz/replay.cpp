// Runs each target with the kept inputs, and with all samples whatever their format, under any
// compiler: replay CORPUS SAMPLES
#include <filesystem>
#include <iostream>

#include "fuzz/targets.h"
#include "tests/support/files.h"

namespace {

int replay(const std::string& target, const std::filesystem::path& folder) {
  int count = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    std::cerr << target << ' ' << entry.path() << '\n';  // the last line of a run that ends early
    aq::fuzz::run(target, aq::test::contentOf(entry.path()));
    ++count;
  }
  return count;
}

}  // namespace

int main(int, char** arguments) {
  for (const auto& target : aq::fuzz::targets()) {
    const int kept = replay(target.name, std::filesystem::path(arguments[1]) / target.name);
    std::cout << target.name << ": " << kept << " kept, " << replay(target.name, arguments[2])
              << " samples\n";
    aq::fuzz::expect(kept != 0, "kept inputs");
  }
}

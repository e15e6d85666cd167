#include "tools/aqdata/package.h"

#include <fmt/format.h>

#include <cstdio>
#include <cstdlib>

#include "tools/aqdata/session.h"
#include "tools/aqdata/terminal.h"

namespace aqdata {
namespace {

constexpr int kMissing = 77;  // the interpreter's exit status if a package is missing

// Modules are not imported from the current folder.
constexpr const char* kStart = R"(import sys
sys.path[:] = [folder for folder in sys.path if folder]
try:
    from aq_data.__main__ import main
    status = main(sys.argv[1:])
except ImportError as error:
    print(f"aqdata: {sys.executable}: {error.__cause__ or error}", file=sys.stderr)
    status = 77
sys.exit(status)
)";

}  // namespace

void runPackage(const std::string& what, const std::vector<std::string>& words) {
  const char* const own = std::getenv("AQ_PYTHON");
  std::vector<std::string> command{own == nullptr || *own == '\0' ? AQDATA_PYTHON : own, "-c",
                                   kStart};
  command.insert(command.end(), words.begin(), words.end());
  std::fflush(stdout);
  const auto status = terminal::run(command);
  if (status == 0) return;
  if (status && *status != kMissing) throw Failure(fmt::format("making {} failed", what));
  throw Failure(
      fmt::format("{} needs Python with the package aq_data (see Installing in the manual); set "
                  "AQ_PYTHON to use an interpreter other than {}",
                  what, AQDATA_PYTHON));
}

}  // namespace aqdata

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tools/aqdata/runs.h"

namespace aqdata {

/// A workbook of runs. The first sheet lists the runs with their events, the second has the
/// headers, and each run has a sheet with one row per record (levels, masks as colours and as
/// letters in a column, metrics) and a chart of the A-weighted level and PNLT over time. The file
/// is written completely or not at all.
class Workbook {
 public:
  /// Throws `Failure` if the tool was built without the library for workbooks.
  explicit Workbook(std::string path);
  Workbook(const Workbook&) = delete;
  Workbook& operator=(const Workbook&) = delete;
  ~Workbook();

  /// Adds a run that was read from `file`. Returns notes on the data left out.
  std::vector<std::string> add(const Run& run, const std::string& file);

  /// Writes the file. Throws `Failure` with the reason if that fails.
  void finish();

 private:
  class Sheets;
  std::unique_ptr<Sheets> sheets_;
};

}  // namespace aqdata

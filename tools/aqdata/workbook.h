#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tools/aqdata/runs.h"

namespace aqdata {

/// A spreadsheet's workbook of runs. Its first sheet lists them with their events, the second has
/// what the headers say, and each run has one of its own: a row a record with levels, masks (masked
/// levels in colours, letters in a column of their own) and metrics, and a chart of the levels over
/// time. The file is written as a whole or not at all.
class Workbook {
 public:
  /// Throws `Failure` where the tool is built without the library for workbooks.
  explicit Workbook(std::string path);
  Workbook(const Workbook&) = delete;
  Workbook& operator=(const Workbook&) = delete;
  ~Workbook();

  /// Gives what is left out, in words.
  std::vector<std::string> add(const Run& run, const std::string& file);

  /// Writes the file. Throws `Failure` with the system's reason.
  void finish();

 private:
  class Sheets;
  std::unique_ptr<Sheets> sheets_;
};

}  // namespace aqdata

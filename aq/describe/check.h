#pragma once

#include "aq/check/check_file.h"
#include "aq/check/finding.h"
#include "aq/describe/description.h"

// File checks. Each host receives findings in its own form.

namespace aq::describe {

template <>
struct Description<Severity> {
  static constexpr char name[] = "Severity";
  static constexpr char text[] = "How serious a finding is";
  template <class To>
  static void members(To& to) {
    to.member("Note", Severity::Note, "Worth knowing; the data are as measured")
        .member("Warning", Severity::Warning,
                "Probably a fault; the data may differ from what was measured")
        .member("Error", Severity::Error, "The file, or pair of files, cannot be used");
  }
};

/// The functions of `aq/check`.
struct CheckFunctions;

template <>
struct Description<CheckFunctions> {
  static constexpr char name[] = "check";
  template <class To>
  static void members(To& to) {
    constexpr auto report = in("report",
                               "Called with each finding, in line order; those about the whole "
                               "file come first");
    using FitOfFiles = void (*)(const std::string&, const std::string&, const FindingSink&);
    to.function("checkFile", &checkFile,
                about("Reads a file of any kind and reports what makes reading fail, what is "
                      "probably wrong and what is worth knowing"),
                in("path", "The name of the file", FileName{}), report)
        .function("checkFixes", &checkFixes,
                  about("Reports the position fixes of a tracking file that a reader with this "
                        "limit drops"),
                  in("path", "The tracking file", FileName{}),
                  in("limit", "The highest quality figure that the reader accepts; 0 is the best",
                     Quantity{"quality figure", 0, 255}),
                  report)
        .function("checkFit", static_cast<FitOfFiles>(&checkFit),
                  about("Reports why a masking map does not fit its history; reports nothing if "
                        "either file cannot be read"),
                  in("historyPath", "The history file", FileName{}),
                  in("mapPath", "The masking map file", FileName{}), report);
  }
};

}  // namespace aq::describe

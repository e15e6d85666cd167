#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "aq/core/enumerations.h"
#include "aq/core/export.h"
#include "aq/core/file_failure.h"
#include "aq/core/file_information.h"
#include "aq/text/header_observer.h"

namespace aq {

/// What all file classes share: a result value for the outcome of a call, and the reason behind it.
class AQ_API FileClass {
 public:
  /// Why the last call failed; empty when it gave `AQ_DATA_OK` or threw.
  [[nodiscard]] const std::optional<FileFailure>& lastFailure() const { return lastFailure_; }

  /// Shows `watch` the header lines of every read from now on, as far as it comes. What `watch`
  /// throws ends the read and goes to the caller.
  void observeHeader(HeaderObserver watch) { observer_ = std::move(watch); }

  /// Has writes ask `information` for names and dates; `nullptr`, as at first, stands for the one
  /// in force.
  void fileInformation(std::shared_ptr<FileInformation> information) {
    information_ = std::move(information);
  }

  /// The one that writes ask.
  [[nodiscard]] std::shared_ptr<FileInformation> fileInformation() const {
    return information_ ? information_ : aq::fileInformation();
  }

 protected:
  FileClass() = default;
  FileClass(const FileClass&) = default;
  FileClass& operator=(const FileClass&) = default;
  ~FileClass() = default;

  [[nodiscard]] const HeaderObserver& headerObserver() const { return observer_; }

  // Each works on a copy of the name: the caller's may be a part of what the call replaces, as the
  // name in a header or in the last failure.

  /// Runs `read(name)`; what it finds wrong with the file becomes the last failure.
  template <class Read>
  [[nodiscard]] AQ_DataMessage reading(const std::string& file, const Read& read) {
    return withFile(file, read);
  }

  /// Makes the text that `build(name)` gives the content of `file`. What `build` throws goes to the
  /// caller, and the disk stays as it was.
  template <class Build>
  [[nodiscard]] AQ_DataMessage writing(const std::string& file, const Build& build) {
    std::string name;
    name = file;
    lastFailure_.reset();
    return replace(name, build(std::as_const(name)));
  }

  /// As `writing`, but behind what the file holds.
  template <class Build>
  [[nodiscard]] AQ_DataMessage appending(const std::string& file, const Build& build) {
    std::string name;
    name = file;
    lastFailure_.reset();
    return append(name, build(std::as_const(name)));
  }

 private:
  /// Runs `work(name)`; a failure of the file becomes the last failure.
  template <class Work>
  [[nodiscard]] AQ_DataMessage withFile(const std::string& file, const Work& work) {
    std::string name;
    try {
      name = file;
      lastFailure_.reset();
      work(std::as_const(name));
      return AQ_DATA_OK;
    } catch (...) {
      return failed(name);
    }
  }

  [[nodiscard]] AQ_DataMessage failed(const std::string& name);
  [[nodiscard]] AQ_DataMessage replace(const std::string& name, const std::string& text);
  [[nodiscard]] AQ_DataMessage append(const std::string& name, const std::string& text);

  std::optional<FileFailure> lastFailure_;
  HeaderObserver observer_;
  std::shared_ptr<FileInformation> information_;
};

}  // namespace aq

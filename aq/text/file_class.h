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

/// The base of all file classes: each call returns a result, and the reason for a failure is kept.
class AQ_API FileClass {
 public:
  /// Why the last call failed; empty if it returned `AQ_DATA_OK` or threw.
  [[nodiscard]] const std::optional<FileFailure>& lastFailure() const { return lastFailure_; }

  /// Calls `watch` with each header line of every later read, up to the failure if the read fails.
  /// An exception from `watch` ends the read and reaches the caller.
  void observeHeader(HeaderObserver watch) { observer_ = std::move(watch); }

  /// Sets the service that supplies the names and dates for writes; `nullptr`, the default, means
  /// the global service.
  void fileInformation(std::shared_ptr<FileInformation> information) {
    information_ = std::move(information);
  }

  /// The service used for writes.
  [[nodiscard]] std::shared_ptr<FileInformation> fileInformation() const {
    return information_ ? information_ : aq::fileInformation();
  }

 protected:
  FileClass() = default;
  FileClass(const FileClass&) = default;
  FileClass& operator=(const FileClass&) = default;
  ~FileClass() = default;

  [[nodiscard]] const HeaderObserver& headerObserver() const { return observer_; }

  // Each of these works on a copy of the name, since the call may replace the caller's own string,
  // such as the name in a header or in the last failure.

  /// Runs `read(name)`; a failure of the file, or a lack of memory, becomes the last failure.
  template <class Read>
  [[nodiscard]] AQ_DataMessage reading(const std::string& file, const Read& read) {
    return withFile(file, read);
  }

  /// Writes the text that `build(name)` returns as the content of `file`. An exception from `build`
  /// reaches the caller and leaves the disk unchanged.
  template <class Build>
  [[nodiscard]] AQ_DataMessage writing(const std::string& file, const Build& build) {
    std::string name;
    name = file;
    lastFailure_.reset();
    return replace(name, build(std::as_const(name)));
  }

  /// Like `writing`, but appends to the file.
  template <class Build>
  [[nodiscard]] AQ_DataMessage appending(const std::string& file, const Build& build) {
    std::string name;
    name = file;
    lastFailure_.reset();
    return append(name, build(std::as_const(name)));
  }

 private:
  /// Runs `work(name)`; a failure of the file, or a lack of memory, becomes the last failure.
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

#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "aq/core/export.h"

namespace aq {

/// A service that supplies the file names and dates that writers record. A host may install its
/// own.
class AQ_API FileInformation {
 public:
  FileInformation() = default;
  FileInformation(const FileInformation&) = delete;
  FileInformation& operator=(const FileInformation&) = delete;
  virtual ~FileInformation();

  /// The name under which a file is recorded. The default drops the folder.
  virtual std::string recordedName(const std::string& path) = 0;

  /// When a file was last changed, as `mm/dd/yyyy,hh:mm:ss`. The default gives local time; if that
  /// is unknown, for example because the file does not exist, the current date and time.
  virtual std::string fileDateTime(const std::string& path) = 0;

  /// The current date and time, as `mm/dd/yyyy,hh:mm:ss`.
  virtual std::string currentDateTime() = 0;

  /// The date to write for a source file, one from which the written file was made. `recorded` is
  /// the date that the header gives for it, usually as `mm/dd/yyyy,hh:mm:ss`; it may be empty. The
  /// default ignores it and calls `fileDateTime`: hosts rely on that.
  virtual std::string sourceDateTime(const std::string& path, const std::string& recorded);
};

/// The service in use. Safe to call from any thread.
[[nodiscard]] AQ_API std::shared_ptr<FileInformation> fileInformation();

/// Day 0 (1899-12-30) at midnight, as text; in a header it means an unknown date.
inline constexpr std::string_view kNoDateTime = "12/30/1899,00:00:00";

/// A service like the one now in use, except that it keeps the dates that a header gives for source
/// files, and takes unknown ones from the files if they exist. Give it to a file object with
/// `fileInformation`, or to all with `setFileInformation`; a file that is read and written again
/// then keeps the date of its source.
[[nodiscard]] AQ_API std::shared_ptr<FileInformation> keepingFileInformation();

/// Installs a host's own service; `nullptr` restores the default. Safe to call from any thread.
AQ_API void setFileInformation(std::shared_ptr<FileInformation> information);

}  // namespace aq

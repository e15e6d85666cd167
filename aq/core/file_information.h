#pragma once

#include <memory>
#include <string>

#include "aq/core/export.h"

namespace aq {

/// What the writers record of files: names and dates. A host may put its own in place.
class AQ_API FileInformation {
 public:
  FileInformation() = default;
  FileInformation(const FileInformation&) = delete;
  FileInformation& operator=(const FileInformation&) = delete;
  virtual ~FileInformation();

  /// The name under which a file is recorded. The default leaves its folder out.
  virtual std::string recordedName(const std::string& path) = 0;

  /// When a file was last changed, as `mm/dd/yyyy,hh:mm:ss`. The default gives local time, and the
  /// current date and time for a file that is not named or not there.
  virtual std::string fileDateTime(const std::string& path) = 0;

  /// Now, as `mm/dd/yyyy,hh:mm:ss`.
  virtual std::string currentDateTime() = 0;
};

/// The one in force. May be called from any thread.
[[nodiscard]] AQ_API std::shared_ptr<FileInformation> fileInformation();

/// Puts a host's own in force, `nullptr` the default again. May be called from any thread.
AQ_API void setFileInformation(std::shared_ptr<FileInformation> information);

}  // namespace aq

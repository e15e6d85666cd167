#pragma once

#include <memory>
#include <string>
#include <string_view>

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

  /// The date to write of the file from which another was made. `recorded` is what the header holds
  /// of it, in the same form. The default takes `fileDateTime`, as hosts know it.
  virtual std::string sourceDateTime(const std::string& path, const std::string& recorded);
};

/// The one in force. May be called from any thread.
[[nodiscard]] AQ_API std::shared_ptr<FileInformation> fileInformation();

/// What `CurrentDate` 0 and midnight are as text: in a header, a date that is not known.
inline constexpr std::string_view kNoDateTime = "12/30/1899,00:00:00";

/// As the one in force, but for source files: a date that the header has stays, and one that is not
/// known comes from the file when it is there. So a file read and written again keeps its dates.
[[nodiscard]] AQ_API std::shared_ptr<FileInformation> keepingFileInformation();

/// Puts a host's own in force, `nullptr` the default again. May be called from any thread.
AQ_API void setFileInformation(std::shared_ptr<FileInformation> information);

}  // namespace aq

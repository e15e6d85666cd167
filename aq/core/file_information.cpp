#include "aq/core/file_information.h"

#include <mutex>
#include <utility>

#include "aq/core/platform.h"
#include "aq/text/date_text.h"

namespace aq {
namespace {

std::string dateTimeText(const std::tm& at) {
  std::string text = dateText(dateFrom(at.tm_year + 1900, static_cast<unsigned>(at.tm_mon + 1),
                                       static_cast<unsigned>(at.tm_mday)));
  text += ',';
  // The format has no room for a leap second.
  appendClockTime(text, at.tm_hour, at.tm_min, at.tm_sec < 59 ? at.tm_sec : 59);
  return text;
}

class SystemFileInformation : public FileInformation {
 public:
  std::string recordedName(const std::string& path) override { return platform::fileName(path); }

  std::string fileDateTime(const std::string& path) override {
    const auto changed = platform::lastChanged(path);
    const auto local = changed ? platform::localTime(*changed) : std::nullopt;
    return local ? dateTimeText(*local) : currentDateTime();
  }

  std::string currentDateTime() override {
    return dateTimeText(platform::localTime(std::time(nullptr)).value());
  }
};

class KeepingFileInformation : public FileInformation {
 public:
  explicit KeepingFileInformation(std::shared_ptr<FileInformation> used) : used_(std::move(used)) {}

  std::string recordedName(const std::string& path) override { return used_->recordedName(path); }
  std::string fileDateTime(const std::string& path) override { return used_->fileDateTime(path); }
  std::string currentDateTime() override { return used_->currentDateTime(); }

  std::string sourceDateTime(const std::string& path, const std::string& recorded) override {
    const bool known = !recorded.empty() && recorded != kNoDateTime;
    return known || !platform::lastChanged(path) ? recorded : fileDateTime(path);
  }

 private:
  std::shared_ptr<FileInformation> used_;
};

struct Service {
  std::mutex lock;
  std::shared_ptr<FileInformation> inForce;
};

Service& service() {
  static Service theService;
  return theService;
}

}  // namespace

FileInformation::~FileInformation() = default;

std::string FileInformation::sourceDateTime(const std::string& path,
                                            const std::string& /*recorded*/) {
  return fileDateTime(path);
}

std::shared_ptr<FileInformation> fileInformation() {
  Service& one = service();
  const std::lock_guard guard(one.lock);
  if (!one.inForce) one.inForce = std::make_shared<SystemFileInformation>();
  return one.inForce;
}

std::shared_ptr<FileInformation> keepingFileInformation() {
  auto used = fileInformation();
  // Otherwise a host that installs the result before each write would build an ever-longer chain.
  if (dynamic_cast<KeepingFileInformation*>(used.get()) != nullptr) return used;
  return std::make_shared<KeepingFileInformation>(std::move(used));
}

void setFileInformation(std::shared_ptr<FileInformation> information) {
  Service& one = service();
  const std::lock_guard guard(one.lock);
  one.inForce.swap(information);
}

}  // namespace aq

#include "aq/text/header_writer.h"

#include "aq/core/error.h"
#include "aq/core/platform.h"
#include "aq/text/date_text.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

/// A date or time of day that a header cannot hold counts as unknown.
std::string dateTimeText(const AQ_Time& time) {
  constexpr double kDay = 86400;
  const double seconds = time.TODseconds();
  if (!(seconds >= 0 && seconds < kDay)) return std::string(kNoDateTime);
  try {
    std::string text = dateText(time.CurrentDate());
    text += ',';
    const auto whole = static_cast<int>(seconds);
    appendClockTime(text, whole / 3600, whole / 60 % 60, whole % 60);
    return text;
  } catch (const Error&) {
    return std::string(kNoDateTime);
  }
}

}  // namespace

void HeaderWriter::title(std::string_view fileType) { line("FileType", fileType); }

void HeaderWriter::textAfterBlank(std::string_view keyword, std::string_view value) {
  std::string blank(1, ' ');
  line(keyword, blank += value);
}

void HeaderWriter::single(std::string_view keyword, float value) {
  line(keyword, numberText(value));
}

void HeaderWriter::numbers(std::string_view keyword, double first, double second, double third) {
  std::string value = numberText(first);
  for (const double next : {second, third}) {
    value += ',';
    appendNumber(value, next);
  }
  line(keyword, value);
}

void HeaderWriter::integer(std::string_view keyword, std::int32_t value) {
  line(keyword, numberText(value));
}

void HeaderWriter::integers(std::string_view keyword, std::string_view separator,
                            std::int16_t first, std::int16_t second) {
  std::string value = numberText(std::int32_t{first});
  value += separator;
  appendNumber(value, std::int32_t{second});
  line(keyword, value);
}

void HeaderWriter::timeOfDay(std::string_view keyword, const AQ_Time& time) {
  line(keyword, time.TODstring());
}

void HeaderWriter::recordedName(std::string_view keyword, const std::string& file) {
  line(keyword, information_->recordedName(file));
}

void HeaderWriter::currentDateTime(std::string_view keyword, const std::shared_ptr<AQ_Time>&) {
  line(keyword, information_->currentDateTime());
}

void HeaderWriter::dateTimeOf(std::string_view keyword, const std::string& file,
                              const std::shared_ptr<AQ_Time>& recorded) {
  dateTimeOf(keyword, file, recorded ? dateTimeText(*recorded) : std::string(kNoDateTime));
}

void HeaderWriter::lines(std::string_view keyword,
                         const std::shared_ptr<Collection<std::string>>& block, std::int16_t) {
  integer(keyword, block ? block->Count() : 0);
  if (!block) return;
  for (const std::string& entry : *block) columns(entry);
}

void HeaderWriter::columns(std::string_view heading) {
  text_ += heading;
  text_ += platform::lineEnd;
}

void HeaderWriter::line(std::string_view keyword, std::string_view value) {
  text_ += keyword;
  text_ += "**,";
  columns(value);
}

}  // namespace aq

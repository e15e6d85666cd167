#include "aq/check/text_form.h"

#include <algorithm>

#include "aq/core/platform.h"
#include "aq/sdf/record_list.h"
#include "aq/text/fields.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

constexpr std::size_t kHeadSize = std::size_t{64} * 1024;

struct Packed {
  std::string_view begin;
  std::string_view message;
};

constexpr Packed kPacked[] = {
    {"\x1F\x8B", "the file is compressed with gzip; gunzip unpacks it"},
    {"BZh", "the file is compressed with bzip2; bunzip2 unpacks it"},
    {"\xFD\x37zXZ", "the file is compressed with xz; unxz unpacks it"},
    {"\x28\xB5\x2F\xFD", "the file is compressed with zstd; unzstd unpacks it"},
    {"PK\x03\x04",
     "the file is a zip archive or a spreadsheet workbook; unpack it or save it as text"},
    {"\xD0\xCF\x11\xE0", "the file is a spreadsheet workbook; save it as comma-separated text"}};

bool isDigits(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == text.npos;
}

/// Whether any carriage return is followed by something other than a line feed.
bool hasBareReturn(std::string_view head) {
  std::size_t at = head.find('\r');
  while (at < head.size() && head.substr(at + 1).starts_with('\n')) at = head.find('\r', at + 1);
  return at < head.size() && at + 1 != head.size();
}

std::size_t fieldsOf(std::string_view line) {
  return static_cast<std::size_t>(std::count(line.begin(), line.end(), ',')) + 1;
}

/// Finds decimal commas in the first data line: one with a time of day, no decimal point, and at
/// least two more fields than the headings above it.
std::optional<TextFault> dividedLine(std::string_view head) {
  std::size_t headings = 0;
  for (std::size_t number = 1; !head.empty(); ++number) {
    const std::string_view line = head.substr(0, head.find('\n'));
    const bool isData =
        line.find(':') != line.npos && line.find_first_not_of("0123456789:,- \r") == line.npos;
    if (isData && headings != 0 && fieldsOf(line) >= headings + 2) {
      return TextFault{Kind::DecimalComma,
                       "the line has more fields than headings: " + std::string(kDecimalCommaCure),
                       number};
    }
    headings = isData ? 0 : fieldsOf(line);
    head.remove_prefix(std::min(line.size() + 1, head.size()));
  }
  return std::nullopt;
}

}  // namespace

std::string headOf(const std::string& path) {
  platform::InputFile file(path);
  std::string head(kHeadSize, '\0');
  std::size_t size = 0;
  while (const std::size_t got = file.read({head.data() + size, head.size() - size})) size += got;
  head.resize(size);
  return head;
}

std::optional<TextFault> faultOfBytes(std::string_view head) {
  for (const Packed& packed : kPacked) {
    if (head.starts_with(packed.begin)) {
      return TextFault{Kind::Compressed, std::string(packed.message)};
    }
  }
  const bool mark = head.starts_with("\xFF\xFE") || head.starts_with("\xFE\xFF");
  const bool isRecording = head.starts_with(sdf::kMark);
  const bool zero = !isRecording && head.size() > 1 && (head[0] == '\0') != (head[1] == '\0');
  if (!mark && !zero) return std::nullopt;
  return TextFault{Kind::WideText, "the text is UTF-16; iconv -f UTF-16 -t UTF-8 converts it"};
}

std::optional<TextFault> faultOfLines(std::string_view head) {
  if (hasBareReturn(head)) {
    return TextFault{
        Kind::LineEnds,
        "lines end in carriage returns, as on old systems; tr '\\r' '\\n' converts them"};
  }
  const std::string_view first = trimmed(head.substr(0, head.find_first_of("\r\n")));
  const std::size_t mark = first.find(kKeywordMark);
  if (mark == first.npos) return dividedLine(head);
  if (first.ends_with(',')) {
    return TextFault{Kind::Spreadsheet,
                     "a spreadsheet has padded lines with commas; sed 's/,*$//' removes them"};
  }
  const std::string_view after = first.substr(mark + kKeywordMark.size());
  if (!after.starts_with(';') && !after.starts_with('\t')) return dividedLine(head);
  return TextFault{
      Kind::Spreadsheet,
      "a spreadsheet has separated fields with semicolons or tabs; save the file with commas "
      "and decimal points"};
}

bool isDecimalComma(std::string_view text) {
  const std::size_t comma = text.find(',');
  if (comma == text.npos) return false;
  std::string_view whole = trimmed(text.substr(0, comma));
  if (whole.starts_with('-')) whole.remove_prefix(1);
  return isDigits(whole) && isDigits(text.substr(comma + 1));
}

}  // namespace aq

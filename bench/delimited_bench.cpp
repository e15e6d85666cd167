// Reading the fields of a delimited text, compared with a plain loop that splits it into a vector
// of vectors of strings.
#include <fstream>
#include <vector>

#include "bench/benches.h"
#include "bench/pairs.h"

namespace bench {
namespace {

using Lines = std::vector<std::vector<std::string>>;

Lines plainFields(const std::string& path) {
  const std::string bytes = bytesOf(path);
  Lines lines;
  std::size_t at = 0;
  while (at < bytes.size()) {
    const std::size_t end = bytes.find('\n', at);
    std::vector<std::string> fields;
    while (at <= end) {
      const std::size_t comma = std::min(bytes.find(',', at), end);
      fields.emplace_back(bytes, at, comma - at);
      at = comma + 1;
    }
    lines.push_back(std::move(fields));
  }
  return lines;
}

}  // namespace

void addDelimited() {
  const std::string path = fileInFolder("fields.csv");
  std::ofstream stream(path, std::ios::binary);
  for (int line = 1; line <= 8000; ++line) {
    stream << line << ",10:00:00.25,-18.5";
    for (int field = 0; field < 24; ++field) stream << ",6" << line % 10 << '.' << 10 + field;
    stream << '\n';
  }
  stream.close();
  addPair(
      "delimited 8,000 x 27 fields",
      [=, kept = std::make_shared<Lines>()] { *kept = plainFields(path); },
      [=, file = std::make_shared<aq::AQ_DataASCII>()] {
        require(file->readFields(path) == aq::AQ_DATA_OK, "reading fields");
      });
}

}  // namespace bench

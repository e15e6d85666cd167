// Reading a recording of 10,000 scans of 40 third octaves, compared with a plain loop that turns
// its bytes into levels.
#include <aq/sdf/layout.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <fstream>
#include <vector>

#include "bench/benches.h"
#include "bench/pairs.h"

namespace bench {
namespace {

using aq::sdf::Field;

constexpr std::int16_t kScanned = 10'000;
constexpr std::size_t kBandsOfScan = 40;

void putBigEndian(std::string& bytes, std::size_t at, std::size_t size, std::uint64_t value) {
  for (std::size_t i = size; i-- != 0; value >>= 8) bytes[at + i] = static_cast<char>(value & 0xFF);
}

/// A record of the given type, filled with zeros except for the fields that are set.
class MadeRecord {
 public:
  MadeRecord(aq::sdf::RecordType type, std::size_t head, std::size_t size) : bytes_(head, '\0') {
    putBigEndian(bytes_, 0, 2, static_cast<std::uint64_t>(type));
    putBigEndian(bytes_, 2, 4, size);
  }
  MadeRecord& put(const Field& field, std::int32_t value) {
    putBigEndian(bytes_, field.first - 1, sizeOf(field), static_cast<std::uint64_t>(value));
    return *this;
  }
  MadeRecord& put(const Field& field, double value) {
    putBigEndian(bytes_, field.first - 1, 8, std::bit_cast<std::uint64_t>(value));
    return *this;
  }
  [[nodiscard]] const std::string& bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

/// A recording of revision 3 with one third-octave trace per scan, in a unit that is not a
/// pressure. The values of the trace are the last bytes of the file.
std::string madeRecording() {
  using namespace aq::sdf;
  constexpr std::size_t kValues = kScanned * kBandsOfScan;
  MadeRecord file(RecordType::File, 80, 80);
  MadeRecord measurement(RecordType::Measurement, 156, 156);
  MadeRecord data(RecordType::Data, 148, 148);
  data.put(kData["domain"], 6).put(kData["dataType"], 12).put(kData["xResolution_type"], 1);
  data.put(kData["ydata_type"], 3).put(kData["yPerPoint"], 1).put(kData["yIsPowerData"], 1);
  data.put(kData["yIsValid"], 1).put(kData["first_VECTOR_recordNum"], -1);
  data.put(kData["total_rows"], 1).put(kData["total_cols"], 1).put(kData["yUnitValid"], 1);
  data.put(kData["abscissa_firstX"], std::pow(10, 0.5));
  data.put(kData["abscissa_deltaX"], std::pow(10, 0.1)).put(kData["scanData"], 1);
  const Field factor{"factor", kData["yUnit"].first + kUnit["factor"].first - 1, Type::Float};
  data.put(factor, static_cast<std::int32_t>(std::bit_cast<std::uint32_t>(1.F)));
  data.put(kData["num_of_points"], 40).put(kData["last_valid_index"], 39);
  MadeRecord scans(RecordType::Scans, 36, 36);
  scans.put(kScans["num_of_scan"], kScanned).put(kScans["last_scan_index"], kScanned - 1);
  scans.put(kScans["scanVar_type"], 3);
  MadeRecord y(RecordType::Y, kRecordHead, kRecordHead + 4 * kValues);
  file.put(kFile["revisionNum"], 3).put(kFile["yearStamp"], 2004);
  file.put(kFile["monthDayStamp"], 315).put(kFile["hourMinStamp"], 1402);
  for (const char* const field :
       {"offset_of_VECTOR_record", "offset_of_CHANNEL_record", "offset_of_UNIQUE_record",
        "offset_of_XDATA_record", "offset_of_SCAN_BIG_record", "offset_of_COMMENT_record"}) {
    file.put(*std::find_if(kFile.fields.begin(), kFile.fields.end(),
                           [&](const Field& one) { return one.name == field; }),
             -1);
  }
  file.put(kFile["num_of_DATA_HDR_record"], 1).put(kFile["num_of_SCAN_STRUCT_record"], 1);
  file.put(kFile["offset_of_DATA_HDR_record"], 2 + 80 + 156);
  file.put(kFile["offset_of_SCAN_STRUCT_record"], 2 + 80 + 156 + 148);
  file.put(kFile["offset_of_YDATA_record"], 2 + 80 + 156 + 148 + 36);
  std::string bytes{"B\0", 2};
  for (const MadeRecord* one : {&file, &measurement, &data, &scans, &y}) bytes += one->bytes();
  const std::size_t values = bytes.size();
  bytes.resize(values + 4 * kValues);
  for (std::size_t i = 0; i < kValues; ++i) {
    const auto value = static_cast<float>(1e-6 * static_cast<double>(i % 997 + 1));
    putBigEndian(bytes, values + 4 * i, 4, std::bit_cast<std::uint32_t>(value));
  }
  return bytes;
}

using PlainLevels = std::vector<std::vector<double>>;

PlainLevels plainLevels(const std::string& path) {
  const std::string bytes = bytesOf(path);
  const char* at = bytes.data() + bytes.size() - std::size_t{4} * kScanned * kBandsOfScan;
  PlainLevels scans;
  for (std::size_t scan = 0; scan < kScanned; ++scan) {
    std::vector<double> levels(kBandsOfScan);
    for (double& level : levels) {
      std::uint32_t bits = 0;
      for (int i = 0; i < 4; ++i) bits = bits << 8 | static_cast<unsigned char>(*at++);
      level = 10 * std::log10(double{std::bit_cast<float>(bits)});
    }
    scans.push_back(std::move(levels));
  }
  return scans;
}

}  // namespace

void addRecordings() {
  const std::string path = fileInFolder("scans.dat");
  std::ofstream(path, std::ios::binary) << madeRecording();
  addPair(
      "recording 10,000 scans read",
      [=, kept = std::make_shared<PlainLevels>()] { *kept = plainLevels(path); },
      [=, kept = std::make_shared<std::shared_ptr<aq::AQ_SpectralTimeHistory>>()] {
        aq::AQ_DataHP3565 reader;
        std::shared_ptr<aq::AQ_HeaderSTH> header;
        require(reader.readFile(path, header, *kept) == aq::AQ_DATA_OK, "reading a recording");
      });
}

}  // namespace bench

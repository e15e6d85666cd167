// Reading and writing masking maps of 32,767 rows and 24 bands, compared with plain loops over two
// letters per band.
#include <charconv>
#include <fstream>
#include <string_view>
#include <vector>

#include "bench/benches.h"
#include "bench/pairs.h"

namespace bench {
namespace {

constexpr std::int16_t kRows = 32767;
constexpr std::size_t kBands = 24;

struct PlainMask {
  aq::AQ_MASK_MODE mode = aq::NOT_MASKED;
  aq::AQ_MASK_ADJUST adjustment = aq::NOT_ADJUSTED;
};

struct PlainRow {
  int number = 0;
  std::vector<PlainMask> masks;
  int lastGoodBand = 0;
};
using PlainRows = std::vector<std::shared_ptr<PlainRow>>;

constexpr std::string_view kModes = "-MAF";
constexpr std::string_view kAdjustments = "-SFTACR";

PlainMask plainMask(const char* letters) {
  PlainMask mask;
  switch (letters[0]) {
    case 'M': mask.mode = aq::MASKED_BY_MASK_CRITERION; break;
    case 'A': mask.mode = aq::MASKED_BY_PRE_DETECT; break;
    case 'F': mask.mode = aq::MASKED_BY_POST_DETECT; break;
    default: break;
  }
  switch (letters[1]) {
    case 'S': mask.adjustment = aq::ENERGY_SUBTRACTION; break;
    case 'F': mask.adjustment = aq::FREQUENCY_EXTRAPOLATION; break;
    case 'T': mask.adjustment = aq::TIME_EXTRAPOLATION; break;
    case 'A': mask.adjustment = aq::AVG_OF_ADJACENT; break;
    case 'C': mask.adjustment = aq::CORRECTIONS_APPLIED; break;
    case 'R': mask.adjustment = aq::ADJ_TO_REFERENCE; break;
    default: break;
  }
  return mask;
}

PlainRows plainReadMap(const std::string& path) {
  const std::string bytes = bytesOf(path);
  const char* const end = bytes.data() + bytes.size();
  const char* at = bytes.data() + bytes.find('\n', bytes.find("\nRec#") + 1) + 1;
  PlainRows rows;
  while (at < end) {
    auto row = std::make_shared<PlainRow>();
    row->masks.reserve(kBands);
    at = std::from_chars(at, end, row->number).ptr + 1;
    for (std::size_t band = 0; band < kBands; ++band, at += 3) row->masks.push_back(plainMask(at));
    at = std::from_chars(at, end, row->lastGoodBand).ptr + 1;
    rows.push_back(std::move(row));
  }
  return rows;
}

void plainWriteMap(const std::string& path, const PlainRows& rows) {
  std::string text;
  text.reserve(rows.size() * 90);
  for (const auto& row : rows) {
    text += std::to_string(row->number);
    text += ',';
    for (const PlainMask& mask : row->masks) {
      text += kModes[static_cast<std::size_t>(mask.mode)];
      text += kAdjustments[static_cast<std::size_t>(mask.adjustment)];
      text += ',';
    }
    text += std::to_string(row->lastGoodBand);
    text += '\n';
  }
  std::ofstream(path, std::ios::binary) << text;
}

struct Map {
  aq::AQ_DataMask file;
  std::shared_ptr<aq::AQ_HeaderMask> header = std::make_shared<aq::AQ_HeaderMask>();
  std::shared_ptr<aq::AQ_MaskMap> map = std::make_shared<aq::AQ_MaskMap>();

  void read(const std::string& path) {
    require(file.readFile(path, header, map) == aq::AQ_DATA_OK, "reading a map");
  }
  void write(const std::string& path) {
    require(file.writeFile(path, header, *map) == aq::AQ_DATA_OK, "writing a map");
  }
};

}  // namespace

void addMaps() {
  const std::string path = fileInFolder("map.csv");
  const std::string out = fileInFolder("out.map.csv");
  const auto held = std::make_shared<Map>();
  for (int record = 1; record <= kRows; ++record) {
    auto row = std::make_shared<aq::AQ_MaskRow>();
    aq::AQ_Mask masked;
    masked.MaskString("MS");
    for (std::int16_t band = 17; band <= 40; ++band) {
      row->store(band, (record + band) % 5 == 0 ? masked : aq::AQ_Mask());
    }
    held->map->Row(static_cast<std::int16_t>(record), row);
  }
  held->write(path);
  addPair(
      "map 32,767 read", [=, kept = std::make_shared<PlainRows>()] { *kept = plainReadMap(path); },
      [=, kept = std::make_shared<Map>()] { kept->read(path); });
  addPair(
      "map 32,767 write",
      [=, rows = std::make_shared<PlainRows>(plainReadMap(path))] { plainWriteMap(out, *rows); },
      [=] { held->write(out); });
}

}  // namespace bench

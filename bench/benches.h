#pragma once

#include <aq/aq.h>

#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

namespace bench {

void addHistories();
void addMaps();
void addPositions();
void addDelimited();
void addRecordings();
void addGrowth();
void addThreads();

/// A history of 24 bands, stamped from 10:00:00.
std::shared_ptr<aq::AQ_SpectralTimeHistory> makeHistory(std::int16_t records);
void writeHistory(const std::string& path, aq::AQ_SpectralTimeHistory& history);

/// A file object, and the header and the history that it has read.
struct History {
  aq::AQ_DataSTH file;
  std::shared_ptr<aq::AQ_HeaderSTH> header;
  std::shared_ptr<aq::AQ_SpectralTimeHistory> history;

  void read(const std::string& path);
};

/// The memory that a history read in this process holds, the additional peak while reading it, and
/// the size of the file, one row each.
nlohmann::ordered_json memoryOfReading(const std::string& path);

}  // namespace bench

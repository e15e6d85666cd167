#include "aq/files/data_hp3565.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>
#include <vector>

#include "aq/core/error.h"
#include "aq/core/platform.h"
#include "aq/files/recording_history.h"
#include "aq/files/recording_trace.h"
#include "aq/sdf/record_list.h"
#include "aq/sdf/recording.h"
#include "aq/sdf/text_reader.h"
#include "aq/sdf/text_writer.h"
#include "aq/text/fields.h"
#include "aq/text/number_text.h"

namespace aq {
namespace {

using Names = std::shared_ptr<Collection<std::string>>;

/// Orders names without regard to case; names that differ only in case, by their bytes.
void sort(std::vector<std::string>& names) {
  std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
    return std::pair(upperCased(a), std::string_view(a)) <
           std::pair(upperCased(b), std::string_view(b));
  });
}

bool isRecording(const std::string& path) {
  try {
    platform::InputFile file(path);
    char bytes[4] = {};
    const std::size_t size = file.read(bytes);
    return sdf::beginsRecording({bytes, size});
  } catch (const platform::SystemError&) {
    return false;
  }
}

/// The number, from 1, of the data header that the external converter should print: the one that
/// the levels come from, or 1 if this library cannot find it.
std::size_t headerToPrint(const std::string& path) {
  try {
    const auto recording = sdf::Recording::fromFile(path);
    return recording.placeOf(levelsOf(recording)) + 1;
  } catch (const ReadFailure&) {
    return 1;
  }
}

}  // namespace

AQ_DataMessage AQ_DataHP3565::readDirectory(const std::string& sDirectory, Names& colIndex,
                                            Names& colTimeDat, Names& colRecordings) {
  return reading(sDirectory, [&](const std::string& folder) {
    auto index = std::make_shared<Collection<std::string>>();
    auto times = std::make_shared<Collection<std::string>>();
    auto recordings = std::make_shared<Collection<std::string>>();
    std::vector<std::string> names = platform::filesIn(folder);
    sort(names);
    for (std::string& name : names) {
      const std::string capitals = upperCased(name);
      if (capitals.starts_with("INDEX")) {
        index->Add(std::move(name));
      } else if (capitals.starts_with("TIMEDAT")) {
        times->Add(std::move(name));
      } else if (capitals.ends_with(".DAT")) {
        recordings->Add(std::move(name));
      }
    }
    colIndex = std::move(index);
    colTimeDat = std::move(times);
    colRecordings = std::move(recordings);
  });
}

AQ_DataMessage AQ_DataHP3565::DAT_to_ASC(const std::string& sDatFile, const std::string& sAscFile) {
  std::string text;
  const AQ_DataMessage read = reading(sDatFile, [&](const std::string& name) {
    if (converter_.empty()) {
      text = sdf::textOf(sdf::Recording::fromFile(name));
      return;
    }
    const std::string header = "/D:" + std::to_string(headerToPrint(name));
    const std::string row = "/R:" + std::to_string(channel_);
    text = platform::outputOf(converter_, {name, header, row});
    if (text.empty()) failRead(0, 0, "text from " + shown(converter_), "none");
  });
  if (read != AQ_DATA_OK) return read;
  const AQ_DataMessage free = reading(sAscFile, [](const std::string& name) {
    if (isRecording(name)) failRead(0, 0, "a text file to replace", "an analyzer recording");
  });
  if (free != AQ_DATA_OK) return free;
  return writing(sAscFile, [&](const std::string&) { return std::move(text); });
}

AQ_DataMessage AQ_DataHP3565::ParseASC(const std::string& sAscFile,
                                       std::shared_ptr<AQ_HeaderSTH>& aqHeader,
                                       std::shared_ptr<AQ_SpectralTimeHistory>& STH) {
  return reading(sAscFile, [&](const std::string& name) {
    const auto wanted = [&](const sdf::Recording& recording) {
      const RecordingTrace trace = traceOf(recording, channel_);
      return sdf::WantedTrace{recording.placeOf(*trace.set), trace.trace};
    };
    take(sdf::textRecording(name, wanted), name, aqHeader, STH);
  });
}

AQ_DataMessage AQ_DataHP3565::readFile(const std::string& sDatFile,
                                       std::shared_ptr<AQ_HeaderSTH>& aqHeader,
                                       std::shared_ptr<AQ_SpectralTimeHistory>& STH) {
  return reading(sDatFile, [&](const std::string& name) {
    take(sdf::Recording::fromFile(name), name, aqHeader, STH);
  });
}

void AQ_DataHP3565::take(const sdf::Recording& recording, const std::string& name,
                         std::shared_ptr<AQ_HeaderSTH>& aqHeader,
                         std::shared_ptr<AQ_SpectralTimeHistory>& STH) const {
  const RecordingSettings settings{channel_, recordLength_, calibration_};
  auto header = headerOf(recording, name, settings);
  STH = historyOf(recording, settings);
  aqHeader = std::move(header);
}

void AQ_DataHP3565::RecordLength(double seconds) {
  if (!(seconds > 0) || !std::isfinite(seconds)) {
    throw Error(ErrorCode::InvalidValue, "the record length must be above 0 s");
  }
  recordLength_ = seconds;
}

void AQ_DataHP3565::CalAdj(double decibels) {
  if (!std::isfinite(decibels)) {
    throw Error(ErrorCode::InvalidValue, "the calibration must be a finite number of decibels");
  }
  calibration_ = decibels;
}

}  // namespace aq

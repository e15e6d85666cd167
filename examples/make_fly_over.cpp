// Synthesises a measurement and writes its history, masking map, tracking, ambient and parameters
// into a folder. A jet passes 150 m overhead; its sound spreads spherically, with an
// assumed air absorption. Levels less than 3 dB above an assumed ambient are masked. This program
// made the sample in examples/data, except for the microphone file.
#include <algorithm>
#include <cmath>
#include <string>

#include "examples/outcome.h"

namespace {

constexpr std::int16_t kRecords = 60;
constexpr std::int16_t kOverhead = 30;
constexpr std::int16_t kLow = 17;   // 50 Hz
constexpr std::int16_t kHigh = 40;  // 10 kHz
constexpr double kCriterion = 3;    // dB above the ambient

double ambient(int band) { return 60.0 - 1.1 * (band - kLow); }

double sourceLevelAt1m(int band) {
  const double broadband = 125.0 - 0.14 * (band - 24) * (band - 24);
  const double fanTone = band == 34 ? 7.0 : 0.0;
  return broadband + fanTone;
}

double absorptionPerMetre(int band) { return 1e-4 * std::pow(10.0, 0.0875 * (band - 20)); }

/// The distance from the microphone in metres, `seconds` after the aircraft passes overhead.
double slantRange(double seconds) { return std::hypot(150.0, 85.0 * seconds); }

double level(int band, double seconds) {
  const double range = slantRange(seconds);
  const double source =
      sourceLevelAt1m(band) - 20 * std::log10(range) - absorptionPerMetre(band) * range;
  return 10 * std::log10(std::pow(10, source / 10) + std::pow(10, ambient(band) / 10));
}

void fill(aq::AQ_SpectralTimeHistory& history) {
  for (std::int16_t record = 1; record <= kRecords; ++record) {
    auto spectrum = std::make_shared<aq::AQ_Spectrum>();
    for (std::int16_t band = kLow; band <= kHigh; ++band) {
      spectrum->SPL(band, level(band, (record - kOverhead) * 0.5));
    }
    history.spectrum(record, spectrum);
  }
}

void stamp(aq::AQ_SpectralTimeHistory& history) {
  aq::AQ_Time start;
  aq::AQ_Time overhead;
  start.TODstring("14:30:00");
  overhead.TODstring("14:30:14.75");
  history.setTimeStamps(start, aq::AQ_MIDPT, overhead, aq::AQ_OVERHEAD);
}

bool writeTrack(const std::string& path) {
  aq::AQ_DataASCII file;
  for (const char* line : {"Tracking of the fly-over sample", "Coordinates in metres",
                           "Reference: the microphone's ground point", "Rate: 5 a second",
                           "Quality: RT20, 0 best", "Time,RT20,Lat,Lon,Alt,VX,VY,VZ,X,Y,Z"}) {
    file.Lines()->Add(line);
  }
  for (int fix = 0; fix < 150; ++fix) {
    aq::AQ_Time time;
    time.TODnumbers(14, 30, fix * 0.2);
    const std::string quality = fix % 40 == 17 ? ",2" : ",0";
    file.Lines()->Add(time.TODstring() + quality + ",,,,,,," + std::to_string(17 * (fix - 74)) +
                      ",0,150");
  }
  return isGood(file.writeLines(path), file);
}

aq::AQ_Spectrum ambientSpectrum() {
  aq::AQ_Spectrum spectrum;
  for (std::int16_t band = kLow; band <= kHigh; ++band) spectrum.SPL(band, ambient(band));
  return spectrum;
}

bool writeAmbient(const std::string& path) {
  const auto header = std::make_shared<aq::AQ_HeaderSSR>();
  header->cCommentLines->Add("Assumed ambient of the fly-over sample");
  aq::AQ_DataSSR file;
  return isGood(file.writeFile(path, header, ambientSpectrum()), file);
}

bool writeParameters(const std::string& path) {
  aq::AQ_DataINI parameters;
  parameters.NuTimg(aq::AQ_MIDPT);
  parameters.PrWndo(10);
  parameters.PoWndo(10);
  parameters.LoRec(1);
  parameters.HiRec(kRecords);
  return isGood(parameters.writeFile(path), parameters);
}

bool writeHistoryAndMap(const std::string& historyPath, const std::string& mapPath) {
  aq::AQ_SpectralTimeHistory history;
  fill(history);
  stamp(history);
  const auto map = aq::maskByAmbient(history, ambientSpectrum(), kCriterion);
  const auto header = std::make_shared<aq::AQ_HeaderSTH>();
  header->sProjectName = "Fly-over sample";
  header->sMicrophoneID = "M1";
  header->sAdjustmentCode = "NONE";
  header->sGeneratedBy = "make_fly_over";
  header->cCommentLines->Add("A computed fly-over, not a measurement");
  const auto mapHeader = std::make_shared<aq::AQ_HeaderMask>();
  mapHeader->sGeneratedBy = "make_fly_over";
  mapHeader->sGenerationFile = historyPath;
  aq::AQ_DataSTH historyFile;
  aq::AQ_DataMask mapFile;
  return isGood(historyFile.writeFile(historyPath, header, history), historyFile) &&
         isGood(mapFile.writeFile(mapPath, mapHeader, *map), mapFile);
}

}  // namespace

int main(int argc, char** argv) {
  const std::string sample = std::string(argc > 1 ? argv[1] : ".") + "/fly-over";
  const bool written = writeHistoryAndMap(sample + ".sth.csv", sample + ".mask.csv") &&
                       writeTrack(sample + ".tspi.csv") && writeAmbient(sample + ".ssr.csv") &&
                       writeParameters(sample + ".ini.csv");
  return written ? 0 : 1;
}

// Computes noise metrics and emission geometry from its input and prints every value, to compare
// with metrics.py. The input consists of words separated by blanks, either `history RECORDS MAPPED`
// and for each record `NUMBER SECONDS LEVELS (BAND LEVEL)... MASKS (BAND MODE ADJUSTMENT)...`, or
// `flight FIXES (SECONDS X Y Z)... X Y Z CELSIUS RECORDS SECONDS...`, where the second X Y Z is the
// microphone's. RECORDS, LEVELS, MASKS and FIXES are counts; MAPPED is 1 if there is a map, else 0.
// Each answer ends with the line `end`.

#include <aq/aq.h>

#include <cmath>
#include <cstdio>
#include <iostream>
#include <string>

namespace {

template <class Number = double>
Number next() {
  std::string text;  // a stream cannot read nan
  std::cin >> text;
  return static_cast<Number>(std::strtod(text.c_str(), nullptr));
}

void print(double value) { std::printf(" %.17g", std::isnan(value) ? -12345 : value); }

void print(std::size_t place) { std::printf(" %zu", place); }

void print(const std::optional<std::size_t>& place) {
  print(place ? static_cast<double>(*place) : std::nan(""));
}

void printEvent(const std::optional<aq::NoiseEvent>& event) {
  std::printf("event");
  if (event) {
    print(event->maximum);
    print(event->first);
    print(event->last);
    for (const double value : {event->pnltm, event->epnl, event->epnlWithBandSharing,
                               event->duration, event->bandSharing}) {
      print(value);
    }
    for (const std::size_t peak : event->secondPeaks) print(peak);
  }
  std::printf("\n");
}

void readRecord(aq::AQ_SpectralTimeHistory& history, aq::AQ_MaskMap& map) {
  const auto number = next<std::int16_t>();
  auto spectrum = std::make_shared<aq::AQ_Spectrum>();
  spectrum->Time()->TODseconds(next());
  for (int left = next<int>(); left > 0; --left) {
    const auto band = next<std::int16_t>();
    spectrum->SPL(band, next());
  }
  history.spectrum(number, spectrum);
  const int masks = next<int>();
  if (masks == 0) return;
  auto row = std::make_shared<aq::AQ_MaskRow>();
  for (int left = masks; left > 0; --left) {
    const auto mask = row->Mask(next<std::int16_t>());
    mask->MaskMode(next<aq::AQ_MASK_MODE>());
    mask->AdjustMode(next<aq::AQ_MASK_ADJUST>());
  }
  map.Row(number, row);
}

void metricsOfNext() {
  const int records = next<int>();
  const bool mapped = next<int>() != 0;
  aq::AQ_SpectralTimeHistory history;
  aq::AQ_MaskMap map;
  for (int left = records; left > 0; --left) readRecord(history, map);
  const auto metrics = aq::historyMetrics(history, mapped ? &map : nullptr);
  for (const aq::RecordMetrics& record : metrics.records) {
    std::printf("%d", record.record);
    for (const double value : record.values) print(value);
    std::printf("\n");
  }
  printEvent(metrics.event);
}

void geometryOfNext() {
  aq::AQ_PositionTimeHistory positions;
  const int fixes = next<int>();
  const auto read = [](aq::AQ_Position& position) {
    position.X(next());
    position.Y(next());
    position.Z(next());
  };
  for (int number = 1; number <= fixes; ++number) {
    auto position = std::make_shared<aq::AQ_Position>();
    position->Time()->TODseconds(next());
    read(*position);
    positions.Position(number, position);
  }
  aq::AQ_Position microphone;
  read(microphone);
  const double celsius = next();
  aq::AQ_SpectralTimeHistory records;
  const auto count = next<std::int16_t>();
  for (std::int16_t number = 1; number <= count; ++number) {
    auto spectrum = std::make_shared<aq::AQ_Spectrum>();
    spectrum->Time()->TODseconds(next());
    records.spectrum(number, spectrum);
  }
  const auto geometry = aq::emissionGeometry(positions, microphone, records, celsius);
  for (const auto& [number, point] : *geometry) {
    std::printf("%d", static_cast<int>(number));
    for (const double value :
         {point->Te()->TODseconds(), point->Tprope, point->SRe, static_cast<double>(point->THETAe),
          static_cast<double>(point->BETAe), point->Pe()->X(), point->Pe()->Y(),
          point->Pe()->Z()}) {
      print(value);
    }
    std::printf("\n");
  }
}

}  // namespace

int main() {
  for (std::string what; std::cin >> what;) {
    try {
      what == "history" ? metricsOfNext() : geometryOfNext();
    } catch (const aq::Error& error) {
      std::printf("error %s\n", error.what());
    }
    std::printf("end\n");
  }
}

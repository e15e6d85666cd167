#pragma once

#include <aq/aq.h>
#include <aq/text/call_file.h>
#include <aq/text/number_text.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace aq::test {

/// How a read ended: the failure, what was handed out all the same, and whether the result told the
/// truth about both.
struct Outcome {
  std::optional<FileFailure> failure;
  std::string handedOut;
  bool sound = true;
};

/// A kind of file with what reads it and, if there is a writer, what reads and writes it again.
struct Format {
  std::function<Outcome(const std::string& path)> read;
  std::function<AQ_DataMessage(const std::string& from, const std::string& to)> rewrite = nullptr;
};

inline Outcome outcomeOf(const FileClass& file, AQ_DataMessage result, bool header, bool model) {
  const bool good = result == AQ_DATA_OK;
  return {file.lastFailure(), std::string(header ? "header " : "") + (model ? "model " : ""),
          good == !file.lastFailure().has_value() && (!good || (header && model))};
}

template <class File, class Header, class Model>
Format format() {
  const auto read = [](const std::string& path) {
    File file;
    std::shared_ptr<Header> header;
    std::shared_ptr<Model> model;
    const AQ_DataMessage result = readInto(file, path, header, model);
    return outcomeOf(file, result, header != nullptr, model != nullptr);
  };
  const auto rewrite = [](const std::string& from, const std::string& to) {
    File file;
    std::shared_ptr<Header> header;
    std::shared_ptr<Model> model;
    const AQ_DataMessage result = readInto(file, from, header, model);
    return result == AQ_DATA_OK ? writeFrom(file, to, header, *model) : result;
  };
  return {read, rewrite};
}

inline Outcome readTracking(const std::string& path) {
  AQ_DataTSPI file;
  std::shared_ptr<AQ_PositionTimeHistory> history;
  const AQ_DataMessage result = readInto(file, path, history);
  Outcome outcome = outcomeOf(file, result, true, history != nullptr);
  outcome.handedOut = std::to_string(file.nBadPositions()) + " dropped ";
  return outcome;
}

inline Outcome readMicrophone(const std::string& path) {
  AQ_DataMIC file;
  std::shared_ptr<AQ_HeaderMIC> header;
  const auto microphone = std::make_shared<AQ_Microphone>();
  const AQ_DataMessage result = readInto(file, path, header, microphone);
  Outcome outcome = outcomeOf(file, result, header != nullptr, true);
  if (microphone->Y != 0) outcome.handedOut += "Y " + numberText(microphone->Y) + ' ';
  return outcome;
}

inline Outcome readParameters(const std::string& path) {
  AQ_DataINI file;
  const AQ_DataMessage result = file.readFile(path);
  Outcome outcome = outcomeOf(file, result, true, true);
  outcome.handedOut = "LoRec " + numberText(std::int32_t{file.LoRec()}) + ' ';
  return outcome;
}

inline AQ_DataMessage rewriteParameters(const std::string& from, const std::string& to) {
  AQ_DataINI file;
  const AQ_DataMessage result = file.readFile(from);
  return result == AQ_DATA_OK ? file.writeFile(to) : result;
}

inline const std::map<std::string, Format> kFormats{
    {"spectral-time-history", format<AQ_DataSTH, AQ_HeaderSTH, AQ_SpectralTimeHistory>()},
    {"masking-map", format<AQ_DataMask, AQ_HeaderMask, AQ_MaskMap>()},
    {"position-time-history", format<AQ_DataPTH, AQ_HeaderPTH, AQ_PositionTimeHistory>()},
    {"geometric-time-history", format<AQ_DataGTH, AQ_HeaderGTH, AQ_GeometryTimeHistory>()},
    {"spectrum-record", format<AQ_DataSSR, AQ_HeaderSSR, AQ_Spectrum>()},
    {"tracking", {readTracking}},
    {"microphone-position", {readMicrophone}},
    {"variable-initialization", {readParameters, rewriteParameters}}};

}  // namespace aq::test

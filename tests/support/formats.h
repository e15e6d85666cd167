#pragma once

#include <aq/aq.h>
#include <aq/describe/files.h>
#include <aq/text/number_text.h>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace aq::test {

/// The outcome of a read: the failure, if any; what was returned; and whether the result value
/// agrees with both.
struct Outcome {
  std::optional<FileFailure> failure;
  std::string handedOut;
  bool sound = true;
};

/// A kind of file: a function that reads it and, if there is a writer, one that reads it and writes
/// it again.
struct FormatCalls {
  std::string code;  ///< its name for `valuesOf`, such as "STH"
  std::function<Outcome(const std::string& path)> read;
  std::function<AQ_DataMessage(const std::string& from, const std::string& to)> rewrite = nullptr;
};

// What a read returns even if it fails, as `failures.txt` shows it in brackets.
template <class Header, class Model>
std::string handedOut(const FileClass& /*file*/, const Content<Header, Model>& content) {
  return std::string(content.header ? "header " : "") + (content.model ? "model " : "");
}
inline std::string handedOut(const AQ_DataTSPI& file,
                             const Content<void, AQ_PositionTimeHistory>&) {
  return std::to_string(file.nBadPositions()) + " dropped ";
}
inline std::string handedOut(const AQ_DataINI& file, const Content<void, AQ_DataINI>&) {
  return "LoRec " + numberText(std::int32_t{file.LoRec()}) + ' ';
}
template <class Header>
std::string handedOut(const FileClass& /*file*/, const Content<Header, AQ_Microphone>& content) {
  std::string text = content.header ? "header model " : "model ";
  if (content.model->Y != 0) text += "Y " + numberText(content.model->Y) + ' ';
  return text;
}

template <class Content>
bool isWhole(const Content& content) {
  if constexpr (requires { content.header; }) {
    if (!content.header) return false;
  }
  return content.model != nullptr;
}

template <class File, class Header, class Model>
FormatCalls callsOf(const Format<File, Header, Model>& /*format*/) {
  constexpr std::string_view kClass = describe::Description<File>::name;
  FormatCalls calls;
  calls.code = upperCased(kClass.substr(std::string_view("AQ_Data").size()));
  calls.read = [](const std::string& path) {
    File file;
    Content<Header, Model> content;
    const bool good = readContent(file, path, content) == AQ_DATA_OK;
    return Outcome{file.lastFailure(), handedOut(file, content),
                   good == !file.lastFailure().has_value() && (!good || isWhole(content))};
  };
  if constexpr (writesFiles<File>) {
    calls.rewrite = [](const std::string& from, const std::string& to) {
      File file;
      Content<Header, Model> content;
      const AQ_DataMessage result = readContent(file, from, content);
      return result == AQ_DATA_OK ? writeContent(file, to, content) : result;
    };
  }
  return calls;
}

/// The formats by folder name, such as "spectral-time-history".
inline const std::map<std::string, FormatCalls> kFormats = [] {
  std::map<std::string, FormatCalls> calls;
  forFormats([&](const auto& format) {
    std::string folder(format.text);
    std::replace(folder.begin(), folder.end(), ' ', '-');
    calls.emplace(folder, callsOf(format));
  });
  return calls;
}();

}  // namespace aq::test

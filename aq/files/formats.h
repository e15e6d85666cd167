#pragma once

#include <concepts>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>

#include "aq/files/data_hp3565.h"
#include "aq/files/data_ini.h"
#include "aq/files/data_spc.h"
#include "aq/files/data_ssr.h"
#include "aq/files/data_sth.h"
#include "aq/files/file_kind.h"
#include "aq/geometry/data_gth.h"
#include "aq/geometry/data_mic.h"
#include "aq/geometry/data_pth.h"
#include "aq/geometry/data_tspi.h"
#include "aq/masking/data_mask.h"
#include "aq/text/call_file.h"

// The only list of formats: code that serves all formats uses it.

namespace aq {

/// The content of a file. `Header` is void if the format has none of its own.
template <class Header_, class Model_>
struct Content {
  using Header = Header_;
  using Model = Model_;
  std::shared_ptr<Header> header = {};
  std::shared_ptr<Model> model = {};
};
template <class Model_>
struct Content<void, Model_> {
  using Header = void;
  using Model = Model_;
  std::shared_ptr<Model> model = {};
};

/// A kind of file: its names, the class that reads and perhaps writes it, and its content. Files
/// that name their type do so with `File::kTitle`; others may begin with `File::kBeginning`.
template <class File_, class Header_, class Model_>
struct Format {
  using File = File_;
  using Header = Header_;
  using Model = Model_;
  using Content = aq::Content<Header, Model>;

  FileKind kind;
  std::string_view text;    ///< the kind in words, as in "spectral time history"
  std::string_view word;    ///< the kind in one word, as in "history"
  std::string_view ending;  ///< how names of such files usually end
};

inline constexpr std::tuple kFormats{
    Format<AQ_DataSTH, AQ_HeaderSTH, AQ_SpectralTimeHistory>{
        FileKind::SpectralTimeHistory, "spectral time history", "history", ".sth.csv"},
    Format<AQ_DataMask, AQ_HeaderMask, AQ_MaskMap>{
        //
        FileKind::MaskingMap, "masking map", "map", ".mask.csv"},
    Format<AQ_DataSSR, AQ_HeaderSSR, AQ_Spectrum>{
        //
        FileKind::SpectrumRecord, "spectrum record", "spectrum", ".ssr.csv"},
    Format<AQ_DataPTH, AQ_HeaderPTH, AQ_PositionTimeHistory>{
        FileKind::PositionTimeHistory, "position time history", "positions", ".pth.csv"},
    Format<AQ_DataTSPI, void, AQ_PositionTimeHistory>{
        //
        FileKind::Tracking, "tracking", "tracking", ".tspi.csv"},
    Format<AQ_DataMIC, AQ_HeaderMIC, AQ_Microphone>{
        //
        FileKind::MicrophonePosition, "microphone position", "microphone", ".mic.csv"},
    Format<AQ_DataGTH, AQ_HeaderGTH, AQ_GeometryTimeHistory>{
        FileKind::GeometricTimeHistory, "geometric time history", "geometry", ".gth.csv"},
    Format<AQ_DataINI, void, AQ_DataINI>{FileKind::VariableInitialization,
                                         "variable initialization", "parameters", ".ini.csv"},
    Format<AQ_DataSPC, AQ_HeaderSTH, AQ_SpectralTimeHistory>{
        FileKind::FixedColumnHistory, "fixed-column history", "columns", ".spc"},
    Format<AQ_DataHP3565, AQ_HeaderSTH, AQ_SpectralTimeHistory>{
        FileKind::AnalyzerRecording, "analyzer recording", "recording", ".dat"}};

/// Calls `visit(format)` for each format, in the order of the list.
template <class Visit>
constexpr void forFormats(const Visit& visit) {
  std::apply([&](const auto&... formats) { (visit(formats), ...); }, kFormats);
}

/// The first format of the list whose files hold a `Model`.
template <class Model, class First, class... Others>
[[nodiscard]] constexpr auto formatOf(const First& first, const Others&... others) {
  if constexpr (std::same_as<typename First::Model, Model>) {
    return first;
  } else {
    return formatOf<Model>(others...);
  }
}
template <class Model>
using FormatOf = decltype(std::apply(
    [](const auto&... formats) { return formatOf<Model>(formats...); }, kFormats));

/// The kind in words, as in "spectral time history"; "unknown" for a kind without a format.
[[nodiscard]] constexpr std::string_view kindText(FileKind kind) {
  std::string_view text = "unknown";
  forFormats([&](const auto& format) {
    if (format.kind == kind) text = format.text;
  });
  return text;
}

/// Reads a file in the format of `file` into new objects. After a failure, `content` may be partly
/// set, depending on the file class.
template <class File, class Header, class Model>
[[nodiscard]] AQ_DataMessage readContent(File& file, const std::string& path,
                                         Content<Header, Model>& content) {
  if constexpr (std::same_as<File, Model>) {  // the file class holds the data itself
    const AQ_DataMessage result = file.readFile(path);
    content.model = std::make_shared<File>(file);
    return result;
  } else if constexpr (std::is_void_v<Header>) {
    return readInto(file, path, content.model);
  } else {
    // A class that fills the caller's object must be given one.
    if constexpr (fillsCallers<File, Header, Model>) content.model = std::make_shared<Model>();
    return readInto(file, path, content.header, content.model);
  }
}

/// Writes `content` to `path` in the format of `file`.
template <class File, class Header, class Model>
[[nodiscard]] AQ_DataMessage writeContent(File& file, const std::string& path,
                                          const Content<Header, Model>& content) {
  if constexpr (std::same_as<File, Model>) {
    return content.model->writeFile(path);
  } else {
    return writeFrom(file, path, content.header, *content.model);
  }
}

/// Whether a file class writes files too.
template <class File>
inline constexpr bool writesFiles = requires {
  &File::writeFile;
};

}  // namespace aq

#pragma once

#include <aq/aq.h>

#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <variant>
#include <vector>

namespace aqdata {

/// The content of a file, as read.
template <class Header, class Model>
struct Held : aq::Content<Header, Model> {};

template <>
struct Held<aq::AQ_HeaderSTH, aq::AQ_SpectralTimeHistory>
    : aq::Content<aq::AQ_HeaderSTH, aq::AQ_SpectralTimeHistory> {
  aq::HistoryWords words = {};                       // the words of the header
  std::vector<aq::HistoryWords::Other> others = {};  // unknown words, which a write would replace
  double recordLength = 0.5;                         // seconds; the default if the file gives none
};

template <>
struct Held<void, aq::AQ_PositionTimeHistory> : aq::Content<void, aq::AQ_PositionTimeHistory> {
  std::int32_t rejected = 0;  // number of rejected fixes
};

using History = Held<aq::AQ_HeaderSTH, aq::AQ_SpectralTimeHistory>;
using MaskingMap = Held<aq::AQ_HeaderMask, aq::AQ_MaskMap>;
using SpectrumRecord = Held<aq::AQ_HeaderSSR, aq::AQ_Spectrum>;
using Tracking = Held<void, aq::AQ_PositionTimeHistory>;
using Positions = Held<aq::AQ_HeaderPTH, aq::AQ_PositionTimeHistory>;
using Microphone = Held<aq::FormatOf<aq::AQ_Microphone>::Header, aq::AQ_Microphone>;
using Geometry = Held<aq::AQ_HeaderGTH, aq::AQ_GeometryTimeHistory>;
using Parameters = Held<void, aq::AQ_DataINI>;

/// Builds a variant: `+` adds the type that holds a format's content, unless it is already there.
template <class... Types>
struct OneOf {
  using Variant = std::variant<Types...>;

  template <class File, class Header, class Model>
  constexpr auto operator+(const aq::Format<File, Header, Model>&) const {
    using Next = Held<Header, Model>;
    if constexpr ((std::is_same_v<Types, Next> || ...)) {
      return *this;
    } else {
      return OneOf<Types..., Next>();
    }
  }
};

/// A file of any format, as read.
struct Measurement {
  using Data = decltype(std::apply(
      [](const auto&... formats) { return (OneOf<>() + ... + formats); }, aq::kFormats))::Variant;

  aq::FileKind kind;
  Data data;
};

/// The kind of file in one word, such as "history"; empty for an unknown kind.
[[nodiscard]] std::string_view kindWord(aq::FileKind kind);

/// Reads a file of any kind; `watch` receives its header lines. Drops tracking fixes with an RT20
/// figure above `rt20Limit`. Throws `Failure`.
[[nodiscard]] Measurement openFile(const std::string& path, const aq::HeaderObserver& watch = {},
                                   std::uint8_t rt20Limit = 1);

/// Throws `Failure` for a pipe or a device: files are read more than once.
void expectFile(const std::string& path);

// Read a file with one type of content. Throw `Failure`, also for a file with other content.
[[nodiscard]] History openHistory(const std::string& path, const aq::HeaderObserver& watch = {});
[[nodiscard]] MaskingMap openMap(const std::string& path, const aq::HeaderObserver& watch = {});
/// Reads a map, which must fit the history that was read from `historyPath`.
[[nodiscard]] MaskingMap openMapOf(const History& history, const std::string& historyPath,
                                   const std::string& map);
[[nodiscard]] SpectrumRecord openSpectrum(const std::string& path,
                                          const aq::HeaderObserver& watch = {});
[[nodiscard]] Tracking openTracking(const std::string& path, const aq::HeaderObserver& watch = {},
                                    std::uint8_t rt20Limit = 1);

[[nodiscard]] Microphone openMicrophone(const std::string& path);
[[nodiscard]] Geometry openGeometry(const std::string& path);

/// The positions of a position time history or a tracking file, and the number of rejected fixes.
struct FlownPath {
  std::shared_ptr<aq::AQ_PositionTimeHistory> positions;
  std::int32_t rejected = 0;
};
[[nodiscard]] FlownPath openPath(const std::string& path);

/// Throws `Failure` for a history whose header has an unknown word, which would be written as
/// another word.
void expectKnownWords(const History& read, const std::string& path);

/// Throws `Failure` unless a read or write succeeded.
void expectGood(aq::AQ_DataMessage result, const aq::FileClass& file);

/// The time of day as text, rounded to the nearest time that can be written; empty if it cannot be
/// written as hh:mm:ss.
[[nodiscard]] std::string timeText(aq::AQ_Time time);

/// The time of day given to an option. Throws `Failure` for any other text.
[[nodiscard]] aq::AQ_Time timeFrom(const char* option, const std::string& text);

}  // namespace aqdata

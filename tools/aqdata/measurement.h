#pragma once

#include <aq/aq.h>

#include <memory>
#include <string>
#include <string_view>
#include <variant>

namespace aqdata {

// What each kind of file holds, as read.

struct History {
  std::shared_ptr<aq::AQ_HeaderSTH> header;
  std::shared_ptr<aq::AQ_SpectralTimeHistory> history;
  std::string referenceType = {};  // as written, since no history takes it from a file
};
struct MaskingMap {
  std::shared_ptr<aq::AQ_HeaderMask> header;
  std::shared_ptr<aq::AQ_MaskMap> map;
};
struct SpectrumRecord {
  std::shared_ptr<aq::AQ_HeaderSSR> header;
  std::shared_ptr<aq::AQ_Spectrum> spectrum;
};
struct Positions {
  std::shared_ptr<aq::AQ_HeaderPTH> header;
  std::shared_ptr<aq::AQ_PositionTimeHistory> history;
};
struct Tracking {
  std::shared_ptr<aq::AQ_PositionTimeHistory> history;
  std::int32_t rejected = 0;
};
struct Microphone {
  std::shared_ptr<aq::AQ_HeaderMIC> header;
  std::shared_ptr<aq::AQ_Microphone> microphone = std::make_shared<aq::AQ_Microphone>();
};
struct Geometry {
  std::shared_ptr<aq::AQ_HeaderGTH> header;
  std::shared_ptr<aq::AQ_GeometryTimeHistory> history;
};
struct Parameters {
  std::shared_ptr<aq::AQ_DataINI> parameters;
};

using Measurement = std::variant<History, MaskingMap, SpectrumRecord, Positions, Tracking,
                                 Microphone, Geometry, Parameters>;

/// As in "spectral time history".
[[nodiscard]] std::string_view kindText(aq::FileKind kind);
[[nodiscard]] std::string_view kindText(const Measurement& read);

/// In one word, as in "history".
[[nodiscard]] std::string_view kindWord(const Measurement& read);

/// Reads a file of any kind; `watch` sees its header lines, tracking is read up to `rt20Limit`.
/// Throws `Failure`.
[[nodiscard]] Measurement openFile(const std::string& path, const aq::HeaderObserver& watch = {},
                                   std::uint8_t rt20Limit = 1);

/// Throws `Failure` for a pipe or a device: files are read more than once.
void expectFile(const std::string& path);

// Read a file of one kind. Throw `Failure`, for a file of another kind too.
[[nodiscard]] History openHistory(const std::string& path, const aq::HeaderObserver& watch = {});
[[nodiscard]] MaskingMap openMap(const std::string& path, const aq::HeaderObserver& watch = {});
/// For a history that the map has to fit, which was read before.
[[nodiscard]] MaskingMap openMapOf(const std::string& history, const std::string& map);
[[nodiscard]] SpectrumRecord openSpectrum(const std::string& path,
                                          const aq::HeaderObserver& watch = {});
[[nodiscard]] Tracking openTracking(const std::string& path, const aq::HeaderObserver& watch = {},
                                    std::uint8_t rt20Limit = 1);

/// Throws `Failure` unless a read or a write went well.
void expectGood(aq::AQ_DataMessage result, const aq::FileClass& file);

/// The time of day as text; empty when it has no clock form.
[[nodiscard]] std::string timeText(const aq::AQ_Time& time);

}  // namespace aqdata

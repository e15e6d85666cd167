#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "aq/core/enumerations.h"
#include "aq/core/export.h"
#include "aq/spectral/spectral_time_history.h"
#include "aq/text/header_observer.h"

namespace aq {

/// The words in the header of a history file that name members of enumerations. As hosts expect,
/// `AQ_DataSTH` keeps the default for an unknown word, and ignores the word of the reference time
/// type, which stays `AQ_START_REF`. Code that rewrites the history observes the header with this
/// class, so that it can restore that type and report unknown words.
class AQ_API HistoryWords {
 public:
  /// An unknown word, and the word that would be written instead.
  struct Other {
    std::size_t line;
    std::string_view what;
    std::string word;
    std::string readAs;
  };

  /// Keeps the word of a header line, if it has one. For `observeHeader`.
  void see(const HeaderLine& line);

  /// The word of the reference time type as in the file; empty if there was none.
  [[nodiscard]] const std::string& reference() const { return reference_.text; }

  /// The member with that word, ignoring case; nothing for an unknown word.
  [[nodiscard]] std::optional<AQ_RefTimeType> referenceType() const;

  /// Sets the reference time type, if known, of the history that was read with this header. Returns
  /// the unknown words in line order.
  std::vector<Other> takeInto(AQ_SpectralTimeHistory& history) const;

 private:
  struct Word {
    std::size_t line = 0;
    std::string text = {};
  };

  Word averaging_;
  Word stamp_;
  Word reference_;
};

}  // namespace aq

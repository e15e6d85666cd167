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

/// The words of a history file's header that stand for members of enumerations. `AQ_DataSTH` reads
/// a word that it does not know as another, and leaves the reference time type at `AQ_START_REF`,
/// as hosts know it; who writes the history again has the header watched.
class AQ_API HistoryWords {
 public:
  /// A word that no enumeration has, and the one as which it would be written.
  struct Other {
    std::size_t line;
    std::string_view what;
    std::string word;
    std::string readAs;
  };

  /// Takes the line's word, if it has one: for `observeHeader`.
  void see(const HeaderLine& line);

  /// The word of the reference time type as it is written; empty when there was none.
  [[nodiscard]] const std::string& reference() const { return reference_.text; }

  /// What that word stands for, in any case; nothing if it is no word of the interface.
  [[nodiscard]] std::optional<AQ_RefTimeType> referenceType() const;

  /// Gives a history that was read meanwhile the reference time type, if it is known. Gives the
  /// words that are not, in the order of their lines.
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

#pragma once

#include <cstdint>
#include <memory>

#include "aq/core/collection.h"
#include "aq/core/export.h"
#include "aq/core/variant.h"

namespace aq {

/// The levels of one band across a series of spectra, by spectrum number.
class AQ_API AQ_Band {
 public:
  /// Makes no copy: gives no object for an empty band and throws `ObjectNotSet` for any other, as
  /// hosts know it. A band of a history is copied by asking the history for it again.
  [[nodiscard]] std::shared_ptr<AQ_Band> Copy() const;

  /// The level of a spectrum number; a number given as text is read as a number first. Reading
  /// throws `InvalidArgument` when there is none.
  [[nodiscard]] Variant SPL(const Variant& nSpectrum) const;
  void SPL(const Variant& nSpectrum, const Variant& level);

  /// How many levels are stored.
  [[nodiscard]] std::int32_t Count() const { return levels_.Count(); }

 private:
  Collection<Variant> levels_;
};

}  // namespace aq

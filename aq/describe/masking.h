#pragma once

#include "aq/describe/enumerations.h"
#include "aq/masking/mask.h"
#include "aq/masking/mask_map.h"
#include "aq/masking/mask_row.h"

namespace aq::describe {

template <>
struct Description<AQ_Mask> {
  static constexpr char name[] = "AQ_Mask";
  static constexpr int number = 21;
  static constexpr char text[] =
      "One masking decision for one band of one record: whether and by which test the ambient "
      "masks its level, and how the level was adjusted";
  template <class To>
  static void members(To& to) {
    using M = AQ_Mask;
    to.method("Copy", &M::Copy, "A new mask with the same values")
        .property("MaskMode", &M::MaskMode, &M::MaskMode,
                  "Whether the level is masked, and by which test")
        .property("AdjustMode", &M::AdjustMode, &M::AdjustMode, "How the level was adjusted")
        .form("MaskString", &M::MaskString, &M::MaskString,
              "Two letters: one of -MAF for the mode and one of -SFTACR for the adjustment; "
              "setting ignores an unknown letter");
  }
};

template <>
struct Description<AQ_MaskRow> {
  static constexpr char name[] = "AQ_MaskRow";
  static constexpr int number = 22;
  static constexpr char text[] =
      "The masking decisions of one record, by band, and its last good band. Masks are shared, not "
      "copied";
  template <class To>
  static void members(To& to) {
    using R = AQ_MaskRow;
    to.method("Copy", &R::Copy,
              "A deep copy; each band from LowBand to HighBand that has no mask gets a default "
              "one, in the copy and here")
        .indexed("Mask", &R::Mask, &R::Mask, in("nBand", "The band", kBand),
                 "The mask of a band; reading creates a default mask if there is none. Storing a "
                 "mask for a band that already has one removes the old mask and stores none; to "
                 "change a decision, change the mask itself")
        .property("HighBand", &R::HighBand,
                  "The highest band ever stored or read; -1 if there is none", kBand)
        .property("LowBand", &R::LowBand,
                  "The lowest band ever stored or read; 9999 if there is none", kBand)
        .banded(
            "Encompasses",
            [](const R& self, const auto& spectrum) { return self.Encompasses(spectrum); },
            "Whether the bands of another object, LowBand to HighBand, lie within the row's",
            in("spectrum", "Any object with LowBand and HighBand"))
        .property("LGB", &R::LGB, &R::LGB,
                  "The last good band: 0 when no band from 29 up is masked, 9999 when bands 28 and "
                  "29 are both masked",
                  kLastGoodBand)
        .method("contains", &R::contains, "Whether a band has a mask; does not create one",
                in("band", "The band", kBand));
  }
};

template <>
struct Description<AQ_MaskMap> {
  static constexpr char name[] = "AQ_MaskMap";
  static constexpr int number = 23;
  static constexpr char text[] =
      "The masking map of a measurement: one row per record, numbered like the records of the "
      "spectral time history. Rows are shared, not copied";
  template <class To>
  static void members(To& to) {
    using M = AQ_MaskMap;
    to.method("Copy", &M::Copy, "A deep copy of rows 1 to Count; raises if one is missing")
        .indexed("Row", &M::Row, &M::Row, in("nRecord", "The record", kRecord),
                 "The row of a record; reading raises if it is missing")
        .property("Count", &M::Count, "The number of rows; raises if there are more than 32767",
                  kCount)
        .method("setLGB", &M::setLGB,
                "Sets each row's last good band from its masks; creates a default mask in each "
                "band examined, from 28 up, that has none")
        .method("contains", &M::contains, "Whether a record has a row",
                in("number", "The record", kRecord));
  }
};

inline constexpr List<AQ_Mask, AQ_MaskRow, AQ_MaskMap> kMaskingClasses;

}  // namespace aq::describe

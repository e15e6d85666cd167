#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "aq/core/enumerations.h"
#include "aq/core/export.h"
#include "aq/masking/header_mask.h"
#include "aq/masking/mask_map.h"
#include "aq/text/file_class.h"

namespace aq {

/// Writes and reads masking map files (docs/formats/masking-map.md).
class AQ_API AQ_DataMask : public FileClass {
 public:
  /// The file type that the first line names.
  static constexpr std::string_view kTitle = "Masking Map";

  /// Writes a map, replacing the file. The header gets the file's name, the number of rows and the
  /// band range of row 1. Throws, and writes nothing, when the map has no rows, rows are not
  /// numbered from 1 without gaps, or row 1 has no bands or one without a label
  /// (`InvalidArgument`), when there are more than 32767 rows (`Overflow`), or when an object is
  /// missing (`ObjectNotSet`).
  AQ_DataMessage writeFile(const std::string& sFileName,
                           const std::shared_ptr<AQ_HeaderMask>& aqHeader,
                           const AQ_MaskMap& aqMaskMap);

  /// Reads a file into a new header and a new map. If the header cannot be read, sets neither; if a
  /// row cannot be read, sets both, and the map holds the rows before it.
  AQ_DataMessage readFile(const std::string& sFileName, std::shared_ptr<AQ_HeaderMask>& aqHeader,
                          std::shared_ptr<AQ_MaskMap>& MaskMap);

 private:
  std::shared_ptr<AQ_HeaderMask> header_;
};

}  // namespace aq

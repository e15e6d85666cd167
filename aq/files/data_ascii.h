#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "aq/core/collection.h"
#include "aq/core/enumerations.h"
#include "aq/core/export.h"
#include "aq/text/file_class.h"

namespace aq {

/// Reads any delimited text file as lines or as lines of fields; writes and appends both. The
/// collections of lines and fields are shared with the caller, not copied. A failed call leaves
/// them unchanged.
class AQ_API AQ_DataASCII : public FileClass {
 public:
  using FieldLines = Collection<std::shared_ptr<Collection<std::string>>>;

  /// Reads a file into new `Fields`, one entry per line. Splits a line at every delimiter, even
  /// inside quotes unless `CommentFields` is set; removes double quotes and surrounding blanks from
  /// fields; a blank line is one empty field. With a single space as the delimiter, runs of spaces
  /// separate fields, quotes are kept, and a blank line has no fields.
  AQ_DataMessage readFields(const std::string& sFileName);

  /// Reads the lines of a file, unchanged, into new `Lines`.
  AQ_DataMessage readLines(const std::string& sFileName);

  [[nodiscard]] std::shared_ptr<FieldLines> Fields() const { return fields_; }
  [[nodiscard]] std::shared_ptr<Collection<std::string>> Lines() const { return lines_; }
  void Fields(std::shared_ptr<FieldLines> fields) { fields_ = std::move(fields); }
  void Lines(std::shared_ptr<Collection<std::string>> lines) { lines_ = std::move(lines); }

  // Writers replace the file; appenders add to it. Fields are joined by the delimiter;
  // `appendFields` puts each in double quotes when `CommentFields` is set; `writeFields` never
  // does, as hosts expect. A missing collection throws `ObjectNotSet`.
  AQ_DataMessage writeFields(const std::string& sFileName);
  AQ_DataMessage appendFields(const std::string& sFileName);
  AQ_DataMessage writeLines(const std::string& sFileName);
  AQ_DataMessage appendLines(const std::string& sFileName);

  /// The text between fields, initially ",". An empty delimiter splits nothing.
  void Delimiter(std::string text) { delimiter_ = std::move(text); }

  /// Whether fields may be in double quotes, with delimiters inside. Set `Delimiter` first. If
  /// true, a "|" in a field that is read becomes the delimiter.
  void CommentFields(bool quoted);

 private:
  [[nodiscard]] std::shared_ptr<Collection<std::string>> divided(std::string_view line,
                                                                 std::int32_t expected) const;
  [[nodiscard]] std::string withPlaceholders(std::string_view line) const;
  [[nodiscard]] std::string restored(std::string_view field) const;
  [[nodiscard]] std::string linesText() const;
  [[nodiscard]] std::string fieldsText(bool quoted) const;

  std::string delimiter_ = ",";
  bool quotedFields_ = false;
  std::string opening_;  // delimiter and quote before a quoted field
  std::string closing_;  // quote and delimiter after a quoted field
  std::shared_ptr<Collection<std::string>> lines_ = std::make_shared<Collection<std::string>>();
  std::shared_ptr<FieldLines> fields_ = std::make_shared<FieldLines>();
};

}  // namespace aq

#include "aq/sdf/text_writer.h"

#include "aq/core/platform.h"
#include "aq/sdf/text_form.h"
#include "aq/text/number_text.h"

namespace aq::sdf {
namespace {

class TextWriter {
 public:
  explicit TextWriter(const Recording& recording) : recording_(recording) {}

  std::string take() {
    constexpr RecordType kOrder[] = {
        RecordType::File,         RecordType::Measurement, RecordType::Data,  RecordType::Vector,
        RecordType::Channel,      RecordType::Unique,      RecordType::Scans, RecordType::ManyScans,
        RecordType::ScanVariable, RecordType::Comment,     RecordType::X};
    for (const RecordType type : kOrder) {
      for (const Record& record : recording_.records().all(type)) appendRecord(record);
    }
    for (const TraceSet& set : recording_.sets()) {
      for (std::size_t scan = 0; scan < recording_.scansOf(set); ++scan) {
        for (std::size_t trace = 0; trace < set.traces; ++trace) appendTrace(set, trace, scan);
      }
    }
    return std::move(text_);
  }

 private:
  void endLine() { text_ += platform::lineEnd; }

  void name(std::string_view prefix, std::string_view name, const Field& field,
            std::size_t element) {
    const std::size_t begin = text_.size();
    text_ += prefix;
    text_ += name;
    if (field.type != Type::Text && field.count > 1) {
      text_ += '[';
      appendNumber(text_, static_cast<std::int32_t>(element));
      text_ += ']';
    }
    pad(begin);
  }
  void pad(std::size_t begin) {
    const std::size_t length = text_.size() - begin;
    text_.append(length < form::kValueColumn ? form::kValueColumn - length : 2, ' ');
  }

  void title(const Record& record) {
    text_.append(form::kDots, '.');
    endLine();
    text_ += record.layout().name;
    endLine();
    number(form::kRecordType, numberAt<std::uint16_t>(record.bytes().data()));
    number(form::kRecordSize, record.size());
  }

  void number(std::string_view name, std::uint64_t value) {
    const std::size_t begin = text_.size();
    text_ += name;
    pad(begin);
    text_ += std::to_string(value);
    endLine();
  }

  void appendFields(const Record& record, std::span<const Field> fields,
                    const std::string& prefix) {
    for (const Field& field : fields) {
      if (!record.has(field)) continue;
      if (const auto parts = partsOf(field); !parts.empty()) {
        appendFields(record.part(field), parts, prefix + std::string(field.name) + '.');
        continue;
      }
      for (std::size_t i = 0; i < (field.type == Type::Text ? 1 : field.count); ++i) {
        name(prefix, field.name, field, i);
        appendValue(text_, record, field, i);
        endLine();
      }
    }
  }

  void appendRecord(const Record& record) {
    title(record);
    appendFields(record, record.layout().fields, {});
  }

  void appendTrace(const TraceSet& set, std::size_t trace, std::size_t scan) {
    title(recording_.records().all(RecordType::Y).front());
    number(form::kData, recording_.placeOf(set));
    number(form::kVector, trace);
    number(form::kScan, scan);
    const auto variable = set.scanned ? recording_.scanVariable(set) : std::nullopt;
    const auto value =
        variable ? recording_.scanValue(*variable, set, trace, scan) : std::optional<double>();
    if (value) {
      const std::size_t begin = text_.size();
      text_ += form::kScanVariable;
      pad(begin);
      appendStored(text_, *value, variable->type);
      endLine();
    }
    number(form::kPoints, set.points);
    const Numbers y = recording_.y(set, trace, scan);
    const std::vector<double> x = recording_.x(set, trace, scan, set.points);
    std::vector<double> values(y.count);
    y.copyTo(values);
    for (std::size_t point = 0; point < set.points; ++point) {
      appendAllDigits(text_, x[point]);
      for (std::size_t i = 0; i < set.valuesOfPoint; ++i) {
        text_ += "  ";
        appendStored(text_, values[point * set.valuesOfPoint + i], set.type);
      }
      endLine();
    }
  }

  const Recording& recording_;
  std::string text_;
};

}  // namespace

void appendStored(std::string& text, double value, NumberType type) {
  if (type == NumberType::Double) {
    appendAllDigits(text, value);
  } else if (type == NumberType::Float) {
    appendAllDigits(text, static_cast<float>(value));
  } else {
    appendNumber(text, static_cast<std::int32_t>(value));
  }
}

void appendValue(std::string& text, const Record& record, const Field& field, std::size_t element) {
  if (field.type == Type::Text) {
    text += form::quoted(record.text(field));
  } else if (field.type == Type::Float) {
    appendExact(text, static_cast<float>(record.real(field, element)));
  } else if (field.type == Type::Double) {
    appendExact(text, record.real(field, element));
  } else {
    const std::int32_t number = record.integer(field, element);
    const std::string_view word =
        field.codes != nullptr ? wordOf(*field.codes, number) : std::string_view();
    word.empty() ? appendNumber(text, number) : static_cast<void>(text += word);
  }
}

std::string textOf(const Recording& recording) { return TextWriter(recording).take(); }

}  // namespace aq::sdf

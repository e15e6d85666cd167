#include "tools/aqdata/where.h"

#include <aq/core/error.h>
#include <aq/core/time.h>
#include <aq/text/number_text.h>
#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "tools/aqdata/text.h"

namespace aqdata {
namespace {

std::optional<double> plainNumberIn(const std::string& text) {
  try {
    return aq::doubleFrom(text);
  } catch (const aq::Error&) {
    return std::nullopt;
  }
}

/// The seconds of a time of day such as 14:00 or 14:00:00.25.
std::optional<double> clockIn(const std::string& text) {
  const std::size_t colon = text.find(':');
  if (colon == text.npos || text.find_first_not_of("0123456789:.") != text.npos)
    return std::nullopt;
  const bool seconds = text.find(':', colon + 1) != text.npos;
  try {
    aq::AQ_Time time;
    time.TODstring(seconds ? text : text + ":00");
    return time.TODseconds();
  } catch (const aq::Error&) {
    return std::nullopt;
  }
}

/// Both values as numbers, if both are numbers or both are times of day.
std::optional<std::pair<double, double>> numbersOf(const std::string& a, const std::string& b) {
  for (const auto& in : {plainNumberIn, clockIn}) {
    const auto one = in(a);
    const auto other = in(b);
    if (one && other) return std::pair{*one, *other};
  }
  return std::nullopt;
}

int sign(double difference) { return difference < 0 ? -1 : difference > 0 ? 1 : 0; }

int compareTexts(const std::string& a, const std::string& b) {
  if (const auto numbers = numbersOf(a, b)) return sign(numbers->first - numbers->second);
  const int upper = aq::upperCased(a).compare(aq::upperCased(b));
  return upper < 0 ? -1 : upper > 0 ? 1 : 0;
}

/// Whether `text` matches a pattern with `*` and `?`.
bool fitsPattern(std::string_view text, std::string_view pattern) {
  std::size_t at = 0;
  std::size_t in = 0;
  std::size_t star = pattern.npos;
  std::size_t from = 0;
  while (at < text.size()) {
    if (in < pattern.size() && pattern[in] == '*') {
      star = in++;
      from = at;
    } else if (in < pattern.size() && (pattern[in] == '?' || pattern[in] == text[at])) {
      ++in;
      ++at;
    } else if (star != pattern.npos) {
      in = star + 1;
      at = ++from;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', in) == pattern.npos;
}

bool isEqual(const std::string& value, const std::string& wanted) {
  return compareTexts(value, wanted) == 0 ||
         fitsPattern(aq::upperCased(value), aq::upperCased(wanted));
}

bool holds(const std::string& sign, const std::string& value, const std::string& wanted) {
  if (sign == "=") return isEqual(value, wanted);
  if (sign == "!=") return !isEqual(value, wanted);
  const int order = compareTexts(value, wanted);
  if (sign == "<") return order < 0;
  if (sign == "<=") return order <= 0;
  return sign == ">" ? order > 0 : order >= 0;
}

class ConditionParser {
 public:
  ConditionParser(std::string_view text, const std::vector<std::string>& fields)
      : whole_(text), rest_(text), fields_(fields) {}

  Condition run() {
    Condition all = either();
    skipBlanks();
    if (!rest_.empty()) fail("and, or, or the end");
    return all;
  }

 private:
  Condition either() {
    Condition left = both();
    while (takeWord("or")) {
      left = [left, right = both()](const Json& info) { return left(info) || right(info); };
    }
    return left;
  }

  Condition both() {
    Condition left = one();
    while (takeWord("and")) {
      left = [left, right = one()](const Json& info) { return left(info) && right(info); };
    }
    return left;
  }

  Condition one() {
    if (takeWord("not")) return [inner = one()](const Json& info) { return !inner(info); };
    if (take("(")) {
      Condition inner = either();
      if (!take(")")) fail("a closing parenthesis");
      return inner;
    }
    return comparison();
  }

  Condition comparison() {
    skipBlanks();
    std::size_t end = 0;
    while (end < rest_.size() && isNameCharacter(rest_[end])) ++end;
    if (end == 0) fail("a field");
    const std::string field(rest_.substr(0, end));
    expectField(field, fields_);
    rest_.remove_prefix(end);
    std::string found;
    for (const char* sign : {"!=", "<=", ">=", "=", "<", ">"}) {
      if (found.empty() && take(sign)) found = sign;
    }
    if (found.empty()) fail("=, !=, <, <=, > or >=");
    return [field, found, wanted = value()](const Json& info) {
      const Json& own = fieldOf(info, field);
      const std::string text = listText(own, ", ");
      if (text.empty()) return false;
      const bool isOrder = found.front() != '=' && found.front() != '!';
      const bool isClock = clockIn(text).has_value();
      if (isOrder && (own.is_number() || isClock) && !numbersOf(text, wanted)) {
        throw Failure(fmt::format("--where: expected {} to compare {} with, found {}",
                                  isClock ? "a time of day" : "a number", field,
                                  aq::shown(wanted)));
      }
      return holds(found, text, wanted);
    };
  }

  std::string value() {
    skipBlanks();
    if (rest_.empty()) fail("a value");
    const char quote = rest_.front();
    const bool quoted = quote == '"' || quote == '\'';
    if (quoted) rest_.remove_prefix(1);
    const std::size_t end =
        quoted ? rest_.find(quote) : std::min(rest_.find_first_of(" )"), rest_.size());
    if (end == rest_.npos) fail("a closing quote");
    if (end == 0 && !quoted) fail("a value");
    std::string text(rest_.substr(0, end));
    rest_.remove_prefix(end + (quoted ? 1 : 0));
    return text;
  }

  static bool isNameCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
  }
  void skipBlanks() { rest_.remove_prefix(std::min(rest_.find_first_not_of(' '), rest_.size())); }
  bool take(std::string_view text) {
    skipBlanks();
    if (!rest_.starts_with(text)) return false;
    rest_.remove_prefix(text.size());
    return true;
  }
  bool takeWord(std::string_view word) {
    skipBlanks();
    const bool here = aq::upperCased(rest_.substr(0, word.size())) == aq::upperCased(word) &&
                      (rest_.size() == word.size() || !isNameCharacter(rest_[word.size()]));
    if (here) rest_.remove_prefix(word.size());
    return here;
  }
  [[noreturn]] void fail(const char* expected) {
    throw Failure(fmt::format("--where: expected {} at {} of {}", expected,
                              rest_.empty() ? "the end" : aq::shown(rest_), aq::shown(whole_)));
  }

  std::string_view whole_;
  std::string_view rest_;
  const std::vector<std::string>& fields_;
};

}  // namespace

const Json& fieldOf(const Json& info, const std::string& field) {
  static const Json kNothing;
  if (const auto own = info.find(field); own != info.end()) return *own;
  const auto header = info.find("header");
  if (header == info.end()) return kNothing;
  const auto value = header->find(field);
  return value == header->end() ? kNothing : *value;
}

int compareFields(const Json& a, const Json& b) {
  const std::string one = listText(a, ", ");
  const std::string other = listText(b, ", ");
  if (one.empty() || other.empty())
    return static_cast<int>(one.empty()) - static_cast<int>(other.empty());
  return compareTexts(one, other);
}

void expectField(const std::string& field, const std::vector<std::string>& fields) {
  if (std::find(fields.begin(), fields.end(), field) != fields.end()) return;
  const std::string meant = nearest(field, fields);
  throw Failure(fmt::format("unknown field {}{}", aq::shown(field),
                            meant.empty()
                                ? fmt::format("; the fields are {}", fmt::join(fields, ", "))
                                : fmt::format("; did you mean {}?", meant)));
}

Condition conditionFrom(const std::string& text, const std::vector<std::string>& fields) {
  return ConditionParser(text, fields).run();
}

}  // namespace aqdata

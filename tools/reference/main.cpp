// Writes the object model's reference page. With `members`, writes what a test checks instead:
// the argument counts of each member and the value of each enumerator, which it compares with the
// headers, and the numbers of the classes and the units and descriptions of members.

#include <aq/describe/check.h>
#include <aq/describe/files.h>
#include <aq/describe/geometry.h>
#include <aq/describe/headers.h>
#include <aq/describe/masking.h>
#include <aq/describe/noise.h>
#include <aq/describe/spectral.h>

#include <functional>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "tools/reference/types.h"

namespace reference {
namespace {

namespace describe = aq::describe;

/// Calls `visit(heading, classes)` for each section of the page that lists classes.
template <class Visit>
void forRooms(const Visit& visit) {
  visit("Time, collections and failures", describe::kCoreClasses);
  visit("Spectra and histories", describe::kSpectralClasses);
  visit("Masking", describe::kMaskingClasses);
  visit("Positions and geometry", describe::kGeometryClasses);
  visit("Noise of an event", describe::kNoiseClasses);
  visit("Headers", describe::kHeaders);
  visit("Files", describe::kFileClasses);
}

template <class Visit>
void forEnumerations(const Visit& visit) {
  describe::forClasses(describe::kEnumerations, visit);
  visit.template operator()<aq::FileKind>();
  visit.template operator()<aq::Severity>();
}

std::string ended(std::string_view sentence) { return std::string(sentence) + "."; }

constexpr std::string_view kBegin = R"(# Reference

Every class in the object model with its members, and every enumeration. New members are added at the end
of their class. This page is generated from `aq/describe` by `cmake --build --preset debug --target
reference`.

In C++ a property is two functions, `time->RelSeconds()` and `time->RelSeconds(2.5)`; in Python it is an
attribute. A property with a key is `spectrum->SPL(24)` and `spectrum->SPL(24, 65.3)`, in Python
`spectrum.SPL[24]`. A field is a data member. Where the text says "raises", C++ throws `aq::Error`. A value
that does not convert to the type of a property also raises, as does a missing object that a call needs.
The range is that of meaningful values: setters do not check it unless the text says so. Lengths are in
metres unless a file or program used another unit: nothing is converted. The [glossary](glossary.md)
explains the terms.
)";

/// Prints the members of a class as a table.
template <class C>
class Table {
 public:
  Table() {
    if constexpr (requires { describe::Description<C>::text; }) {
      std::cout << "\n### " << describe::Description<C>::name << "\n\n"
                << ended(describe::Description<C>::text) << "\n";
    }
    std::cout << "\n| | | Type | Unit, range | New | |\n|---|---|---|---|---|---|\n";
    describe::forMembers<C>(*this);
  }

  template <class Get, class Set>
  void operator()(const describe::Property<Get, Set>& property) {
    row(property.name, std::is_null_pointer_v<Set> ? "read only" : "property",
        typeWords<std::invoke_result_t<Get, C&>>(), property.about, initial(property.get));
  }
  template <class Member>
  void operator()(const describe::Field<Member>& field) {
    row(field.name, "field", typeWords<std::invoke_result_t<Member, C&>>(), field.about,
        initial(field.member));
  }
  template <class Set>
  void operator()(const describe::Setter<Set>& setter) {
    row(called(setter.name, {setter.value}), "set only", argument(setter.set), setter.about, "",
        {setter.value});
  }
  template <class Get, class Set>
  void operator()(const describe::Indexed<Get, Set>& indexed) {
    row(called(indexed.name, {indexed.key}), "by key", result(indexed.get), indexed.about, "",
        {indexed.key});
  }
  template <class Call, std::size_t Count>
  void operator()(const describe::Method<Call, Count>& method) {
    const std::vector<describe::Parameter> all(method.parameters.begin(), method.parameters.end());
    row(called(method.name, all), "method", result(method.call), method.about, "", all);
  }
  template <class Call>
  void operator()(const describe::Banded<Call>& banded) {
    row(called(banded.name, {banded.other}), "method", "truth", banded.about, "");
  }
  template <class Result, class... Arguments, std::size_t Count>
  void operator()(const describe::Function<Result (*)(Arguments...), Count>& function) {
    const Parameters all(function.parameters.begin(), function.parameters.end());
    std::string type;
    if constexpr (!std::is_void_v<Result>) type = typeWords<Result>();
    row(called(function.name, all), "function", type, function.about, "", all);
  }
  template <class ByPlace, class ByKey>
  void operator()(const describe::Keyed<ByPlace, ByKey>& keyed) {
    row(std::string(keyed.name) + "(index or key)", "method", result(keyed.byPlace), keyed.about,
        "");
  }

 private:
  using Parameters = std::vector<describe::Parameter>;

  static std::string called(const char* name, const Parameters& parameters) {
    std::string text = std::string(name) + "(";
    for (const auto& parameter : parameters) {
      if (text.back() != '(') text += ", ";
      text += parameter.isOptional ? "[" + std::string(parameter.name) + "]" : parameter.name;
    }
    return text + ")";
  }

  template <class Result, class... Arguments>
  static std::string result(Result (C::* /*call*/)(Arguments...)) {
    if constexpr (!std::is_void_v<Result>) return typeWords<Result>();
    return "";
  }
  template <class Result, class... Arguments>
  static std::string result(Result (C::* /*call*/)(Arguments...) const) {
    if constexpr (!std::is_void_v<Result>) return typeWords<Result>();
    return "";
  }
  template <class Argument>
  static std::string argument(void (C::* /*set*/)(Argument)) {
    return typeWords<Argument>();
  }

  template <class Read>
  static std::string initial(Read read) {
    if constexpr (std::is_default_constructible_v<C>) {
      C made;
      return valueWords(
          std::remove_cvref_t<std::invoke_result_t<Read, C&>>(std::invoke(read, made)));
    } else {
      return "";
    }
  }

  static void row(const std::string& name, std::string_view kind, const std::string& type,
                  const describe::About& about, const std::string& made,
                  const Parameters& parameters = {}) {
    std::string text = ended(about.text);
    for (const auto& parameter : parameters) {
      const std::string quantity = describe::quantityText(parameter.about.quantity);
      text += " `" + std::string(parameter.name) + "`: " + std::string(parameter.about.text) +
              (quantity.empty() ? "" : " [" + quantity + "]") + ".";
    }
    std::cout << "| `" << name << "` | " << kind << " | " << type << " | "
              << describe::quantityText(about.quantity) << " | " << made << " | " << text << " |\n";
  }
};

template <class E>
void showEnumeration() {
  std::cout << "\n### " << describe::Description<E>::name << "\n\n"
            << ended(describe::Description<E>::text) << "\n\n| Member | Value | |\n|---|---|---|\n";
  describe::forMembers<E>([](const auto& member) {
    std::cout << "| `" << member.name << "` | " << static_cast<std::int32_t>(member.value) << " | "
              << ended(member.text) << " |\n";
  });
}

void showPage() {
  std::cout << kBegin;
  forRooms([](const char* heading, const auto& classes) {
    std::cout << "\n## " << heading << "\n";
    describe::forClasses(classes, []<class C>() { Table<C>(); });
  });
  std::cout << "\n## Functions\n";
  Table<describe::CoreFunctions>();
  Table<describe::FileFunctions>();
  Table<describe::SpectralFunctions>();
  Table<describe::NoiseFunctions>();
  Table<describe::CheckFunctions>();
  std::cout << "\n## Enumerations\n";
  forEnumerations([]<class E>() { showEnumeration<E>(); });
}

/// The numbers of arguments with which a C++ member can be called; "field" for a data member.
struct Counts {
  template <class Get, class Set>
  std::string operator()(const describe::Property<Get, Set>& /*property*/) const {
    return std::is_null_pointer_v<Set> ? "0" : "0 1";
  }
  template <class Get, class Set>
  std::string operator()(const describe::Form<Get, Set>& /*form*/) const {
    return "0 1";
  }
  template <class Member>
  std::string operator()(const describe::Field<Member>& /*field*/) const {
    return "field";
  }
  template <class Get, class Set>
  std::string operator()(const describe::Indexed<Get, Set>& /*indexed*/) const {
    return "1 2";
  }
  template <class Call, std::size_t Count>
  std::string operator()(const describe::Method<Call, Count>& method) const {
    std::string counts = std::to_string(Count);
    if constexpr (Count != 0) {
      if (method.parameters.back().isOptional) counts = std::to_string(Count - 1) + " " + counts;
    }
    return counts;
  }
  template <class Other>
  std::string operator()(const Other& /*a setter or one that takes any object*/) const {
    return "1";
  }
};

/// Prints the unit and the text of a member, a parameter or an enumerator.
void showSense(const std::string& name, const describe::Quantity& quantity, std::string_view text) {
  std::cout << "sense " << name << " " << quantity.unit << "|" << text << "\n";
}

template <class Member>
void showSenses(const std::string& owner, const Member& member) {
  const std::string name = owner + "." + member.name;
  showSense(name, member.about.quantity, member.about.text);
  const auto show = [&](const describe::Parameter& parameter) {
    showSense(name + "(" + parameter.name + ")", parameter.about.quantity, parameter.about.text);
  };
  if constexpr (requires { member.parameters; }) {
    for (const auto& parameter : member.parameters) show(parameter);
  }
  if constexpr (requires { member.key; }) show(member.key);
  if constexpr (requires { member.value; }) show(member.value);
}

template <class Functions>
void showFunctions() {
  describe::forMembers<Functions>([](const auto& function) { showSenses("functions", function); });
}

void showMembers() {
  forRooms([](const char* /*heading*/, const auto& classes) {
    describe::forClasses(classes, []<class C>() {
      const char* const name = describe::Description<C>::name;
      if constexpr (requires { describe::Description<C>::number; }) {
        std::cout << "number " << name << " " << describe::Description<C>::number << "\n";
      }
      describe::forMembers<C>([&](const auto& member) {
        std::cout << "member " << name << "." << member.name << " " << Counts()(member) << "\n";
        showSenses(name, member);
      });
    });
  });
  forEnumerations([]<class E>() {
    describe::forMembers<E>([](const auto& member) {
      std::cout << "value " << describe::Description<E>::name << "." << member.name << " "
                << static_cast<std::int32_t>(member.value) << "\n";
      showSense(std::string(describe::Description<E>::name) + "::" + member.name, {}, member.text);
    });
  });
  showFunctions<describe::CoreFunctions>();
  showFunctions<describe::FileFunctions>();
  showFunctions<describe::SpectralFunctions>();
  showFunctions<describe::NoiseFunctions>();
  showFunctions<describe::CheckFunctions>();
}

}  // namespace
}  // namespace reference

int main(int count, char** arguments) {
  if (count == 2 && arguments[1] == std::string_view("members")) {
    reference::showMembers();
  } else {
    reference::showPage();
  }
}

// Writes the type library's IDL from the description of the object model.

#include <iostream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "component/model.h"

namespace aq::com {
namespace {

std::string identifier(int number) {
  constexpr char digits[] = "0123456789abcdef";
  std::string text(8, '0');
  std::uint32_t rest = kIdentifierBase + static_cast<std::uint32_t>(number);
  for (auto place = text.rbegin(); place != text.rend(); ++place, rest /= 16) {
    *place = digits[rest % 16];
  }
  return text + std::string(kIdentifierRest);
}

std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') result += '\\';
    result += c;
  }
  return result + "\"";
}

template <class T>
struct Element;  // the type in a pointer or an optional
template <class T>
struct Element<std::shared_ptr<T>> {
  using Type = T;
};
template <class T>
struct Element<std::optional<T>> {
  using Type = T;
};
template <class T>
struct Element<T*> {
  using Type = std::remove_const_t<T>;
};
template <class T>
inline constexpr bool isList = false;
template <class T>
inline constexpr bool isList<std::vector<T>> = true;

template <class C>
std::string objectType() {
  return "_" + className<C>() + "*";
}

/// A C++ type as hosts see it.
template <class T>
std::string type() {
  using V = std::remove_cvref_t<T>;
  if constexpr (std::is_void_v<V>) {
    return "void";
  } else if constexpr (std::same_as<V, bool>) {
    return "VARIANT_BOOL";
  } else if constexpr (std::same_as<V, FileKind> || std::is_convertible_v<V, std::string_view>) {
    return "BSTR";
  } else if constexpr (std::is_enum_v<V>) {
    return describe::Description<V>::name;
  } else if constexpr (std::same_as<V, float>) {
    return "float";
  } else if constexpr (std::same_as<V, double>) {
    return "double";
  } else if constexpr (std::is_integral_v<V>) {
    if constexpr (sizeof(V) == 1) return "unsigned char";
    return sizeof(V) == 2 ? "short" : "long";
  } else if constexpr (isList<V>) {
    return "_AQ_Collection*";
  } else if constexpr (describe::Described<V>) {
    return objectType<V>();
  } else if constexpr (requires { requires describe::Described<typename Element<V>::Type>; }) {
    return objectType<typename Element<V>::Type>();
  } else {
    return "VARIANT";
  }
}

template <class T>
constexpr bool givesCollection() {
  using V = std::remove_cvref_t<T>;
  if constexpr (requires { typename V::element_type; }) {
    return isCollection<typename V::element_type>;
  } else {
    return false;
  }
}

template <class T>
inline constexpr bool isObject = requires(T value) {
  value.use_count();
};

/// Whether the call stores a value in the argument.
template <class T>
inline constexpr bool isOut =
    std::is_lvalue_reference_v<T> && !std::is_const_v<std::remove_reference_t<T>> &&
    (isObject<T> || std::is_enum_v<std::remove_reference_t<T>>);

std::string lowerCase(std::string name) {
  for (char& letter : name)
    letter = letter >= 'A' && letter <= 'Z' ? char(letter - 'A' + 'a') : letter;
  return name;
}

/// A type library has only one spelling for each name, ignoring case; a member's takes precedence.
std::string spelled(const std::string& name) {
  static const auto members = [] {
    std::map<std::string, std::string> found{{"key", "Key"}};  // as in hosts' own collections
    forClasses([&found]<class C>() {
      forMembers<C>([&found](std::int32_t /*id*/, const auto& member) {
        found.try_emplace(lowerCase(member.name), member.name);
      });
    });
    return found;
  }();
  const auto member = members.find(lowerCase(name));
  return member == members.end() ? name : member->second;
}

template <class Argument>
std::string parameter(const describe::Parameter& given) {
  const std::string name = " " + spelled(given.name);
  if (isOut<Argument>) {
    // Hosts that bind early pass a plain number.
    const std::string result =
        std::is_enum_v<std::remove_reference_t<Argument>> ? "long" : type<Argument>();
    return given.isOptional ? "[in, out, optional] VARIANT*" + name
                            : "[in, out] " + result + "*" + name;
  }
  return given.isOptional ? "[in, optional] VARIANT" + name : "[in] " + type<Argument>() + name;
}

/// One class as a dispinterface and a coclass.
template <class C>
class Interface {
 public:
  Interface() {
    const std::string name = className<C>();
    std::cout << "\n  [uuid(" << identifier(interfaceIdentifier(kNumber))
              << "), hidden, helpstring(" << quoted(describe::Description<C>::text)
              << ")]\n  dispinterface _" << name << " {\n    properties:\n    methods:\n";
    forMembers<C>([this](std::int32_t id, const auto& member) {
      id_ = id;
      show(member);
    });
    for (const auto& extra : kExtras) {
      if (extra.owner == name) show(extra);
    }
    if constexpr (isSeries<C>) {
      std::cout << "      [id(" << kEnumerator << "), restricted, propget] IUnknown* _NewEnum();\n";
    }
    std::cout << "  };\n\n  [uuid(" << identifier(classIdentifier(kNumber))
              << (isCreatable<C> ? "), " : "), noncreatable, ") << "helpstring("
              << quoted(describe::Description<C>::text) << ")]\n  coclass " << name
              << " {\n    [default] dispinterface _" << name << ";\n  };\n";
  }

 private:
  static constexpr int kNumber = describe::Description<C>::number;

  template <class Get, class Set>
  void show(const describe::Property<Get, Set>& property) const {
    using Value = std::invoke_result_t<Get, C&>;
    if constexpr (std::is_null_pointer_v<Set>) {
      line(property, "propget", type<Value>(), "");
    } else {
      getAndSet<Value>(property, setType(property.set), "");
    }
  }
  template <class Member>
  void show(const describe::Field<Member>& field) const {
    using Value = std::invoke_result_t<Member, C&>;
    if constexpr (isCreatable<C>) {
      getAndSet<Value>(field, type<Value>(), "");
    } else {
      line(field, "propget", type<Value>(), "");
    }
  }
  template <class Value>
  void show(const describe::Setter<void (C::*)(Value)>& setter) const {
    set<Value>(setter, type<Value>(), "", setter.value.name);
  }
  template <class Key, class Value, class Given>
  void show(const describe::Indexed<Value (C::*)(Key) const, void (C::*)(Key, Given)>& view) const {
    getAndSet<Value>(view, type<Given>(), parameter<Key>(view.key));
  }
  template <class Key, class Value, class Given>
  void show(const describe::Indexed<Value (C::*)(Key), void (C::*)(Key, Given)>& view) const {
    getAndSet<Value>(view, type<Given>(), parameter<Key>(view.key));
  }
  template <class Result, class... Arguments, std::size_t Count>
  void show(const describe::Method<Result (C::*)(Arguments...), Count>& method) const {
    call<Result, Arguments...>(method);
  }
  template <class Result, class... Arguments, std::size_t Count>
  void show(const describe::Method<Result (C::*)(Arguments...) const, Count>& method) const {
    call<Result, Arguments...>(method);
  }
  template <class Result, class... Arguments, std::size_t Count>
  void show(const describe::Function<Result (*)(Arguments...), Count>& function) const {
    if constexpr (isShown<Result, Arguments...>) call<Result, Arguments...>(function);
  }
  template <class Call>
  void show(const describe::Banded<Call>& banded) const {
    line(banded, "", "VARIANT_BOOL", "[in] IDispatch* " + spelled(banded.other.name));
  }
  template <class ByPlace, class ByKey>
  void show(const describe::Keyed<ByPlace, ByKey>& keyed) const {
    const bool isItem = id_ == kDefaultMember;
    line(keyed, isItem ? "propget" : "", isItem ? "VARIANT" : "void", "[in] VARIANT PlaceOrKey");
  }
  void show(const Extra& extra) const {
    std::cout << "      [id(" << extra.id << ")" << (extra.isProperty ? ", propget" : "")
              << ", helpstring(" << quoted(extra.text) << ")]\n        " << extra.type << " "
              << extra.name << "(" << extra.parameters << ");\n";
    if (extra.isSet) {
      std::cout << "      [id(" << extra.id << "), propput] void " << extra.name << "([in] "
                << extra.type << " value);\n";
    }
  }

  template <class Given>
  static std::string setType(void (C::* /*set*/)(Given)) {
    return type<Given>();
  }

  template <class Value, class Member>
  void getAndSet(const Member& member, const std::string& given, const std::string& key) const {
    // Hosts require the same type for reading and setting a property.
    const std::string shown = given == "VARIANT" ? given : type<Value>();
    line(member, "propget", shown, key);
    set<Value>(member, shown, key, "value");
  }

  template <class Value, class Member>
  void set(const Member& member, const std::string& shown, const std::string& key,
           const char* name) const {
    const std::string before = key.empty() ? "" : key + ", ";
    // A collection may be given as an array or as a collection of the host's own.
    const std::string put = givesCollection<Value>() ? "VARIANT" : shown;
    const std::string putRef = givesCollection<Value>() ? "IDispatch*" : shown;
    line(member, "propput", "void", before + "[in] " + put + " " + spelled(name));
    if (isObject<Value> || shown.ends_with("*")) {
      line(member, "propputref", "void", before + "[in] " + putRef + " " + spelled(name));
    }
  }

  template <class Result, class... Arguments, class Call>
  void call(const Call& called) const {
    auto parameters = called.parameters;
    bool isOptional = true;  // an argument before a required one is required too
    for (auto it = parameters.rbegin(); it != parameters.rend(); ++it) {
      isOptional = it->isOptional = isOptional && it->isOptional;
    }
    std::string all;
    [[maybe_unused]] auto next = parameters.begin();
    ((all += (all.empty() ? "" : ", ") + inCall<Arguments>(*next++)), ...);
    line(called, "", type<Result>(), all);
  }

  /// One interface serves collections of any type.
  template <class Argument>
  static std::string inCall(const describe::Parameter& given) {
    if (isCollection<C> && given.name == std::string_view("value")) {
      return "[in] VARIANT " + std::string(kEntryName);
    }
    return parameter<Argument>(given);
  }

  template <class Member>
  void line(const Member& member, const std::string& kind, const std::string& result,
            const std::string& parameters) const {
    std::string text(member.about.text);
    const std::string quantity = describe::quantityText(member.about.quantity);
    if (!quantity.empty()) text += " [" + quantity + "]";
    std::cout << "      [id(" << id_ << ")" << (kind.empty() ? "" : ", ") << kind << ", helpstring("
              << quoted(text) << ")]\n        "
              << (member.about.isDate && result == "double" ? "DATE" : result) << " " << member.name
              << "(" << dated(member, parameters) << ");\n";
  }

  template <class Member>
  static std::string dated(const Member& member, std::string parameters) {
    const std::string number = "[in] double value";
    const auto at = parameters.find(number);
    if (member.about.isDate && at != std::string::npos) {
      parameters.replace(at, number.size(), "[in] DATE value");
    }
    return parameters;
  }

  std::int32_t id_ = 0;
};

template <class E>
void showEnumeration() {
  std::cout << "\n  typedef [helpstring(" << quoted(describe::Description<E>::text) << ")]\n  enum "
            << describe::Description<E>::name << " {";
  const char* separator = "\n";
  describe::forMembers<E>([&](const auto& member) {
    std::cout << separator << "    " << member.name << " = "
              << static_cast<std::int32_t>(member.value);
    separator = ",\n";
  });
  std::cout << "\n  } " << describe::Description<E>::name << ";\n";
}

void showControl() {
  std::cout << "\n  [uuid(" << identifier(interfaceIdentifier(kControlNumber))
            << "), hidden]\n  dispinterface _AQ_Data {\n    properties:\n    methods:\n  };\n\n  "
               "[uuid("
            << identifier(classIdentifier(kControlNumber))
            << "), control, helpstring(\"Shows on a form that the library is available\")]\n  "
               "coclass AQ_Data {\n    [default] dispinterface _AQ_Data;\n  };\n";
}

void showLibrary() {
  std::cout
      << "// Generated from the description of the object model by the target `component_idl`. It "
         "is\n// committed as a record: identifiers and numbers of members are only ever added.\n\n"
         "import \"oaidl.idl\";\n\n[uuid("
      << identifier(kTypeLibraryIdentifier) << "), version(" << kMajorVersion << "."
      << kMinorVersion << "), helpstring(\"" << kServer << " " << kMajorVersion << "."
      << kMinorVersion << "\")]\nlibrary " << kServer << " {\n  importlib(\"stdole2.tlb\");\n\n";
  forClasses([]<class C>() { std::cout << "  dispinterface _" << className<C>() << ";\n"; });
  forEnumerations([]<class E>() { showEnumeration<E>(); });
  forClasses([]<class C>() { Interface<C>(); });
  showControl();
  std::cout << "};\n";
}

}  // namespace
}  // namespace aq::com

int main() { aq::com::showLibrary(); }

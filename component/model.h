#pragma once

#include <aq/aq.h>
#include <aq/describe/core.h>
#include <aq/describe/files.h>
#include <aq/describe/geometry.h>
#include <aq/describe/headers.h>
#include <aq/describe/masking.h>
#include <aq/describe/noise.h>
#include <aq/describe/spectral.h>

#include <array>
#include <concepts>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>

// The object model as the component's hosts see it: the names, identifiers and numbers of classes
// and members. They are compiled into hosts, so they never change; new ones get the next number.

namespace aq::com {

namespace describe = aq::describe;

inline constexpr std::string_view kServer = "AQ_Data_Control";  // the first part of a ProgID
inline constexpr int kMajorVersion = 1;
inline constexpr int kMinorVersion = 0;

/// The first part of every identifier is this base plus a number; the rest is the same for all.
inline constexpr std::uint32_t kIdentifierBase = 0x073f3d40;
inline constexpr std::string_view kIdentifierRest = "-4a90-4a24-9e5e-a2d82603c1af";

inline constexpr int kTypeLibraryIdentifier = 0;
[[nodiscard]] constexpr int interfaceIdentifier(int classNumber) { return 2 * classNumber; }
[[nodiscard]] constexpr int classIdentifier(int classNumber) { return 2 * classNumber + 1; }
/// The identifier by which the component recognises its own objects.
inline constexpr int kOwnIdentifier = 999;

// Members are numbered by their position in the description, from 1.
inline constexpr std::int32_t kDefaultMember = 0;
inline constexpr std::int32_t kEnumerator = -4;  // hidden, since hosts ask for it by number
/// Members that only the component has start at this number.
inline constexpr std::int32_t kFirstExtra = 101;

/// The name of the argument of a collection's `Add`, as in hosts' own collections.
inline constexpr std::string_view kEntryName = "Item";

/// The library's functions, as the members of one class. Each library folder has 20 member numbers;
/// a new folder gets the next 20.
struct Library {};
inline constexpr std::int32_t kFunctionsOfAFolder = 20;
inline constexpr aq::describe::List<aq::describe::CoreFunctions, aq::describe::FileFunctions,
                                    aq::describe::NoiseFunctions, aq::describe::SpectralFunctions>
    kFunctions;
template <class... Folders>
constexpr std::int32_t folderCount(const aq::describe::List<Folders...>& /*folders*/) {
  return sizeof...(Folders);
}
static_assert(folderCount(kFunctions) * kFunctionsOfAFolder < kFirstExtra);
inline constexpr int kControlNumber = 90;

}  // namespace aq::com

namespace aq::describe {

template <>
struct Description<com::Library> {
  static constexpr char name[] = "AQ_Library";
  static constexpr int number = 91;
  static constexpr char text[] = "Functions for files and for objects of several classes";
  template <class To>
  static void members(To& /*to*/) {}
};

}  // namespace aq::describe

namespace aq::com {

template <class T>
inline constexpr bool isCollection = false;
template <class T>
inline constexpr bool isCollection<Collection<T>> = true;

/// Whether hosts can create objects of a class. Objects of the classes named here come only from
/// the library.
template <class C>
inline constexpr bool isCreatable =
    !std::same_as<C, FileFailure> && !std::same_as<C, ToneStep> &&
    !std::same_as<C, ToneCorrection> && !std::same_as<C, NoiseEvent> &&
    !std::same_as<C, MetricDifference>;

/// The name of a class, always with the prefix.
template <class C>
[[nodiscard]] std::string className() {
  const std::string name = describe::Description<C>::name;
  return name.starts_with("AQ_") ? name : "AQ_" + name;
}

/// Calls `visit.operator()<C>()` for each class that hosts know.
template <class Visit>
void forClasses(const Visit& visit) {
  const auto numbered = [&]<class C>() {
    if constexpr (requires { describe::Description<C>::number; }) visit.template operator()<C>();
  };
  describe::forClasses(describe::kCoreClasses, numbered);
  describe::forClasses(describe::kSpectralClasses, numbered);
  describe::forClasses(describe::kMaskingClasses, numbered);
  describe::forClasses(describe::kGeometryClasses, numbered);
  describe::forClasses(describe::kNoiseClasses, numbered);
  describe::forClasses(describe::kHeaders, numbered);
  describe::forClasses(describe::kFileClasses, numbered);
  visit.template operator()<Library>();
}

/// Calls `visit.operator()<E>()` for each enumeration that hosts know: all except the error codes,
/// since hosts have their own error numbers.
template <class Visit>
void forEnumerations(const Visit& visit) {
  describe::forClasses(describe::kEnumerations, [&]<class E>() {
    if constexpr (!std::same_as<E, ErrorCode>) visit.template operator()<E>();
  });
}

/// Calls `visit(id, member)` for each member in the description of a class. Throws if there are
/// more members than numbers for them.
template <class C, class Visit>
void forMembers(const Visit& visit) {
  std::int32_t id = 0;
  std::int32_t end = kFirstExtra;
  const auto numbered = [&](const auto& member) {
    if (++id >= end) throw std::length_error("more members than numbers");
    const bool isDefault = isCollection<C> && std::string_view(member.name) == "Item";
    visit(isDefault ? kDefaultMember : id, member);
  };
  if constexpr (std::same_as<C, Library>) {
    end = 1;
    describe::forClasses(kFunctions, [&]<class Functions>() {
      id = end - 1;
      end += kFunctionsOfAFolder;
      describe::forMembers<Functions>(numbered);
    });
  } else {
    describe::forMembers<C>(numbered);
  }
}

/// Whether For Each can visit the entries of an object of the class.
template <class C>
inline constexpr bool isSeries = std::same_as<C, AQ_EmtRcvTable> || requires(const C& object) {
  object.begin();
};

/// A member that only the component has.
struct Extra {
  std::string_view owner;
  const char* name;
  std::int32_t id;
  std::string_view type;        ///< as IDL
  std::string_view parameters;  ///< as IDL
  bool isProperty;
  bool isSet;  ///< whether the property can be set
  std::string_view text;
};

inline constexpr std::array kExtras{
    Extra{
        "AQ_SpectralTimeHistory", "Levels", kFirstExtra, "VARIANT", "", true, true,
        "All levels in dB as an array, records by bands, from LoRec and the lowest band up; Empty "
        "for a missing level, and setting Empty leaves a level unchanged"},
    Extra{"AQ_SpectralTimeHistory", "MetricTable", kFirstExtra + 1, "VARIANT",
          "[in] AQ_METRIC_TYPE aqMetric", true, false,
          "One metric of all records as an array, from LoRec up; Empty where it is not set"},
    Extra{"AQ_MaskMap", "MaskStrings", kFirstExtra, "VARIANT", "", true, true,
          "All decisions as two-letter strings in an array, records by bands, both from the lowest "
          "up; Empty for a band without a decision, and setting Empty leaves a decision unchanged"},
    Extra{"AQ_PositionTimeHistory", "Table", kFirstExtra, "VARIANT", "", true, false,
          "All positions as an array: seconds after midnight, X, Y, Z"},
    Extra{
        "AQ_GeometryTimeHistory", "Table", kFirstExtra, "VARIANT", "", true, false,
        "All points as an array: record, Tm, Te (seconds after midnight), Tprope, Xe, Ye, Ze, SRe, "
        "THETAe, BETAe"},
    Extra{"AQ_Library", "Version", kFirstExtra, "BSTR", "", true, false,
          "The library's version, such as 0.1.0"},
    Extra{"AQ_Library", "checkFile", kFirstExtra + 1, "_AQ_Collection*", "[in] BSTR path", false,
          false, "The findings about a file, one string for each"},
    Extra{"AQ_Library", "checkFixes", kFirstExtra + 2, "_AQ_Collection*",
          "[in] BSTR path, [in] unsigned char limit", false, false,
          "The fixes of a tracking file that a reader with this RT20Limit drops, one string for "
          "each"},
    Extra{"AQ_Library", "checkFit", kFirstExtra + 3, "_AQ_Collection*",
          "[in] BSTR historyPath, [in] BSTR mapPath", false, false,
          "Why a masking map does not fit its history, one string for each finding"},
};

/// Whether a function with this result and these arguments can be called through the component. One
/// that takes or returns a file information service cannot, since hosts have none.
template <class... T>
inline constexpr bool isShown =
    (... && !std::same_as<std::remove_cvref_t<T>, std::shared_ptr<FileInformation>>);

}  // namespace aq::com

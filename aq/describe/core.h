#pragma once

#include "aq/core/band_label.h"
#include "aq/core/collection.h"
#include "aq/core/file_failure.h"
#include "aq/core/file_information.h"
#include "aq/core/time.h"
#include "aq/describe/enumerations.h"

namespace aq::describe {

template <>
struct Description<AQ_Time> {
  static constexpr char name[] = "AQ_Time";
  static constexpr int number = 1;
  static constexpr char text[] =
      "A time stamp: a calendar date, a time of day and a time relative to a reference; setting "
      "one of the two times leaves the other unchanged";
  template <class To>
  static void members(To& to) {
    using T = AQ_Time;
    to.method("Copy", &T::Copy,
              "A new time with the same values; a time of day above 86400 s is wrapped into the "
              "next day")
        .property("RelSeconds", &T::RelSeconds, &T::RelSeconds,
                  "The time relative to a reference time", kSeconds)
        .setter("setRelTime", &T::setRelTime,
                "Sets RelSeconds to the time since a reference, including the days in between; "
                "raises if those days, in seconds, do not fit in 32 bits",
                in("reference", "The reference time"))
        .method("TODnumbers", &T::TODnumbers,
                "Sets the time of day from three numbers, each in single precision; does not check "
                "the range, but raises for a number that is not finite or too large for single "
                "precision",
                in("Hours", "Hours", Quantity{"h"}), in("Minutes", "Minutes", Quantity{"min"}),
                in("Seconds", "Seconds", kSeconds))
        .property("TODseconds", &T::TODseconds, &T::TODseconds,
                  "The time of day, counted from midnight; a value above 86400 s wraps into the "
                  "next day. Raises for a value that is not finite",
                  kSecondsOfDay)
        .property("WorkingTime", &T::WorkingTime,
                  "RelSeconds or TODseconds, as chosen by setWorkingTime", kSeconds)
        .form("TODstring", &T::TODstring, &T::TODstring,
              "The time of day as hh:mm:ss, with a fraction if there is one, as in 12:34:56.5; "
              "reading raises unless the time is at least 0 and below 90000 s; setting raises if "
              "the text has fewer than two colons or a number too large for single precision")
        .property("CurrentDate", &T::CurrentDate, &T::CurrentDate,
                  "The calendar date; 0 means not set", Date{})
        .setter("setWorkingTime", &T::setWorkingTime, "Chooses the time that WorkingTime returns",
                in("mode", "The time to return; initially the time of day"));
  }
};

/// The argument of a collection's `Add`, with a unit if the collection holds numbers.
template <class T>
constexpr auto valueOf(const char* text) {
  if constexpr (isNumber<T>) {
    return in("value", text, Quantity{"unit of the column"});
  } else {
    return in("value", text);
  }
}

template <class T>
struct Description<Collection<T>> {
  static constexpr char name[] = "Collection";
  static constexpr int number = 2;
  static constexpr char text[] =
      "An ordered list of values, numbered from 1; each may have a text key";
  template <class To>
  static void members(To& to) {
    using L = Collection<T>;
    to.method("Add", static_cast<void (L::*)(T, std::string_view)>(&L::Add),
              "Appends a value; raises for a duplicate key", valueOf<T>("The new entry"),
              optionally("key", "The key of the new entry"))
        .keyed("Item", static_cast<const T& (L::*)(std::int32_t) const>(&L::Item),
               static_cast<const T& (L::*)(std::string_view) const>(&L::Item),
               "The entry with this index, from 1 to Count, or this key; raises if there is none")
        .property("Count", &L::Count, "The number of entries", kRecords)
        .keyed("Remove", static_cast<void (L::*)(std::int32_t)>(&L::Remove),
               static_cast<void (L::*)(std::string_view)>(&L::Remove),
               "Removes the entry with this index or key; raises if there is none")
        .method("contains", &L::contains, "Whether there is an entry with this key",
                in("key", "The key"));
  }
};

template <>
struct Description<FileFailure> {
  static constexpr char name[] = "FileFailure";
  static constexpr int number = 3;
  static constexpr char text[] = "Why reading or writing a file failed";
  template <class To>
  static void members(To& to) {
    using F = FileFailure;
    to.field("file", &F::file, "The file, as the caller named it", FileName{})
        .field("line", &F::line, "The line, counted from 1; 0 for the whole file",
               Quantity{"line", 0})
        .field("field", &F::field, "The field, counted from 1; 0 for the whole line",
               Quantity{"field", 0})
        .field("expected", &F::expected, "What was expected, for example a level")
        .field("found", &F::found, "What was found; text from the file is in quotes")
        .method("message", &F::message, "The whole failure as one line of text");
  }
};

template <>
struct Description<FileInformation> {
  static constexpr char name[] = "FileInformation";
  static constexpr char text[] =
      "A service that supplies the file names and dates that writers record; a host may install "
      "its own";
  template <class To>
  static void members(To& to) {
    using I = FileInformation;
    to.method("recordedName", &I::recordedName,
              "The name under which writers record a file; the default service drops the folder",
              in("path", "The name of the file", FileName{}))
        .method("fileDateTime", &I::fileDateTime,
                "When a file was last changed, as mm/dd/yyyy,hh:mm:ss; if that is unknown, the "
                "default service gives the current date and time",
                in("path", "The name of the file", FileName{}))
        .method("currentDateTime", &I::currentDateTime,
                "The current date and time, as mm/dd/yyyy,hh:mm:ss");
  }
};

/// The functions of `aq/core`.
struct CoreFunctions;

template <>
struct Description<CoreFunctions> {
  static constexpr char name[] = "core";
  template <class To>
  static void members(To& to) {
    to.function(
          "bandLabel", &bandLabel,
          about("The column heading of a band: its number and nominal frequency, as in B17/50Hz; "
                "raises for a band outside 2 to 50"),
          in("band", "The band", kBand))
        .function("fileInformation", &fileInformation, about("The file information service in use"))
        .function(
            "setFileInformation", &setFileInformation,
            about("Installs a file information service, or restores the default if given none"),
            in("information", "The service"));
  }
};

inline constexpr List<AQ_Time, Collection<std::string>, FileFailure, FileInformation> kCoreClasses;

}  // namespace aq::describe

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
      "The time stamp of a record: a calendar date, a time of day and a time relative to a "
      "reference, independent of each other";
  template <class To>
  static void members(To& to) {
    using T = AQ_Time;
    to.method("Copy", &T::Copy, "A new time with the same values")
        .property("RelSeconds", &T::RelSeconds, &T::RelSeconds,
                  "The time relative to a reference time", kSeconds)
        .setter("setRelTime", &T::setRelTime,
                "Makes RelSeconds the time since a reference, days between included",
                in("reference", "The reference time"))
        .method("TODnumbers", &T::TODnumbers,
                "Sets the time of day from three numbers, each of single precision",
                in("Hours", "Hours", Quantity{"h"}), in("Minutes", "Minutes", Quantity{"min"}),
                in("Seconds", "Seconds", kSeconds))
        .property("TODseconds", &T::TODseconds, &T::TODseconds,
                  "The time of day, from midnight; above 86400 it wraps into the next day",
                  kSecondsOfDay)
        .property("WorkingTime", &T::WorkingTime,
                  "RelSeconds or TODseconds, whichever setWorkingTime chose", kSeconds)
        .form("TODstring", &T::TODstring, &T::TODstring,
              "The time of day as hh:mm:ss and a fraction, as in 12:34:56.5")
        .property("CurrentDate", &T::CurrentDate, &T::CurrentDate, "The calendar date", Date{})
        .setter("setWorkingTime", &T::setWorkingTime, "Chooses the time that WorkingTime gives",
                in("mode", "Which time; the time of day at first"));
  }
};

/// A value of a collection, which is a number in some.
template <class T>
constexpr auto valueOf(const char* text) {
  if constexpr (isNumber<T>) {
    return in("value", text, Quantity{"that of the list"});
  } else {
    return in("value", text);
  }
}

template <class T>
struct Description<Collection<T>> {
  static constexpr char name[] = "Collection";
  static constexpr int number = 2;
  static constexpr char text[] =
      "An ordered list of values, counted from 1, whose entries may have a text key";
  template <class To>
  static void members(To& to) {
    using L = Collection<T>;
    to.method("Add", static_cast<void (L::*)(T, std::string_view)>(&L::Add),
              "Appends a value; a key that is taken raises", valueOf<T>("The new entry"),
              optionally("key", "Its key"))
        .keyed("Item", static_cast<const T& (L::*)(std::int32_t) const>(&L::Item),
               static_cast<const T& (L::*)(std::string_view) const>(&L::Item),
               "The entry at a place, from 1 to Count, or with a key")
        .property("Count", &L::Count, "The number of entries", kRecords)
        .keyed("Remove", static_cast<void (L::*)(std::int32_t)>(&L::Remove),
               static_cast<void (L::*)(std::string_view)>(&L::Remove),
               "Removes the entry at a place or with a key")
        .method("contains", &L::contains, "Whether an entry has a key", in("key", "The key"));
  }
};

template <>
struct Description<FileFailure> {
  static constexpr char name[] = "FileFailure";
  static constexpr int number = 3;
  static constexpr char text[] = "Why a read or a write of a file failed";
  template <class To>
  static void members(To& to) {
    using F = FileFailure;
    to.field("file", &F::file, "The file, as the caller named it", FileName{})
        .field("line", &F::line, "The line, from 1; 0 when it is the whole file",
               Quantity{"line", 0})
        .field("field", &F::field, "The field, from 1; 0 when it is the whole line",
               Quantity{"field", 0})
        .field("expected", &F::expected, "What was expected, as in: a level")
        .field("found", &F::found, "What was found; text of the file is in quotes")
        .method("message", &F::message, "All of it in one line");
  }
};

template <>
struct Description<FileInformation> {
  static constexpr char name[] = "FileInformation";
  static constexpr char text[] =
      "What the writers record of files: names and dates. A host may put its own in force";
  template <class To>
  static void members(To& to) {
    using I = FileInformation;
    to.method("recordedName", &I::recordedName, "The name under which a file is recorded",
              in("path", "The name of the file", FileName{}))
        .method("fileDateTime", &I::fileDateTime,
                "When a file was last changed, as mm/dd/yyyy,hh:mm:ss",
                in("path", "The name of the file", FileName{}))
        .method("currentDateTime", &I::currentDateTime, "Now, as mm/dd/yyyy,hh:mm:ss");
  }
};

/// Functions of the room.
struct CoreFunctions;

template <>
struct Description<CoreFunctions> {
  static constexpr char name[] = "core";
  template <class To>
  static void members(To& to) {
    to.function("bandLabel", &bandLabel,
                about("The column heading of a band: number and nominal frequency, B17/50Hz"),
                in("band", "The band", kBand))
        .function("fileInformation", &fileInformation,
                  about("The file information service in force"))
        .function("setFileInformation", &setFileInformation,
                  about("Puts a file information service in force; none, the default again"),
                  in("information", "The service"));
  }
};

inline constexpr List<AQ_Time, Collection<std::string>, FileFailure, FileInformation> kCoreClasses;

}  // namespace aq::describe

#pragma once

#include "aq/describe/description.h"
#include "aq/files/data_ascii.h"
#include "aq/files/data_hp3565.h"
#include "aq/files/data_ini.h"
#include "aq/files/data_spc.h"
#include "aq/files/data_ssr.h"
#include "aq/files/data_sth.h"
#include "aq/files/file_kind.h"
#include "aq/geometry/data_gth.h"
#include "aq/geometry/data_mic.h"
#include "aq/geometry/data_pth.h"
#include "aq/geometry/data_tspi.h"
#include "aq/masking/data_mask.h"

// The file classes. Most of their functions take the file name first, then the header and the
// content.

namespace aq::describe {

inline constexpr auto kPath = in("sFileName", "The name of the file", FileName{});
inline constexpr auto kHeaderIn = in("aqHeader", "The file's header; the call sets its file name");
inline constexpr auto kHeaderOut = in("aqHeader", "Receives a new header");
inline constexpr auto kResult = in("result", "Receives the outcome");
inline constexpr char kWrites[] =
    "Writes a file, replacing an existing one; raises for data that the format cannot hold. A "
    "failure leaves the disk unchanged";
inline constexpr char kReads[] = "Reads a file into a new header and a new object";

template <>
struct Description<FileKind> {
  static constexpr char name[] = "FileKind";
  static constexpr char text[] = "The kinds of file that the library recognises";
  template <class To>
  static void members(To& to) {
    to.member("SpectralTimeHistory", FileKind::SpectralTimeHistory,
              "Levels of a measurement's records")
        .member("PositionTimeHistory", FileKind::PositionTimeHistory, "Positions of a source")
        .member("MicrophonePosition", FileKind::MicrophonePosition, "The position of a microphone")
        .member("GeometricTimeHistory", FileKind::GeometricTimeHistory,
                "Emission geometry of a measurement's records")
        .member("MaskingMap", FileKind::MaskingMap, "Masking decisions for a measurement's records")
        .member("VariableInitialization", FileKind::VariableInitialization,
                "Processing parameters of an analysis")
        .member("SpectrumRecord", FileKind::SpectrumRecord,
                "One spectrum, such as that of the ambient")
        .member("Tracking", FileKind::Tracking, "Position fixes from a tracking system")
        .member("Unknown", FileKind::Unknown, "Another kind of file, or one that cannot be read")
        .member("FixedColumnHistory", FileKind::FixedColumnHistory,
                "Levels of a measurement's records, in fixed columns")
        .member("AnalyzerRecording", FileKind::AnalyzerRecording, "An analyzer recording");
  }
};

template <>
struct Description<AQ_DataSTH> {
  static constexpr char name[] = "AQ_DataSTH";
  static constexpr int number = 71;
  static constexpr char text[] = "Reads and writes spectral time history files";
  template <class To>
  static void members(To& to) {
    using F = AQ_DataSTH;
    to.method("writeFile", &F::writeFile, kWrites, kPath, kHeaderIn,
              in("aqTimeHistory", "The history; records LoRec to HiRec are written"))
        .method("readFile", &F::readFile, kReads, kPath, kHeaderOut,
                in("STH", "Receives a new history"))
        .method(
            "getRawHeader", &F::getRawHeader,
            "Reads the header's lines, unchanged, without the column headings; returns false if "
            "the file cannot be read, is of another kind or ends with the headings",
            kPath, in("colHeader", "Receives the lines"))
        .lastFailure();
  }
};

template <>
struct Description<AQ_DataMask> {
  static constexpr char name[] = "AQ_DataMask";
  static constexpr int number = 72;
  static constexpr char text[] = "Reads and writes masking map files";
  template <class To>
  static void members(To& to) {
    using F = AQ_DataMask;
    to.method("writeFile", &F::writeFile, kWrites, kPath, kHeaderIn,
              in("aqMaskMap", "The map; rows 1 to Count are written"))
        .method("readFile", &F::readFile, kReads, kPath, kHeaderOut,
                in("MaskMap",
                   "Receives a new map; if a row cannot be read, the map has the rows before it"))
        .lastFailure();
  }
};

template <>
struct Description<AQ_DataPTH> {
  static constexpr char name[] = "AQ_DataPTH";
  static constexpr int number = 73;
  static constexpr char text[] = "Reads and writes position time history files";
  template <class To>
  static void members(To& to) {
    using F = AQ_DataPTH;
    to.method("writeFile", &F::writeFile, kWrites, kPath, kHeaderIn,
              in("aqTimeHistory", "The positions"), kResult)
        .method("readFile", &F::readFile, kReads, kPath, kHeaderOut,
                in("PTH", "Receives the positions as a new history"), kResult)
        .lastFailure();
  }
};

template <>
struct Description<AQ_DataTSPI> {
  static constexpr char name[] = "AQ_DataTSPI";
  static constexpr int number = 74;
  static constexpr char text[] = "Reads tracking files. Positions of poor quality are dropped";
  template <class To>
  static void members(To& to) {
    using F = AQ_DataTSPI;
    to.method("readFile", &F::readFile,
              "Reads a file into a new history, with positions numbered from 1", kPath,
              in("PTH", "Receives the positions as a new history"), kResult)
        .property("RT20Limit", &F::RT20Limit, &F::RT20Limit,
                  "The highest quality figure to accept; 0 is the best",
                  Quantity{"quality figure", 0, 255})
        .property("nBadPositions", &F::nBadPositions,
                  "Number of positions that the last read dropped", kRecords)
        .lastFailure();
  }
};

template <>
struct Description<AQ_DataMIC> {
  static constexpr char name[] = "AQ_DataMIC";
  static constexpr int number = 75;
  static constexpr char text[] = "Reads microphone position files";
  template <class To>
  static void members(To& to) {
    using F = AQ_DataMIC;
    to.method("readFile", &F::readFile, "Reads a file into a new header and an existing microphone",
              kPath, kHeaderOut, in("MIC", "The microphone to fill"), kResult)
        .lastFailure();
  }
};

template <>
struct Description<AQ_DataGTH> {
  static constexpr char name[] = "AQ_DataGTH";
  static constexpr int number = 76;
  static constexpr char text[] = "Reads and writes geometric time history files";
  template <class To>
  static void members(To& to) {
    using F = AQ_DataGTH;
    to.method("writeFile", &F::writeFile, kWrites, kPath, kHeaderIn,
              in("aqTimeHistory", "The history; points 1 to Count are written"), kResult)
        .method("readFile", &F::readFile, kReads, kPath, kHeaderOut,
                in("GTH", "Receives the points as a new history"), kResult)
        .lastFailure();
  }
};

template <>
struct Description<AQ_DataSSR> {
  static constexpr char name[] = "AQ_DataSSR";
  static constexpr int number = 77;
  static constexpr char text[] = "Reads and writes spectrum record files";
  template <class To>
  static void members(To& to) {
    using F = AQ_DataSSR;
    using Reads = AQ_DataMessage (F::*)(const std::string&, std::shared_ptr<AQ_Spectrum>&,
                                        std::shared_ptr<AQ_HeaderSSR>&);
    to.method("writeFile", &F::writeFile, kWrites, kPath, kHeaderIn,
              in("spectrum", "The spectrum; every band of its range must have a level"))
        .method("readFile", static_cast<Reads>(&F::readFile), kReads, kPath,
                in("specNew", "Receives a new spectrum"),
                optionally("ssrHeader", "Receives a new header"))
        .lastFailure();
  }
};

template <>
struct Description<AQ_DataSPC> {
  static constexpr char name[] = "AQ_DataSPC";
  static constexpr int number = 80;
  static constexpr char text[] = "Writes and reads fixed-column spectral time histories";
  template <class To>
  static void members(To& to) {
    using F = AQ_DataSPC;
    to.method("setHeader", &F::setHeader, "Sets the header to write; reading a file replaces it",
              in("aqHeader", "The header; without one, the header fields of a file are empty"))
        .property("RecordLength", &F::RecordLength, &F::RecordLength,
                  "Time from one record to the next, initially 0.5 s; reading a file sets it. "
                  "Raises unless the value is above 0 and below 1000 s",
                  Quantity{"s", 0, 1000})
        .property("NumberFirstRecord", &F::NumberFirstRecord, &F::NumberFirstRecord,
                  "First record to write; 0 means the history's first. Reading a file sets it",
                  kRecord)
        .property("NumberLastRecord", &F::NumberLastRecord, &F::NumberLastRecord,
                  "Last record to write; 0 means the history's last. Reading a file sets it",
                  kRecord)
        .property("BandLow", &F::BandLow, &F::BandLow,
                  "Lowest band to write; 0 means the lowest in the records written. Reading a file "
                  "sets it",
                  Quantity{"band", 0, 50})
        .property(
            "BandHigh", &F::BandHigh, &F::BandHigh,
            "Highest band to write; 0 means the highest in the records written. Reading a file "
            "sets it",
            Quantity{"band", 0, 50})
        .method("writeFile", &F::writeFile, kWrites, kPath,
                in("aqTimeHistory", "The history; the chosen records and bands are written"))
        .method("readFile", &F::readFile, kReads, kPath, kHeaderOut,
                in("STH", "Receives a new history"))
        .lastFailure();
  }
};

template <>
struct Description<AQ_DataASCII> {
  static constexpr char name[] = "AQ_DataASCII";
  static constexpr int number = 78;
  static constexpr char text[] =
      "Reads and writes any delimited text file as lines or as lines of fields";
  template <class To>
  static void members(To& to) {
    using F = AQ_DataASCII;
    to.method("readFields", &F::readFields, "Reads a file into new Fields, one entry per line",
              kPath)
        .method("readLines", &F::readLines, "Reads a file into new Lines", kPath)
        .property("Fields", &F::Fields, &F::Fields, "The lines of a file, each a list of fields")
        .property("Lines", &F::Lines, &F::Lines, "The lines of a file")
        .method("writeFields", &F::writeFields, "Writes Fields, replacing the file", kPath)
        .method("appendFields", &F::appendFields, "Appends Fields to the file", kPath)
        .method("writeLines", &F::writeLines, "Writes Lines, replacing the file", kPath)
        .method("appendLines", &F::appendLines, "Appends Lines to the file", kPath)
        .setter("Delimiter", &F::Delimiter, "The text between fields, initially a comma",
                in("text", "The delimiter; if empty, lines are not split"))
        .setter(
            "CommentFields", &F::CommentFields,
            "Whether fields may be in double quotes, with delimiters inside; set Delimiter first. "
            "If true, appendFields quotes every field",
            in("quoted", "True if fields may be in quotes; initially false"))
        .lastFailure();
  }
};

template <>
struct Description<AQ_DataINI> {
  static constexpr char name[] = "AQ_DataINI";
  static constexpr int number = 79;
  static constexpr char text[] =
      "The processing parameters of an analysis, and the file that holds them";
  template <class To>
  static void members(To& to) {
    using F = AQ_DataINI;
    to.method("writeFile", &F::writeFile,
              "Writes the parameters that are set, replacing the file; raises for a number that is "
              "not finite",
              kPath)
        .method("readFile", &F::readFile,
                "Reads parameters; those that the file does not name keep their values, except "
                "NuAvg and NuTimg, which are unset first. Comments are added to the existing ones",
                kPath)
        .property("CalAdj", &F::CalAdj, &F::CalAdj, "Calibration adjustment; 0 is not written",
                  kDecibels, Key{"calibration_adjustment_db"})
        .property("NuAvg", &F::NuAvg, &F::NuAvg, "Averaging method; AQ_NA when not set",
                  Key{"averaging"})
        .property("PrWndo", &F::PrWndo, &F::PrWndo, "Window before the event; 0 is not written",
                  kSeconds, Key{"window_before_s"})
        .property("PoWndo", &F::PoWndo, &F::PoWndo, "Window after the event; 0 is not written",
                  kSeconds, Key{"window_behind_s"})
        .property("NuTimg", &F::NuTimg, &F::NuTimg,
                  "Timing convention; 99, which is not a member of the enumeration, when not set",
                  Key{"time_stamp"})
        .property("LoRec", &F::LoRec, &F::LoRec, "First record of the analysis; 0 is not written",
                  kRecord, Key{"low_record"})
        .property("HiRec", &F::HiRec, &F::HiRec, "Last record of the analysis; 0 is not written",
                  kRecord, Key{"high_record"})
        .property("FileName", &F::FileName, &F::FileName,
                  "The file's name, written as the file information service names it", FileName{},
                  Key{"file_name"})
        .property("FileDate", &F::FileDate,
                  "The date and time in the last file read that gives them; the writer uses the "
                  "current ones instead",
                  Key{"file_date"})
        .property("Comments", &F::Comments, &F::Comments, "Comments, one per line", Key{"comments"})
        .lastFailure();
  }
};

/// The functions of `aq/files`.
struct FileFunctions;

template <>
struct Description<FileFunctions> {
  static constexpr char name[] = "files";
  template <class To>
  static void members(To& to) {
    to.function("kindOfFile", &kindOfFile, about("The kind of a file, judged by its first lines"),
                in("path", "The name of the file", FileName{}));
  }
};

template <>
struct Description<AQ_DataHP3565> {
  static constexpr char name[] = "AQ_DataHP3565";
  static constexpr int number = 81;
  static constexpr char text[] = "Reads analyzer recordings as spectral time histories";
  template <class To>
  static void members(To& to) {
    using F = AQ_DataHP3565;
    to.method("readDirectory", &F::readDirectory,
              "Lists the files in an analyzer's folder; ignores the case of their names",
              in("sDirectory", "The folder", FileName{}),
              in("colIndex", "Receives the names that begin with INDEX"),
              in("colTimeDat", "Receives the names that begin with TIMEDAT"),
              in("colRecordings", "Receives the other names that end in .DAT"))
        .method(
            "DAT_to_ASC", &F::DAT_to_ASC, "Writes a recording as a text file",
            in("sDatFile", "The recording", FileName{}),
            in("sAscFile", "The text file, replaced if it exists; a recording is never replaced",
               FileName{}))
        .method("ParseASC", &F::ParseASC, "Reads a recording from a text file",
                in("sAscFile", "The text file", FileName{}), kHeaderOut,
                in("STH", "Receives a new history"))
        .method("readFile", &F::readFile, kReads, in("sDatFile", "The recording", FileName{}),
                kHeaderOut, in("STH", "Receives a new history"))
        .property(
            "SDFPRINT", &F::SDFPRINT, &F::SDFPRINT,
            "The path of an external converter that DAT_to_ASC runs; empty for the built-in one",
            FileName{})
        .property("Channel", &F::Channel, &F::Channel,
                  "The trace to read from each scan, counted from 1", Quantity{"index", 1, 32767})
        .property(
            "RecordLength", &F::RecordLength, &F::RecordLength,
            "Time from one record to the next if scans have no times; raises for a value that "
            "is not finite or not above 0",
            kSeconds)
        .property("CalAdj", &F::CalAdj, &F::CalAdj,
                  "Calibration added to every level; raises for a value that is not finite",
                  kDecibels)
        .lastFailure();
  }
};

inline constexpr List<AQ_DataSTH, AQ_DataMask, AQ_DataSSR, AQ_DataPTH, AQ_DataTSPI, AQ_DataMIC,
                      AQ_DataGTH, AQ_DataINI, AQ_DataSPC, AQ_DataHP3565, AQ_DataASCII>
    kFileClasses;

}  // namespace aq::describe

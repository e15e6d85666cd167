#pragma once

#include "aq/describe/description.h"
#include "aq/files/header_ssr.h"
#include "aq/files/header_sth.h"
#include "aq/geometry/header_gth.h"
#include "aq/geometry/header_mic.h"
#include "aq/geometry/header_pth.h"
#include "aq/masking/header_mask.h"

// File headers. A field that several of them share is described only once.

namespace aq::describe {

inline constexpr auto kFileType =
    about("The title in the first line of the file; set on reading, ignored on writing");
inline constexpr auto kName =
    about("The file's name, written as the file information service names it", FileName{},
          Key{"file_name"});
inline constexpr auto kDateTime =
    about("The file's date and time, as read; the writer uses the current ones instead",
          Key{"file_date"});
inline constexpr auto kProject = about("The project", Key{"project"});
inline constexpr auto kMicrophone = about("The name of the microphone", Key{"microphone"});
inline constexpr auto kGeneratedBy =
    about("The program or person that made the file", Key{"generated_by"});
inline constexpr auto kGenerationFile =
    about("The file from which this one was made, written as the file information service names it",
          FileName{}, Key{"generation_file"});
inline constexpr auto kGenerationDateTime = about(
    "The date and time of the generation file, as read; the writer gets them from the file "
    "information service",
    Key{"generation_file_date"});
inline constexpr auto kOtherCount =
    about("Number of other records, as read; recounted on writing", kCount);
inline constexpr auto kOtherRecords =
    about("Other records, one per line, kept but not interpreted", Key{"other_records"});
inline constexpr auto kCommentCount =
    about("Number of comment lines, as read; recounted on writing", kCount);
inline constexpr auto kComments = about("Comments, one per line", Key{"comments"});

template <>
struct Description<AQ_HeaderSTH> {
  static constexpr char name[] = "AQ_HeaderSTH";
  static constexpr int number = 61;
  static constexpr char text[] = "The header of a spectral time history file";
  template <class To>
  static void members(To& to) {
    using H = AQ_HeaderSTH;
    to.field("sAdjustmentCode", &H::sAdjustmentCode,
             "The adjustment applied to the levels, as free text", Key{"adjustment"})
        .field("sGeneratedBy", &H::sGeneratedBy, kGeneratedBy)
        .field("sGenerationFile", &H::sGenerationFile, kGenerationFile)
        .field("aqGenerationDateTime", &H::aqGenerationDateTime, kGenerationDateTime)
        .field("sProjectName", &H::sProjectName, kProject)
        .field("sMicrophoneID", &H::sMicrophoneID, kMicrophone)
        .field("cCommentLines", &H::cCommentLines, kComments)
        .field("cOtherRecords", &H::cOtherRecords, kOtherRecords)
        .field("sFileName", &H::sFileName, kName)
        .field("aqFileDateTime", &H::aqFileDateTime, kDateTime);
  }
};

template <>
struct Description<AQ_HeaderMask> {
  static constexpr char name[] = "AQ_HeaderMask";
  static constexpr int number = 62;
  static constexpr char text[] = "The header of a masking map file";
  template <class To>
  static void members(To& to) {
    using H = AQ_HeaderMask;
    to.field("sFileType", &H::sFileType, kFileType)
        .field("sFileName", &H::sFileName, kName)
        .field("aqFileDateTime", &H::aqFileDateTime, kDateTime)
        .field("lNumberRows", &H::lNumberRows, "Number of rows in the map", kRecords)
        .field("iBandLow", &H::iBandLow,
               "The lowest band of the rows; the writer takes that of the first row", kBand)
        .field("iBandHigh", &H::iBandHigh,
               "The highest band of the rows; the writer takes that of the first row", kBand)
        .field("sGeneratedBy", &H::sGeneratedBy, kGeneratedBy)
        .field("sGenerationFile", &H::sGenerationFile, kGenerationFile)
        .field("aqGenerationDateTime", &H::aqGenerationDateTime, kGenerationDateTime)
        .field("nOtherRecords", &H::nOtherRecords, kOtherCount)
        .field("cOtherRecords", &H::cOtherRecords, kOtherRecords)
        .field("nCommentLines", &H::nCommentLines, kCommentCount)
        .field("cCommentLines", &H::cCommentLines, kComments)
        .field("sColumnLabels", &H::sColumnLabels,
               "The column headings, as read; the writer makes them from the bands");
  }
};

template <>
struct Description<AQ_HeaderSSR> {
  static constexpr char name[] = "AQ_HeaderSSR";
  static constexpr int number = 63;
  static constexpr char text[] = "The header of a spectrum record file";
  template <class To>
  static void members(To& to) {
    using H = AQ_HeaderSSR;
    to.field("cCommentLines", &H::cCommentLines, kComments)
        .field("sFileName", &H::sFileName, kName)
        .field("aqFileDateTime", &H::aqFileDateTime, kDateTime);
  }
};

template <>
struct Description<AQ_HeaderPTH> {
  static constexpr char name[] = "AQ_HeaderPTH";
  static constexpr int number = 64;
  static constexpr char text[] = "The header of a position time history file";
  template <class To>
  static void members(To& to) {
    using H = AQ_HeaderPTH;
    to.field("sFileType", &H::sFileType, kFileType)
        .field("sFileName", &H::sFileName, kName)
        .field("aqFileDateTime", &H::aqFileDateTime, kDateTime)
        .field("sProjectName", &H::sProjectName, kProject)
        .field("sGeneratedBy", &H::sGeneratedBy, kGeneratedBy)
        .field("sTSPIFileName", &H::sTSPIFileName,
               "The tracking file that the positions were made from, written as the file "
               "information service names it",
               FileName{}, Key{"tracking_file"})
        .field("sTSPIFileDateTime", &H::sTSPIFileDateTime,
               "The date and time of the tracking file, as read; the writer gets them from the "
               "file information service",
               Key{"tracking_file_date"})
        .field("lNumberRecords", &H::lNumberRecords, "Number of positions", kRecords)
        .field("nOtherRecords", &H::nOtherRecords, kOtherCount)
        .field("cOtherRecords", &H::cOtherRecords, kOtherRecords)
        .field("nCommentLines", &H::nCommentLines, kCommentCount)
        .field("cCommentLines", &H::cCommentLines, kComments);
  }
};

template <>
struct Description<AQ_HeaderMIC> {
  static constexpr char name[] = "AQ_HeaderMIC";
  static constexpr int number = 65;
  static constexpr char text[] = "The header of a microphone position file";
  template <class To>
  static void members(To& to) {
    using H = AQ_HeaderMIC;
    to.field("sFileType", &H::sFileType, kFileType)
        .field("sFileName", &H::sFileName, kName)
        .field("aqFileDateTime", &H::aqFileDateTime, kDateTime)
        .field("sProjectName", &H::sProjectName, kProject)
        .field("sMicrophoneID", &H::sMicrophoneID, kMicrophone)
        .field("lNumberRecords", &H::lNumberRecords, "Unused: the file has no record count",
               kRecords)
        .field("nOtherRecords", &H::nOtherRecords, kOtherCount)
        .field("cOtherRecords", &H::cOtherRecords, kOtherRecords)
        .field("nCommentLines", &H::nCommentLines, kCommentCount)
        .field("cCommentLines", &H::cCommentLines, kComments);
  }
};

template <>
struct Description<AQ_HeaderGTH> {
  static constexpr char name[] = "AQ_HeaderGTH";
  static constexpr int number = 66;
  static constexpr char text[] =
      "The header of a geometric time history file, which names the three files that the geometry "
      "was computed from";
  template <class To>
  static void members(To& to) {
    using H = AQ_HeaderGTH;
    to.field("FileType", &H::FileType, kFileType)
        .field("GTHFileName", &H::GTHFileName, kName)
        .field("GTHFileDateTime", &H::GTHFileDateTime, kDateTime)
        .field("ProjectName", &H::ProjectName, kProject)
        .field("GeneratedBy", &H::GeneratedBy, kGeneratedBy)
        .field("MicrophoneID", &H::MicrophoneID, kMicrophone)
        .field("MicrophonePosition", &H::MicrophonePosition,
               "The position of the microphone as X, Y and Z", Key{"microphone_position"})
        .field("Temperature", &H::Temperature, "The air temperature", Key{"temperature"},
               Quantity{"degC", -273.15})
        .field("STHFileName", &H::STHFileName,
               "The spectral time history file, written as the file information service names it",
               FileName{}, Key{"history_file"})
        .field("STHFileDateTime", &H::STHFileDateTime,
               "The date and time of the spectral time history file, as read; the writer gets them "
               "from the file information service",
               Key{"history_file_date"})
        .field("PTHFileName", &H::PTHFileName,
               "The position time history file, written as the file information service names it",
               FileName{}, Key{"position_file"})
        .field("PTHFileDateTime", &H::PTHFileDateTime,
               "The date and time of the position time history file, as read; the writer gets them "
               "from the file information service",
               Key{"position_file_date"})
        .field("MICFileName", &H::MICFileName,
               "The microphone position file, written as the file information service names it",
               FileName{}, Key{"microphone_file"})
        .field("MICFileDateTime", &H::MICFileDateTime,
               "The date and time of the microphone position file, as read; the writer gets them "
               "from the file information service",
               Key{"microphone_file_date"})
        .field("NumberRecords", &H::NumberRecords, "Number of points", kRecords)
        .field("OtherRecords", &H::OtherRecords, kOtherCount)
        .field("colOtherRecords", &H::colOtherRecords, kOtherRecords)
        .field("nCommentLines", &H::nCommentLines, kCommentCount)
        .field("colCommentLines", &H::colCommentLines, kComments);
  }
};

inline constexpr List<AQ_HeaderSTH, AQ_HeaderMask, AQ_HeaderSSR, AQ_HeaderPTH, AQ_HeaderMIC,
                      AQ_HeaderGTH>
    kHeaders;

}  // namespace aq::describe

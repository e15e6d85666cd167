#include <aq/text/call_file.h>

#include "binding.h"

namespace aq::python {
namespace {

/// Raises the exception for a failure; it carries what was handed out all the same.
[[noreturn]] void raise(const FileFailure& failure, const py::tuple& partial) {
  const py::object raised = py::module_::import("aq_data.errors")
                                .attr("file_error")(failure.file, failure.line, failure.field,
                                                    failure.expected, failure.found, partial);
  PyErr_SetObject(py::type::handle_of(raised).ptr(), raised.ptr());
  throw py::error_already_set();
}

/// Runs `call(file)` without the interpreter's lock, on a copy of the file object, as two threads
/// may use one.
template <class File, class Call>
[[nodiscard]] AQ_DataMessage unlocked(File& file, const Call& call) {
  File working = file;
  AQ_DataMessage outcome = AQ_DATA_OK;
  {
    const py::gil_scoped_release released;
    outcome = call(working);
  }
  file = std::move(working);
  return outcome;
}

template <class File, class Call>
void runFile(File& file, const Call& call) {
  if (unlocked(file, call) != AQ_DATA_OK) raise(*file.lastFailure(), py::tuple());
}

template <class File>
class BoundFile : public Bound<File> {
 public:
  BoundFile(const py::module_& module, const char* name, const char* doc)
      : Bound<File>(module, name, doc) {
    this->def_property_readonly(
        "lastFailure", [](const File& self) { return self.lastFailure(); },
        "Why the last call failed; None when it did not");
  }

  /// A call that takes a path and gives nothing.
  BoundFile& call(const char* name, AQ_DataMessage (File::*method)(const std::string&),
                  const char* doc) {
    this->def(
        name,
        [method](File& self, const Path& path) {
          runFile(self, [&](File& file) { return (file.*method)(path.name); });
        },
        py::arg("sFileName"), doc);
    return *this;
  }

  template <class Header, class Model>
  BoundFile& reads() {
    this->def(
        "readFile",
        [](File& self, const Path& path) {
          std::shared_ptr<Header> header;
          std::shared_ptr<Model> model;
          if constexpr (std::is_same_v<Model, AQ_Microphone>) model = std::make_shared<Model>();
          const auto outcome =
              unlocked(self, [&](File& file) { return readInto(file, path.name, header, model); });
          if (outcome != AQ_DATA_OK) raise(*self.lastFailure(), py::make_tuple(header, model));
          return std::pair(header, model);
        },
        py::arg("sFileName"),
        "Reads a file into a new header and a new object. FileError says what is wrong, and holds "
        "in .partial the header as far as it was read and of a map the rows in front of the "
        "failure");
    return *this;
  }

  template <class Header, class Model>
  BoundFile& writes() {
    this->def(
        "writeFile",
        [](File& self, const Path& path, const std::shared_ptr<Header>& header, Model& model) {
          runFile(self, [&](File& file) { return writeFrom(file, path.name, header, model); });
        },
        py::arg("sFileName"), py::arg("aqHeader"), py::arg("model"),
        "Writes a file, replacing it; the header gets the file's name. What cannot be written "
        "raises, and the disk stays as it was. Other threads must leave both objects alone");
    return *this;
  }
};

void bindFailure(py::module_& module) {
  Bound<FileFailure> failure(module, "FileFailure", "Why a read or a write failed.");
  failure.field("file", &FileFailure::file, "As the caller named it")
      .field("line", &FileFailure::line, "From 1; 0 when it is the whole file")
      .field("field", &FileFailure::field, "From 1; 0 when it is the whole line")
      .field("expected", &FileFailure::expected, "What was expected")
      .field("found", &FileFailure::found, "What was found, text in quotes")
      .def("message", &FileFailure::message, "All of it in one line");
  failure.record();
  module.def(
      "kindOfFile",
      [](const Path& path) {
        const py::gil_scoped_release released;
        return kindOfFile(path.name);
      },
      py::arg("path"), "What a file is, judged by its first lines");
}

template <class H>
Bound<H> bindHeader(const py::module_& module, const char* name, const char* doc) {
  return {module, name, doc};
}

void bindHistoryHeaders(const py::module_& module) {
  using S = AQ_HeaderSTH;
  bindHeader<S>(module, "AQ_HeaderSTH", "The header of a spectral time history file.")
      .field("sAdjustmentCode", &S::sAdjustmentCode, "Adjustment applied to the levels")
      .field("sGeneratedBy", &S::sGeneratedBy, "The program that made the file")
      .field("sGenerationFile", &S::sGenerationFile, "The file from which it was made")
      .field("aqGenerationDateTime", &S::aqGenerationDateTime, "Date and time of that file")
      .field("sProjectName", &S::sProjectName, "Project")
      .field("sMicrophoneID", &S::sMicrophoneID, "Microphone")
      .field("cCommentLines", &S::cCommentLines, "Comments")
      .field("cOtherRecords", &S::cOtherRecords, "Other records")
      .field("sFileName", &S::sFileName, "The file's name")
      .field("aqFileDateTime", &S::aqFileDateTime, "The file's date and time")
      .record();

  using M = AQ_HeaderMask;
  bindHeader<M>(module, "AQ_HeaderMask", "The header of a masking map file.")
      .field("sFileType", &M::sFileType, "Title of the file")
      .field("sFileName", &M::sFileName, "The file's name")
      .field("aqFileDateTime", &M::aqFileDateTime, "The file's date and time")
      .field("lNumberRows", &M::lNumberRows, "Number of rows")
      .field("iBandLow", &M::iBandLow, "Lowest band")
      .field("iBandHigh", &M::iBandHigh, "Highest band")
      .field("sGeneratedBy", &M::sGeneratedBy, "The program that made the file")
      .field("sGenerationFile", &M::sGenerationFile, "The file from which it was made")
      .field("aqGenerationDateTime", &M::aqGenerationDateTime, "Date and time of that file")
      .field("nOtherRecords", &M::nOtherRecords, "Number of other records, as read")
      .field("cOtherRecords", &M::cOtherRecords, "Other records")
      .field("nCommentLines", &M::nCommentLines, "Number of comments, as read")
      .field("cCommentLines", &M::cCommentLines, "Comments")
      .field("sColumnLabels", &M::sColumnLabels, "Column headings, as read")
      .record();

  using R = AQ_HeaderSSR;
  bindHeader<R>(module, "AQ_HeaderSSR", "The header of a spectrum record file.")
      .field("cCommentLines", &R::cCommentLines, "Comments")
      .field("sFileName", &R::sFileName, "The file's name")
      .field("aqFileDateTime", &R::aqFileDateTime, "The file's date and time")
      .record();
}

void bindGeometryHeaders(const py::module_& module) {
  using P = AQ_HeaderPTH;
  bindHeader<P>(module, "AQ_HeaderPTH", "The header of a position time history file.")
      .field("sFileType", &P::sFileType, "Title of the file")
      .field("sFileName", &P::sFileName, "The file's name")
      .field("aqFileDateTime", &P::aqFileDateTime, "The file's date and time")
      .field("sProjectName", &P::sProjectName, "Project")
      .field("sGeneratedBy", &P::sGeneratedBy, "The program that made the file")
      .field("sTSPIFileName", &P::sTSPIFileName, "The tracking file behind the positions")
      .field("sTSPIFileDateTime", &P::sTSPIFileDateTime, "Its date and time, as read")
      .field("lNumberRecords", &P::lNumberRecords, "Number of positions")
      .field("nOtherRecords", &P::nOtherRecords, "Number of other records, as read")
      .field("cOtherRecords", &P::cOtherRecords, "Other records")
      .field("nCommentLines", &P::nCommentLines, "Number of comments, as read")
      .field("cCommentLines", &P::cCommentLines, "Comments")
      .record();

  using M = AQ_HeaderMIC;
  bindHeader<M>(module, "AQ_HeaderMIC", "The header of a microphone position file.")
      .field("sFileType", &M::sFileType, "Title of the file")
      .field("sFileName", &M::sFileName, "The file's name")
      .field("aqFileDateTime", &M::aqFileDateTime, "The file's date and time")
      .field("sProjectName", &M::sProjectName, "Project")
      .field("sMicrophoneID", &M::sMicrophoneID, "Microphone")
      .field("lNumberRecords", &M::lNumberRecords, "Not in the file")
      .field("nOtherRecords", &M::nOtherRecords, "Number of other records, as read")
      .field("cOtherRecords", &M::cOtherRecords, "Other records")
      .field("nCommentLines", &M::nCommentLines, "Number of comments, as read")
      .field("cCommentLines", &M::cCommentLines, "Comments")
      .record();

  using G = AQ_HeaderGTH;
  bindHeader<G>(module, "AQ_HeaderGTH", "The header of a geometric time history file.")
      .field("FileType", &G::FileType, "Title of the file")
      .field("GTHFileName", &G::GTHFileName, "The file's name")
      .field("GTHFileDateTime", &G::GTHFileDateTime, "The file's date and time")
      .field("ProjectName", &G::ProjectName, "Project")
      .field("GeneratedBy", &G::GeneratedBy, "The program that made the file")
      .field("MicrophoneID", &G::MicrophoneID, "Microphone")
      .field("MicrophonePosition", &G::MicrophonePosition, "Where the microphone stands")
      .field("Temperature", &G::Temperature, "Air temperature, in the file's unit")
      .field("STHFileName", &G::STHFileName, "The history behind the geometry")
      .field("STHFileDateTime", &G::STHFileDateTime, "Its date and time, as read")
      .field("PTHFileName", &G::PTHFileName, "The positions behind the geometry")
      .field("PTHFileDateTime", &G::PTHFileDateTime, "Their date and time, as read")
      .field("MICFileName", &G::MICFileName, "The microphone file behind the geometry")
      .field("MICFileDateTime", &G::MICFileDateTime, "Its date and time, as read")
      .field("NumberRecords", &G::NumberRecords, "Number of points")
      .field("OtherRecords", &G::OtherRecords, "Number of other records, as read")
      .field("colOtherRecords", &G::colOtherRecords, "Other records")
      .field("nCommentLines", &G::nCommentLines, "Number of comments, as read")
      .field("colCommentLines", &G::colCommentLines, "Comments")
      .record();
}

void bindModelFiles(const py::module_& module) {
  BoundFile<AQ_DataSTH> history(module, "AQ_DataSTH",
                                "Reads and writes spectral time history files.");
  history.reads<AQ_HeaderSTH, AQ_SpectralTimeHistory>()
      .writes<AQ_HeaderSTH, AQ_SpectralTimeHistory>()
      .record();
  history.def(
      "getRawHeader",
      [](AQ_DataSTH& self, const Path& path) {
        std::shared_ptr<Collection<std::string>> lines;
        runFile(self, [&](AQ_DataSTH& file) {
          return file.getRawHeader(path.name, lines) ? AQ_DATA_OK : AQ_DATA_FILE_ERROR;
        });
        return lines;
      },
      py::arg("sFileName"), "The header's lines as they stand");
  BoundFile<AQ_DataMask>(module, "AQ_DataMask", "Reads and writes masking map files.")
      .reads<AQ_HeaderMask, AQ_MaskMap>()
      .writes<AQ_HeaderMask, AQ_MaskMap>()
      .record();
  BoundFile<AQ_DataSSR>(module, "AQ_DataSSR", "Reads and writes spectrum record files.")
      .reads<AQ_HeaderSSR, AQ_Spectrum>()
      .writes<AQ_HeaderSSR, AQ_Spectrum>()
      .record();
  BoundFile<AQ_DataPTH>(module, "AQ_DataPTH", "Reads and writes position time history files.")
      .reads<AQ_HeaderPTH, AQ_PositionTimeHistory>()
      .writes<AQ_HeaderPTH, AQ_PositionTimeHistory>()
      .record();
  BoundFile<AQ_DataGTH>(module, "AQ_DataGTH", "Reads and writes geometric time history files.")
      .reads<AQ_HeaderGTH, AQ_GeometryTimeHistory>()
      .writes<AQ_HeaderGTH, AQ_GeometryTimeHistory>()
      .record();
  BoundFile<AQ_DataMIC>(module, "AQ_DataMIC", "Reads microphone position files.")
      .reads<AQ_HeaderMIC, AQ_Microphone>()
      .record();
  BoundFile<AQ_DataTSPI> tracking(module, "AQ_DataTSPI",
                                  "Reads tracking files. Positions of poor quality are dropped.");
  tracking
      .property("RT20Limit", &AQ_DataTSPI::RT20Limit, &AQ_DataTSPI::RT20Limit,
                "The highest quality figure that is accepted, 1 unless set; 0 is the best")
      .property("nBadPositions", &AQ_DataTSPI::nBadPositions, "How many the last read dropped")
      .def(
          "readFile",
          [](AQ_DataTSPI& self, const Path& path) {
            std::shared_ptr<AQ_PositionTimeHistory> positions;
            runFile(self, [&](AQ_DataTSPI& file) { return readInto(file, path.name, positions); });
            return positions;
          },
          py::arg("sFileName"), "Reads a file into a new history, numbered from 1");
  tracking.record();
}

void bindOtherFiles(const py::module_& module) {
  using I = AQ_DataINI;
  BoundFile<I> ini(module, "AQ_DataINI",
                   "The processing parameters of an analysis, and the file that holds them.");
  ini.call("readFile", &I::readFile,
           "Reads parameters; what the file does not name keeps its value")
      .call("writeFile", &I::writeFile, "Writes the parameters that are set, replacing the file")
      .property("CalAdj", &I::CalAdj, &I::CalAdj, "Calibration adjustment, dB; 0 is not written")
      .property("NuAvg", &I::NuAvg, &I::NuAvg, "Averaging method; AQ_NA when not set")
      .property("NuTimg", &I::NuTimg, &I::NuTimg, "Timing convention; 99 when not set")
      .property("PrWndo", &I::PrWndo, &I::PrWndo, "Window in front of the event, s")
      .property("PoWndo", &I::PoWndo, &I::PoWndo, "Window behind the event, s")
      .property("LoRec", &I::LoRec, &I::LoRec, "First record; 0 is not written")
      .property("HiRec", &I::HiRec, &I::HiRec, "Last record; 0 is not written")
      .property("FileName", &I::FileName, &I::FileName, "The file's name")
      .property("Comments", &I::Comments, &I::Comments, "Comments")
      .property("FileDate", &I::FileDate, "Date and time of the file read last")
      .record();

  using A = AQ_DataASCII;
  BoundFile<A> ascii(module, "AQ_DataASCII", "Any delimited text file as lines or fields.");
  ascii.call("readFields", &A::readFields, "Reads a file into new Fields, one entry a line")
      .call("readLines", &A::readLines, "Reads a file into new Lines")
      .call("writeFields", &A::writeFields, "Writes Fields, replacing the file")
      .call("appendFields", &A::appendFields, "Writes Fields behind what the file holds")
      .call("writeLines", &A::writeLines, "Writes Lines, replacing the file")
      .call("appendLines", &A::appendLines, "Writes Lines behind what the file holds")
      .property("Fields", &A::Fields, &A::Fields, "Lines of fields, shared")
      .property("Lines", &A::Lines, &A::Lines, "Lines, shared")
      .def("Delimiter", &A::Delimiter, py::arg("text"), "What divides fields, a comma at first")
      .def("CommentFields", &A::CommentFields, py::arg("quoted"),
           "Whether fields may stand in double quotes");
}

}  // namespace

void bindFiles(py::module_& module) {
  bindFailure(module);
  bindHistoryHeaders(module);
  bindGeometryHeaders(module);
  bindModelFiles(module);
  bindOtherFiles(module);
}

}  // namespace aq::python

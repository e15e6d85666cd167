#include <aq/describe/core.h>
#include <aq/describe/files.h>
#include <aq/describe/headers.h>
#include <aq/text/call_file.h>

#include "enums.h"

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
  explicit BoundFile(const py::module_& module) : Bound<File>(module) {
    describe::forMembers<File>([this](const auto& member) { call(member); });
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
        (docOf<File>("readFile") +
         ". FileError says what is wrong, and holds in .partial the header as far as it was read "
         "and of a map the rows before the failure")
            .c_str());
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
        (docOf<File>("writeFile") +
         ". The header gets the file's name. What cannot be written raises. Other threads must "
         "leave both objects alone")
            .c_str());
    return *this;
  }

 private:
  using Call = AQ_DataMessage (File::*)(const std::string&);

  /// A call that takes a path and gives nothing.
  void call(const describe::Method<Call, 1>& method) {
    this->def(
        method.name,
        [member = method.call](File& self, const Path& path) {
          runFile(self, [&](File& file) { return (file.*member)(path.name); });
        },
        py::arg(method.parameters[0].name), docOf(method.about).c_str());
  }
  template <class Other>
  void call(const Other& /*in a form of its own*/) {}
};

void bindFailure(py::module_& module) {
  Bound<FileFailure>(module).record();
  bindEnum<FileKind>(module);
  module.def(
      "kindOfFile",
      [](const Path& path) {
        const py::gil_scoped_release released;
        return kindOfFile(path.name);
      },
      py::arg("path"), docOf<describe::FileFunctions>("kindOfFile").c_str());
}

template <class... Headers>
void bindHeaders(const py::module_& module) {
  (Bound<Headers>(module).record(), ...);
}

void bindModelFiles(const py::module_& module) {
  BoundFile<AQ_DataSTH> history(module);
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
      py::arg("sFileName"), "The header's lines as they stand, up to the column headings");
  BoundFile<AQ_DataMask>(module)
      .reads<AQ_HeaderMask, AQ_MaskMap>()
      .writes<AQ_HeaderMask, AQ_MaskMap>()
      .record();
  BoundFile<AQ_DataSSR>(module)
      .reads<AQ_HeaderSSR, AQ_Spectrum>()
      .writes<AQ_HeaderSSR, AQ_Spectrum>()
      .record();
  BoundFile<AQ_DataPTH>(module)
      .reads<AQ_HeaderPTH, AQ_PositionTimeHistory>()
      .writes<AQ_HeaderPTH, AQ_PositionTimeHistory>()
      .record();
  BoundFile<AQ_DataGTH>(module)
      .reads<AQ_HeaderGTH, AQ_GeometryTimeHistory>()
      .writes<AQ_HeaderGTH, AQ_GeometryTimeHistory>()
      .record();
  BoundFile<AQ_DataMIC>(module).reads<AQ_HeaderMIC, AQ_Microphone>().record();
  BoundFile<AQ_DataTSPI> tracking(module);
  tracking.def(
      "readFile",
      [](AQ_DataTSPI& self, const Path& path) {
        std::shared_ptr<AQ_PositionTimeHistory> positions;
        runFile(self, [&](AQ_DataTSPI& file) { return readInto(file, path.name, positions); });
        return positions;
      },
      py::arg("sFileName"), docOf<AQ_DataTSPI>("readFile").c_str());
  tracking.record();
}

}  // namespace

void bindFiles(py::module_& module) {
  bindFailure(module);
  bindHeaders<AQ_HeaderSTH, AQ_HeaderMask, AQ_HeaderSSR, AQ_HeaderPTH, AQ_HeaderMIC, AQ_HeaderGTH>(
      module);
  bindModelFiles(module);
  BoundFile<AQ_DataINI>(module).record();
  const BoundFile<AQ_DataASCII> text(module);
}

}  // namespace aq::python

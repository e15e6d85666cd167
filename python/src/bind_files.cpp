#include <aq/describe/core.h>
#include <aq/describe/files.h>
#include <aq/describe/headers.h>
#include <aq/text/call_file.h>

#include "enums.h"

namespace aq::python {
namespace {

/// Raises the exception for a failure. `partial` has the objects that the call returned despite it.
[[noreturn]] void raise(const FileFailure& failure, const py::tuple& partial) {
  const py::object raised = py::module_::import("aq_data.errors")
                                .attr("file_error")(failure.file, failure.line, failure.field,
                                                    failure.expected, failure.found, partial);
  PyErr_SetObject(py::type::handle_of(raised).ptr(), raised.ptr());
  throw py::error_already_set();
}

/// Runs `call(file)` without the interpreter's lock, on a copy of the file object, since threads
/// may share the object.
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
    describe::forMembers<File>([this](const auto& member) { this->call(member); });
    this->def(
        "fileInformation",
        [](File& self, std::shared_ptr<FileInformation> information) {
          self.fileInformation(std::move(information));
        },
        py::arg("information"),
        "Makes writes ask this service for names and dates; None means the service in use");
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
         ". Raises FileError, whose .partial holds the header if all of it was read "
         "and, for a map, the rows before the failure")
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
        (docOf<File>("writeFile") + ". The header gets the file's name. Raises for data that "
                                    "cannot be written. Other threads must "
                                    "not use the header or the model during the call")
            .c_str());
    return *this;
  }

  /// Binds the writer of a file class whose header is set before writing.
  template <class Header, class Model>
  void writesSet() {
    this->def("setHeader", &File::setHeader, py::arg("aqHeader"), docOf<File>("setHeader").c_str());
    this->def(
        "writeFile",
        [](File& self, const Path& path, Model& model) {
          runFile(self, [&](File& file) { return file.writeFile(path.name, model); });
        },
        py::arg("sFileName"), py::arg("model"),
        (docOf<File>("writeFile") + ". Raises for data that cannot be written. Other threads must "
                                    "not use the header or the model during the call")
            .c_str());
  }

  /// Binds the reader of a file class that has no header object.
  template <class Model>
  void readsAlone() {
    this->def(
        "readFile",
        [](File& self, const Path& path) {
          std::shared_ptr<Model> model;
          runFile(self, [&](File& file) { return readInto(file, path.name, model); });
          return model;
        },
        py::arg("sFileName"), docOf<File>("readFile").c_str());
  }

 private:
  using Call = AQ_DataMessage (File::*)(const std::string&);

  /// Binds a method that takes a path and returns nothing.
  void call(const describe::Method<Call, 1>& method) {
    this->def(
        method.name,
        [member = method.call](File& self, const Path& path) {
          runFile(self, [&](File& file) { return (file.*member)(path.name); });
        },
        py::arg(method.parameters[0].name), docOf(method.about).c_str());
  }
  template <class Other>
  void call(const Other& /*bound by its own code*/) {}
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

/// Like `readFile`, but also sets the history's reference time type from the header, and returns
/// the header's unknown words. The file class itself leaves the type unset, which hosts rely on.
auto readWithWords(AQ_DataSTH& self, const Path& path) {
  std::shared_ptr<AQ_HeaderSTH> header;
  std::shared_ptr<AQ_SpectralTimeHistory> history;
  HistoryWords words;
  const auto outcome = unlocked(self, [&](AQ_DataSTH& file) {
    file.observeHeader([&](const HeaderLine& seen) { words.see(seen); });
    const auto result = readInto(file, path.name, header, history);
    file.observeHeader(nullptr);
    return result;
  });
  if (outcome != AQ_DATA_OK) raise(*self.lastFailure(), py::make_tuple(header, history));
  py::list others;
  for (const auto& [line, what, word, readAs] : words.takeInto(*history)) {
    others.append(py::make_tuple(line, std::string(what), word, readAs));
  }
  return py::make_tuple(header, history, others);
}

void bindHistoryFile(BoundFile<AQ_DataSTH>& history) {
  history.def("_readWithWords", readWithWords, py::arg("sFileName"),
              "Like readFile, but sets the reference time type that the header names. Also returns "
              "the line, meaning, text and replacement of each unknown word");
  history.def(
      "getRawHeader",
      [](AQ_DataSTH& self, const Path& path) {
        std::shared_ptr<Collection<std::string>> lines;
        runFile(self, [&](AQ_DataSTH& file) {
          return file.getRawHeader(path.name, lines) ? AQ_DATA_OK : AQ_DATA_FILE_ERROR;
        });
        return lines;
      },
      py::arg("sFileName"), "The header's lines, unchanged, without the column headings");
}

void bindRecordingFile(BoundFile<AQ_DataHP3565>& recording) {
  using File = AQ_DataHP3565;
  recording.def(
      "ParseASC",
      [](File& self, const Path& path) {
        std::shared_ptr<AQ_HeaderSTH> header;
        std::shared_ptr<AQ_SpectralTimeHistory> history;
        runFile(self, [&](File& file) { return file.ParseASC(path.name, header, history); });
        return std::pair(header, history);
      },
      py::arg("sAscFile"), docOf<File>("ParseASC").c_str());
  recording.def(
      "DAT_to_ASC",
      [](File& self, const Path& from, const Path& to) {
        runFile(self, [&](File& file) { return file.DAT_to_ASC(from.name, to.name); });
      },
      py::arg("sDatFile"), py::arg("sAscFile"), docOf<File>("DAT_to_ASC").c_str());
  recording.def(
      "readDirectory",
      [](File& self, const Path& folder) {
        std::shared_ptr<Collection<std::string>> index;
        std::shared_ptr<Collection<std::string>> times;
        std::shared_ptr<Collection<std::string>> recordings;
        runFile(self, [&](File& file) {
          return file.readDirectory(folder.name, index, times, recordings);
        });
        return std::tuple(index, times, recordings);
      },
      py::arg("sDirectory"), docOf<File>("readDirectory").c_str());
}

template <class File, class Header, class Model>
void bindFormat(const py::module_& module) {
  if constexpr (!std::is_void_v<Header>) {
    if (!py::hasattr(module, describe::Description<Header>::name)) Bound<Header>(module).record();
  }
  BoundFile<File> file(module);
  if constexpr (std::is_void_v<Header> && !std::is_same_v<File, Model>) {
    file.template readsAlone<Model>();
  } else if constexpr (!std::is_void_v<Header>) {
    file.template reads<Header, Model>();
    if constexpr (requires { &File::setHeader; }) {
      file.template writesSet<Header, Model>();
    } else if constexpr (writesFiles<File>) {
      file.template writes<Header, Model>();
    }
  }
  if constexpr (std::is_same_v<File, AQ_DataSTH>) bindHistoryFile(file);
  if constexpr (std::is_same_v<File, AQ_DataHP3565>) bindRecordingFile(file);
  file.record();
}

template <class T>
py::object typeOf() {
  if constexpr (std::is_void_v<T>) {
    return py::none();
  } else {
    return py::type::of<T>();
  }
}

/// The list of formats, as tuples.
py::object formats() {
  py::list rows;
  forFormats([&]<class File, class Header, class Model>(const Format<File, Header, Model>& format) {
    rows.append(py::make_tuple(format.kind, format.text, format.word, format.ending, typeOf<File>(),
                               typeOf<Header>(), typeOf<Model>(), writesFiles<File>));
  });
  return rows;
}

}  // namespace

void bindFiles(py::module_& module) {
  bindFailure(module);
  forFormats([&]<class File, class Header, class Model>(const Format<File, Header, Model>&) {
    bindFormat<File, Header, Model>(module);
  });
  const BoundFile<AQ_DataASCII> text(module);
  module.def("keepingFileInformation", &keepingFileInformation,
             "A service like the one in use that keeps the dates a header gives for source files");
  module.def("_formats", formats,
             "For each format: kind, long and short name, ending, file class, header class if "
             "it has one, class of the data, and whether such files can be written");
}

}  // namespace aq::python

#include <aq/describe/core.h>
#include <aq/text/date_text.h>

#include "collection.h"
#include "enums.h"

namespace aq::python {
namespace {

/// The working mode of a time, which has no getter.
AQ_OPTIME workingMode(AQ_Time time) {
  time.assignSeconds(0, 1);
  return time.WorkingTime() == 1 ? AQ_TIME_REF : AQ_TIME_TOD;
}

void bindTime(const py::module_& module) {
  Bound<AQ_Time> time(module);
  time.def("assignSeconds", &AQ_Time::assignSeconds, py::arg("timeOfDay"),
           py::arg("relativeSeconds"), "Stores both times without wrapping or checking")
      .def("__repr__", [](const AQ_Time& self) {
        const double day = self.CurrentDate();
        const bool dated = day >= 1 && day < 2.9e6;  // a date that can be written as text
        return "<AQ_Time: " + (dated ? dateText(day) + ", " : "") +
               std::to_string(self.TODseconds()) + " s after midnight, " +
               std::to_string(self.RelSeconds()) + " s relative>";
      });
  time.def(py::pickle(
      [](const AQ_Time& self) {
        return py::make_tuple(self.CurrentDate(), self.TODseconds(), self.RelSeconds(),
                              workingMode(self));
      },
      [](const py::tuple& state) {
        auto object = std::make_shared<AQ_Time>();
        object->CurrentDate(state[0].cast<double>());
        object->assignSeconds(state[1].cast<double>(), state[2].cast<double>());
        object->setWorkingTime(state[3].cast<AQ_OPTIME>());
        return object;
      }));
}

/// A file information service in Python: any object with the three methods.
class HostInformation : public FileInformation {
 public:
  explicit HostInformation(py::object host) : host_(std::move(host)) {}

  std::string recordedName(const std::string& path) override { return ask("recordedName", path); }
  std::string fileDateTime(const std::string& path) override { return ask("fileDateTime", path); }
  std::string currentDateTime() override { return ask("currentDateTime"); }

  ~HostInformation() override {
    const py::gil_scoped_acquire locked;
    host_ = py::object();
  }
  HostInformation(const HostInformation&) = delete;
  HostInformation& operator=(const HostInformation&) = delete;

 private:
  template <class... Path>
  std::string ask(const char* method, const Path&... path) {
    const py::gil_scoped_acquire locked;
    const py::object given = host_.attr(method)(path...);
    if (py::isinstance<py::str>(given)) return given.cast<std::string>();
    throw py::type_error(std::string(method) + ": expected text, found " + typeText(given));
  }

  py::object host_;
};

void putInForce(const py::object& host) {
  if (host.is_none() || py::isinstance<FileInformation>(host)) {
    return setFileInformation(host.cast<std::shared_ptr<FileInformation>>());
  }
  for (const char* const method : {"recordedName", "fileDateTime", "currentDateTime"}) {
    if (py::hasattr(host, method)) continue;
    throw py::type_error(std::string("expected an object with the method ") + method + ", found " +
                         typeText(host));
  }
  setFileInformation(std::make_shared<HostInformation>(host));
}

void bindFileInformation(py::module_& module) {
  const Bound<FileInformation> bound(module);
  module.def("fileInformation", &fileInformation,
             docOf<describe::CoreFunctions>("fileInformation").c_str());
  module.def("setFileInformation", &putInForce, py::arg("information"),
             "Installs a service, such as keepingFileInformation(), or any object with its methods "
             "recordedName, fileDateTime and currentDateTime; None restores the default");
  py::module_::import("atexit").attr("register")(module.attr("setFileInformation"), py::none());
}

}  // namespace

void bindCore(py::module_& module) {
  bindEnum<AQ_AverageMethod>(module);
  bindEnum<AQ_TimeStampType>(module);
  bindEnum<AQ_RefTimeType>(module);
  bindEnum<AQ_CONSTANTS>(module);
  bindEnum<AQ_OPTIME>(module);
  bindEnum<AQ_DataMessage>(module);
  bindEnum<AQ_MASK_MODE>(module);
  bindEnum<AQ_MASK_ADJUST>(module);
  bindEnum<AQ_METRIC_INTEG_VALUE>(module);
  bindEnum<AQ_METRIC_TYPE>(module);
  bindEnum<ErrorCode>(module);
  bindTime(module);
  bindCollection<std::string>(module, "TextCollection");
  bindCollection<std::shared_ptr<Collection<std::string>>>(module, "FieldLines");
  bindCollection<double>(module, "NumberCollection");
  bindCollection<AQ_METRIC_TYPE>(module, "MetricTypeCollection");
  bindFileInformation(module);
  module.def(
      "bandLabel", [](std::int16_t band) { return std::string(bandLabel(band)); }, py::arg("band"),
      docOf<describe::CoreFunctions>("bandLabel").c_str());
}

}  // namespace aq::python

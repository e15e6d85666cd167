#include <aq/core/band_label.h>
#include <aq/text/date_text.h>

#include <initializer_list>

#include "collection.h"

namespace aq::python {
namespace {

template <class E>
void bindEnum(py::module_& module, const char* kind, bool shared, const char* doc,
              std::initializer_list<std::pair<const char*, E>> members) {
  py::dict values;
  for (const auto& [name, member] : members) values[name] = static_cast<std::int32_t>(member);
  const std::string name = EnumName<E>::value.text;
  py::object type = py::module_::import("enum").attr(kind)(
      name, values, py::arg("module") = "aq_data._core", py::arg("qualname") = name);
  type.attr("__doc__") = doc;
  module.attr(name.c_str()) = type;
  if (shared) {
    for (const auto& [member, value] : members) module.attr(member) = type.attr(member);
  }
  enumClass<E>() = type.release();
}

void bindEnums(py::module_& module) {
  bindEnum<AQ_AverageMethod>(module, "IntEnum", true,
                             "How the levels of one record were averaged; AQ_NA: not set",
                             {{"AQ_LINEAR", AQ_LINEAR},
                              {"AQ_TRUSLO", AQ_TRUSLO},
                              {"AQ_4S100", AQ_4S100},
                              {"AQ_4S95", AQ_4S95},
                              {"AQ_CONTEXPO", AQ_CONTEXPO},
                              {"AQ_NA", AQ_NA}});
  bindEnum<AQ_TimeStampType>(module, "IntEnum", true,
                             "Which instant of a record its time stamp names",
                             {{"AQ_START", AQ_START},
                              {"AQ_MIDPT", AQ_MIDPT},
                              {"AQ_END", AQ_END},
                              {"AQ_ICAOSLO", AQ_ICAOSLO},
                              {"AQ_OLDSLO", AQ_OLDSLO}});
  bindEnum<AQ_RefTimeType>(module, "IntEnum", true,
                           "Which event the reference time of a history marks",
                           {{"AQ_START_REF", AQ_START_REF},
                            {"AQ_OVERHEAD", AQ_OVERHEAD},
                            {"AQ_AMAX", AQ_AMAX},
                            {"AQ_PMAX", AQ_PMAX},
                            {"AQ_TMAX", AQ_TMAX},
                            {"AQ_OAMAX", AQ_OAMAX},
                            {"AQ_HACK", AQ_HACK},
                            {"AQ_OTHER", AQ_OTHER}});
  bindEnum<AQ_CONSTANTS>(module, "IntEnum", true, "No valid level, in dB; no good band",
                         {{"AQ_INVALID_LEVEL", AQ_INVALID_LEVEL}});
  bindEnum<AQ_OPTIME>(module, "IntEnum", true, "Which of its two times a time value works in",
                      {{"AQ_TIME_TOD", AQ_TIME_TOD}, {"AQ_TIME_REF", AQ_TIME_REF}});
  bindEnum<AQ_DataMessage>(
      module, "IntEnum", true, "How a read or a write of a file ended",
      {{"AQ_DATA_OK", AQ_DATA_OK}, {"AQ_DATA_FILE_ERROR", AQ_DATA_FILE_ERROR}});
  bindEnum<AQ_MASK_MODE>(module, "IntEnum", true,
                         "Whether, and by which test, one band of one record is masked",
                         {{"NOT_MASKED", NOT_MASKED},
                          {"MASKED_BY_MASK_CRITERION", MASKED_BY_MASK_CRITERION},
                          {"MASKED_BY_PRE_DETECT", MASKED_BY_PRE_DETECT},
                          {"MASKED_BY_POST_DETECT", MASKED_BY_POST_DETECT}});
  bindEnum<AQ_MASK_ADJUST>(module, "IntEnum", true, "How a masked level was adjusted",
                           {{"NOT_ADJUSTED", NOT_ADJUSTED},
                            {"ENERGY_SUBTRACTION", ENERGY_SUBTRACTION},
                            {"FREQUENCY_EXTRAPOLATION", FREQUENCY_EXTRAPOLATION},
                            {"TIME_EXTRAPOLATION", TIME_EXTRAPOLATION},
                            {"AVG_OF_ADJACENT", AVG_OF_ADJACENT},
                            {"CORRECTIONS_APPLIED", CORRECTIONS_APPLIED},
                            {"ADJ_TO_REFERENCE", ADJ_TO_REFERENCE}});
  bindEnum<AQ_METRIC_INTEG_VALUE>(
      module, "IntFlag", true,
      "Which part a record plays in the integration of a metric; flags that combine",
      {{"AQ_INTEG_MAX", AQ_INTEG_MAX},
       {"AQ_INTEG_FST", AQ_INTEG_FST},
       {"AQ_INTEG_LST", AQ_INTEG_LST},
       {"AQ_INTEG_2ND", AQ_INTEG_2ND}});
  bindEnum<AQ_METRIC_TYPE>(module, "IntEnum", true, "The kinds of metric of a record",
                           {{"AQ_METRIC_AWT", AQ_METRIC_AWT},
                            {"AQ_METRIC_CWT", AQ_METRIC_CWT},
                            {"AQ_METRIC_DWT", AQ_METRIC_DWT},
                            {"AQ_METRIC_OA", AQ_METRIC_OA},
                            {"AQ_METRIC_PNL", AQ_METRIC_PNL},
                            {"AQ_METRIC_PNLT", AQ_METRIC_PNLT},
                            {"AQ_METRIC_TONECOR", AQ_METRIC_TONECOR},
                            {"AQ_METRIC_TONEBND", AQ_METRIC_TONEBND},
                            {"AQ_METRIC_LGB", AQ_METRIC_LGB},
                            {"AQ_METRIC_INTEG", AQ_METRIC_INTEG}});
  bindEnum<ErrorCode>(module, "IntEnum", false, "What kind of fault an Error reports",
                      {{"InvalidArgument", ErrorCode::InvalidArgument},
                       {"InvalidIndex", ErrorCode::InvalidIndex},
                       {"InvalidValue", ErrorCode::InvalidValue},
                       {"TypeMismatch", ErrorCode::TypeMismatch},
                       {"Overflow", ErrorCode::Overflow},
                       {"ObjectNotSet", ErrorCode::ObjectNotSet},
                       {"MemberNotSupported", ErrorCode::MemberNotSupported}});
  bindEnum<FileKind>(module, "IntEnum", false, "The kinds of file that the library reads",
                     {{"SpectralTimeHistory", FileKind::SpectralTimeHistory},
                      {"PositionTimeHistory", FileKind::PositionTimeHistory},
                      {"MicrophonePosition", FileKind::MicrophonePosition},
                      {"GeometricTimeHistory", FileKind::GeometricTimeHistory},
                      {"MaskingMap", FileKind::MaskingMap},
                      {"VariableInitialization", FileKind::VariableInitialization},
                      {"SpectrumRecord", FileKind::SpectrumRecord},
                      {"Tracking", FileKind::Tracking},
                      {"Unknown", FileKind::Unknown}});
}

/// The working mode of a time, which it does not tell.
AQ_OPTIME workingMode(AQ_Time time) {
  time.assignSeconds(0, 1);
  return time.WorkingTime() == 1 ? AQ_TIME_REF : AQ_TIME_TOD;
}

void bindTime(const py::module_& module) {
  Bound<AQ_Time> time(module, "AQ_Time",
                      "The time stamp of a record: a calendar date, a time of day and a time "
                      "relative to a reference, independent of each other.");
  time.property("RelSeconds", &AQ_Time::RelSeconds, &AQ_Time::RelSeconds,
                "Seconds relative to a reference time")
      .property("TODseconds", &AQ_Time::TODseconds, &AQ_Time::TODseconds,
                "Seconds after midnight; above 86400 they wrap into the next day")
      .property("CurrentDate", &AQ_Time::CurrentDate, &AQ_Time::CurrentDate,
                "The calendar date, days since 1899-12-30")
      .property("WorkingTime", &AQ_Time::WorkingTime,
                "RelSeconds or TODseconds, whichever setWorkingTime chose, in seconds");
  time.def_property(
      "TODstring", [](const AQ_Time& self) { return self.TODstring(); },
      [](AQ_Time& self, const std::string& text) { self.TODstring(text); },
      "The time of day as hh:mm:ss and a fraction");
  time.def("Copy", &AQ_Time::Copy, "A new time with the same values")
      .def("setRelTime", &AQ_Time::setRelTime, py::arg("reference"),
           "Makes RelSeconds the time since a reference, days between included")
      .def("TODnumbers", &AQ_Time::TODnumbers, py::arg("Hours"), py::arg("Minutes"),
           py::arg("Seconds"), "Sets the time of day from three numbers")
      .def("assignSeconds", &AQ_Time::assignSeconds, py::arg("timeOfDay"),
           py::arg("relativeSeconds"), "Stores both times as they are, without wrapping")
      .def("setWorkingTime", &AQ_Time::setWorkingTime, py::arg("mode"),
           "Chooses the time that WorkingTime gives")
      .def("__repr__", [](const AQ_Time& self) {
        const double day = self.CurrentDate();
        const bool dated = day >= 1 && day < 2.9e6;  // a date that has a text
        return "<AQ_Time: " + (dated ? dateText(day) + ", " : "") +
               std::to_string(self.TODseconds()) + " s of day, " +
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

/// A file information service written in Python: any object with the three methods.
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
  for (const char* const method : {"recordedName", "fileDateTime", "currentDateTime"}) {
    if (host.is_none() || py::hasattr(host, method)) continue;
    throw py::type_error(std::string("expected an object with the method ") + method + ", found " +
                         typeText(host));
  }
  setFileInformation(host.is_none() ? nullptr : std::make_shared<HostInformation>(host));
}

void bindFileInformation(py::module_& module) {
  py::class_<FileInformation, std::shared_ptr<FileInformation>>(
      module, "FileInformation", "What the writers record of files: names and dates")
      .def("recordedName", &FileInformation::recordedName, py::arg("path"),
           "The name under which a file is recorded")
      .def("fileDateTime", &FileInformation::fileDateTime, py::arg("path"),
           "When a file was last changed, as mm/dd/yyyy,hh:mm:ss")
      .def("currentDateTime", &FileInformation::currentDateTime, "Now, as mm/dd/yyyy,hh:mm:ss");
  module.def("fileInformation", &fileInformation, "The file information service in force");
  module.def("setFileInformation", &putInForce, py::arg("information"),
             "Puts an object with the methods of FileInformation in force; None the default again");
  py::module_::import("atexit").attr("register")(module.attr("setFileInformation"), py::none());
}

}  // namespace

void bindCore(py::module_& module) {
  bindEnums(module);
  bindTime(module);
  bindCollection<std::string>(module, "TextCollection");
  bindCollection<std::shared_ptr<Collection<std::string>>>(module, "FieldLines");
  bindCollection<double>(module, "NumberCollection");
  bindCollection<AQ_METRIC_TYPE>(module, "MetricTypeCollection");
  bindFileInformation(module);
  module.def(
      "bandLabel", [](std::int16_t band) { return std::string(bandLabel(band)); }, py::arg("band"),
      "The column heading of a band from 2 to 50: number and nominal frequency, B17/50Hz");
}

}  // namespace aq::python

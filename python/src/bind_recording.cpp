#include <aq/core/platform.h>
#include <aq/sdf/recording.h>
#include <aq/text/fields.h>
#include <pybind11/numpy.h>

#include <cmath>

#include "binding.h"

// The content of an analyzer recording as plain Python values.

namespace aq::python {
namespace {

using sdf::Record;
using sdf::Recording;

py::object valueOf(const Record& record, const sdf::Field& field, std::size_t element) {
  if (field.type == sdf::Type::Text) {
    const std::string_view text = record.text(field);
    return py::reinterpret_steal<py::object>(
        PyUnicode_DecodeLatin1(text.data(), static_cast<Py_ssize_t>(text.size()), nullptr));
  }
  const bool real = field.type == sdf::Type::Float || field.type == sdf::Type::Double;
  if (real) return py::float_(record.real(field, element));
  return py::int_(record.integer(field, element));
}

py::dict fieldsOf(const Record& record, std::span<const sdf::Field> fields) {
  py::dict values;
  for (const sdf::Field& field : fields) {
    if (!record.has(field)) continue;
    const py::str name{std::string(field.name)};
    if (const auto parts = sdf::partsOf(field); !parts.empty()) {
      values[name] = fieldsOf(record.part(field), parts);
    } else if (field.type != sdf::Type::Text && field.count > 1) {
      py::list all;
      for (std::size_t i = 0; i < field.count; ++i) all.append(valueOf(record, field, i));
      values[name] = all;
    } else {
      values[name] = valueOf(record, field, 0);
    }
  }
  return values;
}

/// The records by type name: a list of dictionaries for each type.
py::dict recordsOf(const Recording& recording) {
  py::dict records;
  for (const auto type :
       {sdf::RecordType::File, sdf::RecordType::Measurement, sdf::RecordType::Data,
        sdf::RecordType::Vector, sdf::RecordType::Channel, sdf::RecordType::Scans,
        sdf::RecordType::ManyScans, sdf::RecordType::ScanVariable, sdf::RecordType::Comment,
        sdf::RecordType::Unique}) {
    py::list all;
    for (const Record& record : recording.records().all(type)) {
      const py::dict fields = fieldsOf(record, record.layout().fields);
      if (type == sdf::RecordType::Unique) fields["bytes"] = py::bytes(record.bytes());
      all.append(fields);
    }
    records[py::str(std::string(sdf::layoutOf(type).name))] = all;
  }
  return records;
}

/// `y` by scan, trace and value, `x` by point, and the values and unit of any scan variable.
py::dict tracesOf(const Recording& recording, const sdf::TraceSet& set) {
  const std::size_t scans = recording.scansOf(set);
  const std::size_t values = set.traces == 0 ? 0 : set.points * set.valuesOfPoint;
  py::array_t<double> y({scans, set.traces, values});
  double* at = y.mutable_data();
  for (std::size_t scan = 0; scan < scans; ++scan) {
    for (std::size_t trace = 0; trace < set.traces; ++trace) {
      recording.y(set, trace, scan).copyTo({at, values});
      at += values;
    }
  }
  py::dict traces;
  traces["y"] = y;
  if (scans > 0) traces["x"] = py::array(py::cast(recording.x(set, 0, 0, set.points)));
  const auto variable = recording.scanVariable(set);
  if (variable && set.scanned && scans > 0) {
    py::array_t<double> numbers(static_cast<py::ssize_t>(scans));
    for (std::size_t scan = 0; scan < scans; ++scan) {
      numbers.mutable_data()[scan] =
          recording.scanValue(*variable, set, 0, scan).value_or(std::nan(""));
    }
    traces["scan_variable"] = numbers;
    traces["scan_unit"] = variable->unit.label;
  }
  return traces;
}

py::dict readRecording(const std::string& path) {
  const auto recording = Recording::fromFile(path);
  py::dict content = recordsOf(recording);
  content["revision"] = recording.records().revision();
  content["scans"] = recording.scans().valid;
  py::list traces;
  for (const sdf::TraceSet& set : recording.sets()) traces.append(tracesOf(recording, set));
  content["traces"] = traces;
  return content;
}

}  // namespace

void bindRecording(py::module_& module) {
  module.def(
      "_readRecording",
      [](const Path& path) -> py::object {
        try {
          return readRecording(path.name);
        } catch (const ReadFailure& failed) {
          return py::make_tuple(failed.failure.expected, failed.failure.found);
        } catch (const platform::SystemError& error) {
          return py::make_tuple(std::string(error.wanted()), std::string(error.what()));
        }
      },
      py::arg("path"),
      "The records and traces of a recording, or what was expected and found if reading failed");
}

}  // namespace aq::python

#include "binding.h"

namespace aq::python {
namespace {

/// Converts library exceptions to those of `aq_data.errors`.
void translate(std::exception_ptr thrown) {
  try {
    std::rethrow_exception(std::move(thrown));
  } catch (const Error& error) {
    const py::object raised = py::module_::import("aq_data.errors")
                                  .attr("error")(std::string(error.what()), error.code());
    PyErr_SetObject(py::type::handle_of(raised).ptr(), raised.ptr());
  }
}

}  // namespace
}  // namespace aq::python

PYBIND11_MODULE(_core, module) {
  module.doc() = "The object model and the file classes of aq_data.";
  pybind11::register_exception_translator(aq::python::translate);
  aq::python::bindCore(module);
  aq::python::bindMasking(module);
  aq::python::bindSpectral(module);
  aq::python::bindGeometry(module);
  aq::python::bindFiles(module);
  aq::python::bindRecording(module);
  aq::python::bindCheck(module);
  aq::python::bindNoise(module);
  aq::python::bindWork(module);
  aq::python::bindWritable(module);
}

#pragma once

#include <memory>
#include <string>

#include "aq/core/enumerations.h"

// File classes return the result of a read or a write either as a value or through the last
// parameter. Code that serves every format calls the functions below instead, which take the same
// arguments for every class.
namespace aq {

/// Calls `file.readFile` with a header and a model, in either order, or with one object.
template <class File, class... Out>
[[nodiscard]] AQ_DataMessage readInto(File& file, const std::string& path, Out&... out) {
  if constexpr (requires { AQ_DataMessage(file.readFile(path, out...)); }) {
    return file.readFile(path, out...);
  } else if constexpr (requires(AQ_DataMessage result) { file.readFile(path, out..., result); }) {
    AQ_DataMessage result = AQ_DATA_FILE_ERROR;
    file.readFile(path, out..., result);
    return result;
  } else {
    return [&](auto& header, auto& model) { return file.readFile(path, model, header); }(out...);
  }
}

/// Whether a file class reads into the caller's object rather than a new one.
template <class File, class Header, class Model>
inline constexpr bool fillsCallers = requires(File file, std::string path,
                                              std::shared_ptr<Header> header,
                                              const std::shared_ptr<Model> model,
                                              AQ_DataMessage result) {
  file.readFile(path, header, model, result);
};

/// Calls `file.writeFile` with a header and a model.
template <class File, class... In>
[[nodiscard]] AQ_DataMessage writeFrom(File& file, const std::string& path, In&... in) {
  if constexpr (requires { AQ_DataMessage(file.writeFile(path, in...)); }) {
    return file.writeFile(path, in...);
  } else if constexpr (requires { &File::setHeader; }) {
    return [&](auto& header, auto& model) {
      file.setHeader(header);
      return file.writeFile(path, model);
    }(in...);
  } else {
    AQ_DataMessage result = AQ_DATA_FILE_ERROR;
    file.writeFile(path, in..., result);
    return result;
  }
}

}  // namespace aq

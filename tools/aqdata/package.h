#pragma once

#include <string>
#include <vector>

namespace aqdata {

/// Runs `aq_data.__main__` of the Python package, which draws images and converts to and from
/// netCDF, with these arguments. Throws `Failure` if the interpreter or the package is missing, or
/// if the package fails; the package then prints the reason itself. `what` is the output's name in
/// messages.
void runPackage(const std::string& what, const std::vector<std::string>& words);

}  // namespace aqdata

#pragma once

#include <string>
#include <vector>

namespace aqdata {

/// Runs the Python package with these arguments (`aq_data.__main__`), which makes images and
/// netCDF. Throws `Failure` if the interpreter or the package is missing, or if the package fails,
/// which prints the reason itself. `what` names the job in the message.
void runPackage(const std::string& what, const std::vector<std::string>& words);

}  // namespace aqdata

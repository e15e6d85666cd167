#pragma once

#include <string>
#include <vector>

namespace aqdata {

/// Has the Python package do what these words say (`aq_data.__main__`): pictures and netCDF are its
/// own. Throws `Failure` where the interpreter or the package is missing, and after the package has
/// said what went wrong. `what` names the job.
void runPackage(const std::string& what, const std::vector<std::string>& words);

}  // namespace aqdata

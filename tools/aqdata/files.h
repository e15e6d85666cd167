#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tools/aqdata/session.h"

namespace aqdata {

/// The files that the user's arguments stand for: a folder for the measurement files in it and
/// below, that is those whose name ends in ".csv" or whose kind is known, without hidden ones; a
/// pattern for what it matches; each file once. Complains about what is not there.
[[nodiscard]] std::vector<std::string> chosenFiles(Session& session);

/// Makes `target` a file that `write(path)` writes, all or nothing. Throws `Failure` when it is
/// there and may not be replaced, and passes on what `write` throws.
void writeFile(const Session& session, const std::string& target,
               const std::function<void(const std::string& path)>& write);

/// As above, of these lines.
void writeLines(const Session& session, const std::string& target,
                const std::vector<std::string>& lines);

}  // namespace aqdata

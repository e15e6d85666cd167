#pragma once

#include <string_view>

// The report page's style and scripts, which the build embeds in `aqdata`. Digests are SHA-256, in
// hexadecimal.
namespace aqdata::report::assets {

extern const std::string_view style;
extern const std::string_view styleDigest;
extern const std::string_view chart;  // the drawing library
extern const std::string_view chartDigest;
extern const std::string_view chartLicence;
extern const std::string_view script;
extern const std::string_view scriptDigest;

}  // namespace aqdata::report::assets

#pragma once

#include <string_view>

// The page's own style and scripts, made part of the program when it is built. Digests are those of
// SHA-256, in hexadecimal.
namespace aqdata::report::assets {

extern const std::string_view style;
extern const std::string_view styleDigest;
extern const std::string_view chart;  // the drawing library
extern const std::string_view chartDigest;
extern const std::string_view chartLicence;
extern const std::string_view script;
extern const std::string_view scriptDigest;

}  // namespace aqdata::report::assets

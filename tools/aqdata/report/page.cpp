#include "tools/aqdata/report/page.h"

#include <fmt/format.h>

#include <algorithm>

#include "tools/aqdata/noise.h"
#include "tools/aqdata/report/assets.h"
#include "tools/aqdata/report/packed.h"

namespace aqdata::report {
namespace {

/// Escapes text for use between tags and in double-quoted attributes.
std::string htmlText(std::string_view text) {
  std::string safe;
  for (const char c : text) {
    switch (c) {
      case '&': safe += "&amp;"; break;
      case '<': safe += "&lt;"; break;
      case '>': safe += "&gt;"; break;
      case '"': safe += "&quot;"; break;
      default: safe += c;
    }
  }
  return safe;
}

unsigned digitOf(char c) { return static_cast<unsigned>(c <= '9' ? c - '0' : c - 'a' + 10); }

/// A digest in the notation of a content security policy.
std::string sourceOf(std::string_view digest) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < digest.size(); i += 2) {
    bytes += static_cast<char>(digitOf(digest[i]) << 4U | digitOf(digest[i + 1]));
  }
  return "'sha256-" + base64(bytes) + "'";
}

/// The frequencies of bands 2 to 50 as text, such as "2.5 kHz".
Json frequencies() {
  constexpr std::int16_t kLowest = 2;
  constexpr std::int16_t kHighest = 50;
  Json names = Json::object();
  for (std::int16_t band = kLowest; band <= kHighest; ++band) {
    const std::string text = bandText(band);
    const std::size_t begin = text.find('(') + 1;
    names[std::to_string(band)] = text.substr(begin, text.size() - begin - 1);
  }
  return names;
}

}  // namespace

Page::Page(std::string_view title) {
  text_ = fmt::format(
      "<!doctype html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; img-src data:; "
      "style-src {}; script-src {} {}\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<meta name=\"color-scheme\" content=\"light dark\">\n"
      "<meta name=\"generator\" content=\"aqdata {}\">\n"
      "<title>{}</title>\n<style>{}</style>\n</head>\n<body>\n"
      "<noscript>This page draws its charts and tables with a script, and scripts are "
      "switched off in this browser.</noscript>\n",
      sourceOf(assets::styleDigest), sourceOf(assets::chartDigest), sourceOf(assets::scriptDigest),
      AQDATA_VERSION, htmlText(title), assets::style);
}

void Page::addRun(const Json& document) { addData(fmt::format("run-{}", ++runs_), document); }

std::string Page::finished(const Json& season) && {
  Json whole = season;
  whole["frequencies"] = frequencies();
  whole["version"] = AQDATA_VERSION;
  addData("season", whole);
  text_ += fmt::format("<!--\n{}-->\n<script>{}</script>\n<script>{}</script>\n</body>\n</html>\n",
                       assets::chartLicence, assets::chart, assets::script);
  return std::move(text_);
}

/// Escapes every "<" in the data, so that nothing in it can end the element that holds it.
void Page::addData(std::string_view id, const Json& document) {
  text_ += fmt::format(R"(<script type="application/json" id="{}">)", id);
  const std::string data = lineOf(document);
  for (std::size_t begin = 0; begin < data.size();) {
    const std::size_t end = std::min(data.find('<', begin), data.size());
    text_.append(data, begin, end - begin);
    if (end < data.size()) text_ += "\\u003c";
    begin = end + 1;
  }
  text_ += "</script>\n";
}

}  // namespace aqdata::report

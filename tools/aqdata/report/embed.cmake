# Embeds the page's style and scripts in aqdata:
#   cmake -DSOURCE=<this folder> -DOUT=<a C++ source> -DMODULES=<a;b;...> -P embed.cmake
# The modules become one script, in this order. Every `import` line and `export` keyword is removed:
# a single-file page cannot load modules, and only editors and tests need them.

set(text "// Made by embed.cmake.\n#include \"tools/aqdata/report/assets.h\"\n\n")
string(APPEND text "namespace aqdata::report::assets {\n")

# Adds the content and its digest to the source. The content becomes an array of bytes, since
# compilers limit the length of strings.
function(embed name content)
  string(HEX "${content}" hex)
  string(REGEX REPLACE "(..)" "0x\\1," bytes "${hex}")
  string(REGEX REPLACE "(................................................................................)"
    "\\1\n" bytes "${bytes}")
  string(SHA256 digest "${content}")
  string(APPEND text "namespace {\nconst unsigned char ${name}Bytes[] = {\n${bytes}};\n}\n"
    "const std::string_view ${name}(reinterpret_cast<const char*>(${name}Bytes), sizeof ${name}Bytes);\n"
    "const std::string_view ${name}Digest = \"${digest}\";\n")
  set(text "${text}" PARENT_SCOPE)
endfunction()

file(READ "${SOURCE}/vendor/uplot/uPlot.iife.min.js" chart)
string(REGEX REPLACE "^/\\*![^\n]*\n" "" chart "${chart}")  # removes links; the licence is below
embed(chart "${chart}")
file(READ "${SOURCE}/vendor/uplot/LICENSE" licence)
embed(chartLicence "${licence}")
file(READ "${SOURCE}/vendor/uplot/uPlot.min.css" chart_style)
file(READ "${SOURCE}/page/page.css" style)
embed(style "${chart_style}\n${style}")

set(script "")
foreach(module IN LISTS MODULES)
  file(READ "${SOURCE}/page/${module}.js" part)
  string(REGEX REPLACE "(^|\n)import [^\n]*" "\\1" part "${part}")
  string(REGEX REPLACE "(^|\n)export " "\\1" part "${part}")
  string(APPEND script "${part}")
endforeach()
embed(script "\n\"use strict\";\n(() => {\n${script}})();\n")

string(APPEND text "}  // namespace aqdata::report::assets\n")
file(WRITE "${OUT}" "${text}")

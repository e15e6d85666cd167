# The header-only libraries that the tool uses, for cross-compiling: links to their folders in
# /usr/include, without the other headers there, which belong to this system.
set(aq_headers ${PROJECT_BINARY_DIR}/headers_only)
file(MAKE_DIRECTORY ${aq_headers})
foreach(folder IN ITEMS CLI fmt nlohmann)
  file(CREATE_LINK /usr/include/${folder} ${aq_headers}/${folder} SYMBOLIC)
endforeach()
foreach(target IN ITEMS fmt::fmt nlohmann_json::nlohmann_json CLI11::CLI11)
  add_library(${target} INTERFACE IMPORTED)
  target_include_directories(${target} SYSTEM INTERFACE ${aq_headers})
endforeach()
target_compile_definitions(fmt::fmt INTERFACE FMT_HEADER_ONLY)

# Debian's fparser ships no package config: this finds its header and library.
find_path(FPARSER_INCLUDE_DIR fparser.hh)
find_library(FPARSER_LIBRARY fparser)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(fparser REQUIRED_VARS FPARSER_LIBRARY FPARSER_INCLUDE_DIR)
if(fparser_FOUND AND NOT TARGET fparser::fparser)
  add_library(fparser::fparser UNKNOWN IMPORTED)
  set_target_properties(fparser::fparser PROPERTIES
    IMPORTED_LOCATION "${FPARSER_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${FPARSER_INCLUDE_DIR}")
endif()

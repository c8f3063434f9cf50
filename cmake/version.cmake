# The version has one home, src/cli/version.h. Sets FTHSUMMARY_VERSION_TEXT, such as
# 0.7.1-beta, and FTHSUMMARY_VERSION, its number alone.
set(version_header "${CMAKE_CURRENT_LIST_DIR}/../src/cli/version.h")
file(STRINGS "${version_header}" version_line REGEX "VERSION_TEXT")
if(NOT version_line MATCHES "\"(([0-9]+\\.[0-9]+\\.[0-9]+)[^\"]*)\"")
  message(FATAL_ERROR "${version_header} holds no version text")
endif()
set(FTHSUMMARY_VERSION_TEXT "${CMAKE_MATCH_1}")
set(FTHSUMMARY_VERSION "${CMAKE_MATCH_2}")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${version_header}")

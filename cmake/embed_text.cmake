# embed_text(HEADER NAME constant FILE file [ELEMENT name])
#
# Makes, at build time, a header that holds the exact bytes of FILE as one constexpr
# std::string_view called NAME; with ELEMENT between "<name>\n" and "</name>\n".
# FILE must not hold a NUL byte (the constant would look cut to C code) nor a carriage
# return (compilers drop it), nor close a style or script element (the browser would end
# the element there).
#
# The file runs twice: included by the project it defines the function; run as a
# script by the rule that the function makes, it writes the header.

if(NOT CMAKE_SCRIPT_MODE_FILE)
  set(EMBED_TEXT_SCRIPT "${CMAKE_CURRENT_LIST_FILE}")

  function(embed_text header)
    cmake_parse_arguments(ARG "" "NAME;FILE;ELEMENT" "" ${ARGN})
    cmake_path(ABSOLUTE_PATH ARG_FILE OUTPUT_VARIABLE file)
    add_custom_command(
      OUTPUT "${header}"
      COMMAND "${CMAKE_COMMAND}" "-DHEADER=${header}" "-DNAME=${ARG_NAME}" "-DFILE=${file}"
              "-DELEMENT=${ARG_ELEMENT}" -P "${EMBED_TEXT_SCRIPT}"
      DEPENDS "${file}" "${EMBED_TEXT_SCRIPT}"
      COMMENT "Embedding ${ARG_FILE}"
      VERBATIM)
  endfunction()
  return()
endif()

# A text with a NUL or a carriage return comes out shorter than the file.
file(READ "${FILE}" text)
file(SIZE "${FILE}" size)
string(LENGTH "${text}" length)
if(NOT length EQUAL size)
  message(FATAL_ERROR "${FILE} holds a NUL byte or a carriage return")
endif()

string(TOLOWER "${text}" folded)
if(folded MATCHES "</(style|script)")
  message(FATAL_ERROR "${FILE} would close the element that it is embedded in")
endif()

if(ELEMENT)
  set(text "<${ELEMENT}>\n${text}</${ELEMENT}>\n")
endif()
string(LENGTH "${text}" length)

file(WRITE "${HEADER}" "// Made by cmake/embed_text.cmake from ${FILE}; do not edit.

#pragma once

#include <string_view>

inline constexpr std::string_view ${NAME} = R\"EMBEDDED(${text})EMBEDDED\";
static_assert(${NAME}.size() == ${length});
")

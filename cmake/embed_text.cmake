# embed_text(HEADER NAME constant FILE file [ELEMENT name])
#
# Makes, at build time, a header that holds the exact bytes of FILE as one constexpr
# std::string_view called NAME; with ELEMENT between "<name>\n" and "</name>\n".
# FILE must not hold a NUL byte (the constant would look cut to C code) nor close a
# style or script element (the browser would end the element there).
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

file(READ "${FILE}" content HEX)
string(TOLOWER "${content}" folded)

# Pairs of hexadecimal digits are matched at even offsets only, so "00" across two
# bytes is no NUL.
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${folded}")
if(bytes MATCHES "0x00,")
  message(FATAL_ERROR "${FILE} holds a NUL byte")
endif()

# "</style" and "</script" with each letter in either case.
set(close "0x3c,0x2f,")
set(style "0x[57]3,0x[57]4,0x[57]9,0x[46]c,0x[46]5,")
set(script "0x[57]3,0x[46]3,0x[57]2,0x[46]9,0x[57]0,0x[57]4,")
if(bytes MATCHES "${close}(${style}|${script})")
  message(FATAL_ERROR "${FILE} would close the element that it is embedded in")
endif()

string(LENGTH "${folded}" digits)
math(EXPR length "${digits} / 2")
string(REGEX REPLACE "(0x[0-9a-f][0-9a-f],0x[0-9a-f][0-9a-f],0x[0-9a-f][0-9a-f],0x[0-9a-f][0-9a-f],0x[0-9a-f][0-9a-f],0x[0-9a-f][0-9a-f],0x[0-9a-f][0-9a-f],0x[0-9a-f][0-9a-f],)" "\\1\n" bytes "${bytes}")

function(as_bytes text result)
  string(HEX "${text}" hex)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," hex "${hex}")
  set(${result} "${hex}" PARENT_SCOPE)
endfunction()
set(before "")
set(after "")
if(ELEMENT)
  as_bytes("<${ELEMENT}>\n" before)
  as_bytes("</${ELEMENT}>\n" after)
endif()

file(WRITE "${HEADER}" "// Made by cmake/embed_text.cmake from ${FILE}; do not edit.

#pragma once

#include <string_view>

inline constexpr char ${NAME}_BYTES[] = {
${before}
${bytes}
${after}
0x00};

inline constexpr std::string_view ${NAME}(${NAME}_BYTES, sizeof ${NAME}_BYTES - 1);
")

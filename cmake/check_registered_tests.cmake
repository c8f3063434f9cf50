# Fails when a *_test.cpp below FOLDER is missing from REGISTERED (names separated
# by commas), or when there is none at all.
string(REPLACE "," ";" REGISTERED "${REGISTERED}")
file(GLOB_RECURSE files RELATIVE "${FOLDER}" "${FOLDER}/*_test.cpp")
if(NOT files)
  message(FATAL_ERROR "no test files below ${FOLDER}")
endif()
list(REMOVE_ITEM files ${REGISTERED})
if(files)
  message(FATAL_ERROR "test files that no test program is made of: ${files}")
endif()

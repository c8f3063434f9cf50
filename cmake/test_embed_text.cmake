# Runs the embedding step on texts that it must take and on texts that it must
# refuse. Needs FOLDER, a place to write in.
set(script "${CMAKE_CURRENT_LIST_DIR}/embed_text.cmake")

# CMake breaks the lines of its messages where the paths in them happen to end.
function(one_line text)
  string(REGEX REPLACE "[ \n]+" " " joined "${${text}}")
  set(${text} "${joined}" PARENT_SCOPE)
endfunction()

function(embed name content result)
  file(WRITE "${FOLDER}/${name}" "${content}")
  execute_process(
    COMMAND "${CMAKE_COMMAND}" "-DHEADER=${FOLDER}/${name}.h" -DNAME=TEXT
            "-DFILE=${FOLDER}/${name}" -DELEMENT= -P "${script}"
    RESULT_VARIABLE status ERROR_VARIABLE message)
  set(${result} "${status}" PARENT_SCOPE)
  one_line(message)
  set(message "${message}" PARENT_SCOPE)
endfunction()

foreach(text "</style>" "a</StYlE b" "</script>" "x</SCRIPT" "</style" "</script\n")
  embed(refused "${text}" status)
  if(status EQUAL 0 OR NOT message MATCHES "would close the element")
    message(FATAL_ERROR "'${text}' is not refused: ${message}")
  endif()
endforeach()

# CMake's strings cannot hold a NUL; the shell's printf can write one.
foreach(bytes "a\\0b" "a\\0" "a\\r\\nb")
  execute_process(COMMAND printf "${bytes}" OUTPUT_FILE "${FOLDER}/bytes")
  execute_process(
    COMMAND "${CMAKE_COMMAND}" "-DHEADER=${FOLDER}/bytes.h" -DNAME=TEXT "-DFILE=${FOLDER}/bytes"
            -DELEMENT= -P "${script}"
    RESULT_VARIABLE status ERROR_VARIABLE message)
  one_line(message)
  if(status EQUAL 0 OR NOT message MATCHES "NUL byte or a carriage return")
    message(FATAL_ERROR "'${bytes}' is not refused: ${message}")
  endif()
endforeach()

# What may stand in a text, though it looks like what may not.
string(ASCII 16 15 control_bytes)
foreach(text "" "${control_bytes}" "< /style>" "</stile>" "<style>" "</ script>" ";[]\\\"")
  embed(taken "${text}" status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "'${text}' is refused: ${message}")
  endif()
endforeach()

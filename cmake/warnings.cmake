# The warnings that every target of ours is built with, g++ and clang++ alike.
function(enable_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
    -Wcast-qual -Wcast-align -Wformat=2 -Wundef -Wdouble-promotion -Wnon-virtual-dtor
    -Wimplicit-fallthrough -Wmissing-declarations)
  if(FTHSUMMARY_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

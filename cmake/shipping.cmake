# How the program that ships is compiled and linked.

option(FTHSUMMARY_STATIC "Link a program that needs no shared library" OFF)

# Sizes of files, numbers of files and times have 64 bits on every machine. Where addresses
# have as many, they have them anyway, and the calls keep their plain names.
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  add_compile_definitions(_FILE_OFFSET_BITS=64 _TIME_BITS=64)
endif()

# No path of the build folder or of the sources may reach the program: two builds
# from different folders are the same to the byte.
add_compile_options(
  "$<$<CONFIG:Release>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>"
  "$<$<CONFIG:Release>:-ffile-prefix-map=${PROJECT_BINARY_DIR}=build>")

# The usual hardening of a program that reads files from anywhere.
add_compile_options("$<$<CONFIG:Release>:-fstack-protector-strong;-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
add_link_options("$<$<CONFIG:Release>:-Wl,-z,relro;-Wl,-z,now>")

# A static program is position-independent, too, where the C library has what it begins
# with (rcrt1.o).
if(FTHSUMMARY_STATIC)
  include(CheckCXXSourceCompiles)
  set(CMAKE_REQUIRED_FLAGS -fPIE)
  set(CMAKE_REQUIRED_LINK_OPTIONS -static-pie)
  check_cxx_source_compiles("int main() {}" FTHSUMMARY_STATIC_PIE)
  unset(CMAKE_REQUIRED_FLAGS)
  unset(CMAKE_REQUIRED_LINK_OPTIONS)
  if(FTHSUMMARY_STATIC_PIE)
    set(CMAKE_CXX_LINK_OPTIONS_PIE -static-pie)
  else()
    set(CMAKE_CXX_LINK_OPTIONS_PIE -static)
  endif()
endif()

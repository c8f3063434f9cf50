# How the program that ships is compiled and linked.

option(FTHSUMMARY_STATIC "Link a program that needs no shared library" OFF)

# No path of the build folder or of the sources may reach the program: two builds
# from different folders are the same to the byte.
add_compile_options(
  "$<$<CONFIG:Release>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.>"
  "$<$<CONFIG:Release>:-ffile-prefix-map=${PROJECT_BINARY_DIR}=build>")

# The usual hardening of a program that reads files from anywhere.
add_compile_options("$<$<CONFIG:Release>:-fstack-protector-strong;-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
add_link_options("$<$<CONFIG:Release>:-Wl,-z,relro;-Wl,-z,now>")

# A static program is position-independent, too.
if(FTHSUMMARY_STATIC)
  set(CMAKE_CXX_LINK_OPTIONS_PIE -static-pie)
endif()

# A toolchain for a static program with musl as its C library, by Debian's musl-tools and
# the ordinary compiler:
#
#   cmake --preset static -B build/musl --toolchain cmake/musl.cmake
#
# The headers of the C++ library are those of the compiler. They ask the C library for its
# version by a macro that only glibc has; here the answer is that it is older than all.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_CXX_COMPILER g++ CACHE STRING "" FORCE)
execute_process(COMMAND g++ -print-multiarch OUTPUT_VARIABLE triplet
                OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND g++ -dumpversion OUTPUT_VARIABLE version
                OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE "-gnu.*$" "-musl" musl "${triplet}")
set(CMAKE_SYSTEM_PROCESSOR "${CMAKE_HOST_SYSTEM_PROCESSOR}")

set(CMAKE_CXX_FLAGS_INIT "-specs /usr/lib/${musl}/musl-gcc.specs \"-D__GLIBC_PREREQ(major,minor)=0\"")
foreach(folder "c++/${version}" "${triplet}/c++/${version}" "c++/${version}/backward" "${musl}")
  string(APPEND CMAKE_CXX_FLAGS_INIT " -isystem /usr/include/${folder}")
endforeach()

# musl-gcc links every program as one that is loaded by musl's loader.
set(FTHSUMMARY_STATIC_PIE OFF CACHE BOOL "" FORCE)

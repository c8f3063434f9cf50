# A toolchain for another processor: Debian's cross compiler, and qemu, where it is
# installed, to run what it builds. FTHSUMMARY_ARCHITECTURE says which one, by Debian's name:
#
#   cmake --preset checked -B build/arm64 --toolchain cmake/cross.cmake -DFTHSUMMARY_ARCHITECTURE=arm64
#
# The tests also need the libraries of that architecture: see tools/test-elsewhere.

# Debian's name, GNU's name, qemu's name; "-" where the processors of today run it.
set(machines
    arm64/aarch64-linux-gnu/aarch64
    armhf/arm-linux-gnueabihf/arm
    i386/i686-linux-gnu/-
    riscv64/riscv64-linux-gnu/riscv64
    s390x/s390x-linux-gnu/s390x)

list(FILTER machines INCLUDE REGEX "^${FTHSUMMARY_ARCHITECTURE}/")
if(NOT machines MATCHES "^[^/]+/(([^-]+)-[^/]+)/(.+)$")
  message(FATAL_ERROR "FTHSUMMARY_ARCHITECTURE is '${FTHSUMMARY_ARCHITECTURE}', which cmake/cross.cmake does not list")
endif()
set(triplet "${CMAKE_MATCH_1}")
set(qemu "${CMAKE_MATCH_3}")

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR "${CMAKE_MATCH_2}")
set(CMAKE_CXX_COMPILER "${triplet}-g++" CACHE STRING "" FORCE)
# Debian's folders go by the oldest processor of the kind.
string(REPLACE "i686-" "i386-" folder "${triplet}")
set(ENV{PKG_CONFIG_LIBDIR} "/usr/lib/${folder}/pkgconfig:/usr/share/pkgconfig")
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE "${FTHSUMMARY_ARCHITECTURE}")
set(CPACK_RPM_PACKAGE_ARCHITECTURE "${CMAKE_SYSTEM_PROCESSOR}")
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES FTHSUMMARY_ARCHITECTURE)

if(NOT qemu STREQUAL "-")
  # The second name is for a qemu whose ordinary build is a static one.
  find_program(FTHSUMMARY_QEMU NAMES "qemu-${qemu}-static" "qemu-${qemu}")
  if(FTHSUMMARY_QEMU)
    set(CMAKE_CROSSCOMPILING_EMULATOR "${FTHSUMMARY_QEMU}")
  endif()
endif()

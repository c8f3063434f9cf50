# Where the program and its papers are installed, and the Debian package.
#
# Three components: `program` goes everywhere, `local` only where cmake --install
# puts it, `debian` only into the package, whose man page and changelog are
# compressed and whose completions for zsh have a folder of their own.

include(GNUInstallDirs)

# Not known, and not for these files to decide: who maintains the package (here) and
# under which licence (in LICENCE-TO-BE-CHOSEN).
set(FTHSUMMARY_MAINTAINER "fthsummary maintainers <maintainers@example.invalid>")

set(data "${CMAKE_INSTALL_DATADIR}")
install(TARGETS fthsummary RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT program)
install(FILES completions/fthsummary.bash RENAME fthsummary
        DESTINATION "${data}/bash-completion/completions" COMPONENT program)
install(FILES completions/fthsummary.fish
        DESTINATION "${data}/fish/vendor_completions.d" COMPONENT program)
install(DIRECTORY filters DESTINATION "${data}/fthsummary" COMPONENT program)
install(FILES README.md SECURITY.md DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT program)
install(DIRECTORY docs DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT program
        PATTERN content-policy EXCLUDE)
install(DIRECTORY examples DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT program)
install(PROGRAMS docs/content-policy DESTINATION "${CMAKE_INSTALL_DOCDIR}/docs"
        COMPONENT program)

install(FILES man/fthsummary.1 DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT local)
install(FILES completions/_fthsummary DESTINATION "${data}/zsh/site-functions"
        COMPONENT local)
install(FILES CHANGELOG.md LICENCE-TO-BE-CHOSEN DESTINATION "${CMAKE_INSTALL_DOCDIR}"
        COMPONENT local)

find_program(GZIP gzip)
if(NOT GZIP)
  message(STATUS "No gzip: the Debian package cannot be made")
  return()
endif()

# packed(NAME file COMMAND command...): at build time, what the command prints, packed.
set(debian "${CMAKE_CURRENT_BINARY_DIR}/debian")
file(MAKE_DIRECTORY "${debian}")
function(packed name input)
  add_custom_command(
    OUTPUT "${debian}/${name}.gz"
    COMMAND ${ARGN} "${input}" > "${debian}/${name}"
    COMMAND "${GZIP}" -9nf "${debian}/${name}"
    DEPENDS "${input}" "${PROJECT_SOURCE_DIR}/tools/lib/debian-changelog"
    VERBATIM)
endfunction()
packed(fthsummary.1 "${PROJECT_SOURCE_DIR}/man/fthsummary.1" cat)
packed(changelog "${PROJECT_SOURCE_DIR}/CHANGELOG.md"
       "${PROJECT_SOURCE_DIR}/tools/lib/debian-changelog" "${FTHSUMMARY_MAINTAINER}")
add_custom_target(debian_files ALL DEPENDS "${debian}/fthsummary.1.gz" "${debian}/changelog.gz")

install(FILES "${debian}/fthsummary.1.gz" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1"
        COMPONENT debian EXCLUDE_FROM_ALL)
install(FILES "${debian}/changelog.gz" DESTINATION "${CMAKE_INSTALL_DOCDIR}"
        COMPONENT debian EXCLUDE_FROM_ALL)
install(FILES LICENCE-TO-BE-CHOSEN RENAME copyright DESTINATION "${CMAKE_INSTALL_DOCDIR}"
        COMPONENT debian EXCLUDE_FROM_ALL)
install(FILES completions/_fthsummary DESTINATION "${data}/zsh/vendor-completions"
        COMPONENT debian EXCLUDE_FROM_ALL)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "fthsummary")
set(CPACK_PACKAGE_CONTACT "${FTHSUMMARY_MAINTAINER}")
# A "-" would start a Debian revision; "~" sorts before the release itself.
string(REPLACE "-" "~" CPACK_PACKAGE_VERSION "${FTHSUMMARY_VERSION_TEXT}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY "${CMAKE_BINARY_DIR}")
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL program debian)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_NAME fthsummary)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "bash-completion, jq, python3-jsonschema")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "\
fthsummary reads the Fathomix analyze reports below a directory and writes
one self-contained HTML page that says which passed, failed or ended in an
error. On request it writes the same as JSON, and its exit status tells a
script whether anything went wrong.
.
It needs no configuration, no network and no other program.")
# Every time in the package is the date of the release in the changelog.
set(CPACK_PROJECT_CONFIG_FILE "${CMAKE_CURRENT_BINARY_DIR}/cpack_date.cmake")
execute_process(
  COMMAND "${PROJECT_SOURCE_DIR}/tools/lib/debian-changelog" --epoch "${PROJECT_SOURCE_DIR}/CHANGELOG.md"
  OUTPUT_VARIABLE epoch OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
file(WRITE "${CPACK_PROJECT_CONFIG_FILE}" "set(ENV{SOURCE_DATE_EPOCH} ${epoch})\n")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS CHANGELOG.md)
include(CPack)

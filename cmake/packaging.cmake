# Where the program and its papers are installed, and the packages.
#
# `program` goes everywhere. Of the other components, cmake --install puts `local` and
# `papers` in place; the RPM has `papers` and `packed`, and the Debian package has `packed`
# and `debian`, for there the changelog is compressed, too, and completions for zsh have a
# folder of their own.

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
        COMPONENT papers)
install(FILES CHANGELOG.md LICENCE-TO-BE-CHOSEN DESTINATION "${CMAKE_INSTALL_DOCDIR}"
        COMPONENT papers)

find_program(GZIP gzip)
if(NOT GZIP)
  message(STATUS "No gzip: the packages cannot be made")
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
        COMPONENT packed EXCLUDE_FROM_ALL)
install(FILES "${debian}/changelog.gz" DESTINATION "${CMAKE_INSTALL_DOCDIR}"
        COMPONENT debian EXCLUDE_FROM_ALL)
install(FILES LICENCE-TO-BE-CHOSEN RENAME copyright DESTINATION "${CMAKE_INSTALL_DOCDIR}"
        COMPONENT debian EXCLUDE_FROM_ALL)
install(FILES completions/_fthsummary DESTINATION "${data}/zsh/vendor-completions"
        COMPONENT debian EXCLUDE_FROM_ALL)

set(CPACK_GENERATOR DEB RPM)
set(description "\
fthsummary reads the Fathomix analyze reports below a directory and writes
one self-contained HTML page that says which passed, failed or ended in an
error. On request it writes the same as JSON, and its exit status tells a
script whether anything went wrong.")
set(promise "It needs no configuration, no network and no other program.")
set(CPACK_PACKAGE_VENDOR "fthsummary")
set(CPACK_PACKAGE_CONTACT "${FTHSUMMARY_MAINTAINER}")
# A "-" would start a Debian revision; "~" sorts before the release itself.
string(REPLACE "-" "~" CPACK_PACKAGE_VERSION "${FTHSUMMARY_VERSION_TEXT}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY "${CMAKE_BINARY_DIR}")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_RPM_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_NAME fthsummary)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# Debian's tool reads what the program needs from the libraries of this machine; for another
# one it is what a test allows at most.
if(CMAKE_CROSSCOMPILING)
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6 (>= 2.34)")
else()
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
endif()
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "bash-completion, jq, python3-jsonschema")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "${description}\n.\n${promise}")

set(CPACK_RPM_FILE_NAME RPM-DEFAULT)
set(CPACK_RPM_PACKAGE_NAME fthsummary)
set(CPACK_RPM_PACKAGE_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_RPM_PACKAGE_DESCRIPTION "${description}\n\n${promise}")
set(CPACK_RPM_PACKAGE_LICENSE "To be chosen")
set(CPACK_RPM_PACKAGE_GROUP "Applications/Text")
set(CPACK_RPM_PACKAGE_AUTOREQ ON)
set(CPACK_RPM_EXCLUDE_FROM_AUTO_FILELIST_ADDITION
    /usr/share/man /usr/share/man/man1 /usr/share/zsh /usr/share/zsh/site-functions
    /usr/share/fish /usr/share/fish/vendor_completions.d
    /usr/share/bash-completion /usr/share/bash-completion/completions)
# Neither the builder's name nor the time of the build is in it.
set(CPACK_RPM_SPEC_MORE_DEFINE "\
%define packager ${FTHSUMMARY_MAINTAINER}
%define _buildhost localhost
%define use_source_date_epoch_as_buildtime 1
%define clamp_mtime_to_source_date_epoch 1
%define _build_id_links none")

# Every time in a package is the date of the release in the changelog.
set(CPACK_PROJECT_CONFIG_FILE "${CMAKE_CURRENT_BINARY_DIR}/cpack_settings.cmake")
execute_process(
  COMMAND "${PROJECT_SOURCE_DIR}/tools/lib/debian-changelog" --epoch "${PROJECT_SOURCE_DIR}/CHANGELOG.md"
  OUTPUT_VARIABLE epoch OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
file(WRITE "${CPACK_PROJECT_CONFIG_FILE}" "\
set(ENV{SOURCE_DATE_EPOCH} ${epoch})
if(CPACK_GENERATOR STREQUAL RPM)
  set(CPACK_COMPONENTS_ALL program papers packed)
else()
  set(CPACK_COMPONENTS_ALL program packed debian)
endif()
")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS CHANGELOG.md)
include(CPack)

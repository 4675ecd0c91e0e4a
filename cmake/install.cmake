# What "cmake --install" puts where, and the packages that CPack makes of it: "cpack --preset deb" and "cpack --preset
# source".
install(TARGETS brenlow)
install(FILES docs/man/brenlow.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES docs/man/brenlow.conf.5 DESTINATION ${CMAKE_INSTALL_MANDIR}/man5)
install(FILES CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY samples/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)
if(UNIX AND NOT APPLE)
  install(FILES packaging/brenlow.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES packaging/example.brenlow.brenlow.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
  install(FILES packaging/brenlow.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
  # No system knows the type of a Fountain screenplay by itself.
  install(FILES packaging/brenlow-mime.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages RENAME brenlow.xml)
endif()

set(CPACK_PACKAGE_NAME brenlow)
set(CPACK_PACKAGE_VENDOR Brenlow)
set(CPACK_PACKAGE_CONTACT "Brenlow <feedback@brenlow.example>")
set(CPACK_PACKAGE_HOMEPAGE_URL https://brenlow.example)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "word processor for writers in the terminal")
set(CPACK_PACKAGE_DESCRIPTION
    "The whole screen is your text: no mouse, no toolbar, no tabs. Brenlow writes
OpenDocument Text with bold, italic and page breaks, and plain text, Markdown
and Fountain screenplays as they are. Any line that begins with # is a chapter
that folds away and can be moved.")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR TGZ)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION editors)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "wl-clipboard | xclip | xsel, kbd")
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_SOURCE_DIR}/cmake/debian_files.cmake)
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_SOURCE_DIR}/cmake/package_prefix.cmake)

set(CPACK_SOURCE_GENERATOR TGZ)
set(CPACK_SOURCE_PACKAGE_FILE_NAME brenlow-${PROJECT_VERSION})
# Patterns for whole paths. A checkout may itself lie in a folder "build".
string(REGEX REPLACE "([][+.*()^$?|\\])" "\\\\\\1" source_pattern "${CMAKE_SOURCE_DIR}")
set(CPACK_SOURCE_IGNORE_FILES "^${source_pattern}/build/" "^${source_pattern}/[.]git(/|$)" "^${source_pattern}/[.]cache/"
                              "~$")
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)

# Script of CPack, run on the folder that becomes the package: what Debian's policy asks for beyond the installed files.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()
set(packaging ${CMAKE_CURRENT_LIST_DIR}/../packaging)
set(root ${CPACK_TEMPORARY_INSTALL_DIRECTORY})
set(docs ${root}/usr/share/doc/${CPACK_PACKAGE_NAME})
file(COPY_FILE ${packaging}/copyright ${docs}/copyright)
file(RENAME ${docs}/CHANGELOG.md ${docs}/changelog)

# Debian's own log of the package tells only that there is a new version.
file(STRINGS ${packaging}/example.brenlow.brenlow.metainfo.xml release REGEX "<release " LIMIT_COUNT 1)
string(REGEX REPLACE ".*date=\"([^\"]*)\".*" "\\1" date "${release}")
execute_process(COMMAND date -R -u -d ${date} OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE
                COMMAND_ERROR_IS_FATAL ANY)
set(version ${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
file(WRITE ${docs}/changelog.Debian "brenlow (${version}) stable; urgency=medium

  * Brenlow ${CPACK_PACKAGE_VERSION}; see changelog.gz.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")

file(GLOB compressed ${docs}/changelog* ${root}/usr/share/man/man*/*)
execute_process(COMMAND gzip -9n ${compressed} COMMAND_ERROR_IS_FATAL ANY)
file(GLOB_RECURSE files LIST_DIRECTORIES false ${docs}/*)
file(CHMOD ${files} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)

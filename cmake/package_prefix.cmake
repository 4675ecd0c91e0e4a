# Script of CPack, run for each generator: a Debian package belongs to the system, not to /usr/local.
if(CPACK_GENERATOR STREQUAL "DEB")
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
endif()

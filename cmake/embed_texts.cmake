# Turns every text file of screen/texts/ into one constant of namespace brenlow::texts, named after the file
# and declared in the generated header texts.h.
file(GLOB TEXT_FILES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/screen/texts/*.txt)
set(EMBEDDED_TEXTS ${CMAKE_BINARY_DIR}/generated/texts.cpp)
add_custom_command(
  OUTPUT ${EMBEDDED_TEXTS} ${CMAKE_BINARY_DIR}/generated/texts.h
  COMMAND ${CMAKE_COMMAND} "-DOUT=${CMAKE_BINARY_DIR}/generated" "-DFILES=${TEXT_FILES}" -P
          ${CMAKE_SOURCE_DIR}/cmake/write_texts.cmake
  DEPENDS ${TEXT_FILES} ${CMAKE_SOURCE_DIR}/cmake/write_texts.cmake
  VERBATIM)

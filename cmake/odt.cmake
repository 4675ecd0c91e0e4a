# What needs libzip and libxml2. The program loads it when it first meets a package (documents/odt_module.h); tests,
# benchmarks and fuzz targets link brenlow_odt itself.
set(ODT_SOURCES
    documents/odt_format.cpp
    documents/odt_paragraph.cpp
    documents/odt_reader.cpp
    documents/odt_segments.cpp
    documents/odt_styles.cpp
    documents/odt_writer.cpp
    documents/xml_tree.cpp
    documents/xml_writer.cpp
    documents/zip_package.cpp)
add_library(brenlow_odt OBJECT ${ODT_SOURCES})
target_link_libraries(brenlow_odt PUBLIC brenlow_plain PkgConfig::LIBZIP PkgConfig::LIBXML)

add_library(brenlow_odt_module MODULE documents/odt_module.cpp)
target_link_libraries(brenlow_odt_module PRIVATE brenlow_odt)
set_target_properties(brenlow_odt_module PROPERTIES PREFIX "" OUTPUT_NAME brenlow-odt)

# The version keeps a program that runs during an upgrade from loading another one's.
set(ODT_MODULE_DIR ${CMAKE_INSTALL_LIBDIR}/brenlow/${PROJECT_VERSION})
GNUInstallDirs_get_absolute_install_dir(ODT_MODULE_FULL_DIR ODT_MODULE_DIR LIBDIR)
install(TARGETS brenlow_odt_module LIBRARY DESTINATION ${ODT_MODULE_DIR})

# The program looks for it beside itself, as in a build folder, and in the folder for libraries of an installation. The
# system's loader puts the folder of the program in place of the first word.
function(load_odt_module program)
  target_sources(${program} PRIVATE ${CMAKE_SOURCE_DIR}/documents/odt_loader.cpp)
  target_link_libraries(${program} PRIVATE ${CMAKE_DL_LIBS})
  add_dependencies(${program} brenlow_odt_module)
  set(origin $<IF:$<PLATFORM_ID:Darwin>,@executable_path,$ORIGIN>)
  file(RELATIVE_PATH libraries ${CMAKE_INSTALL_FULL_BINDIR} ${ODT_MODULE_FULL_DIR})
  set(name $<TARGET_FILE_NAME:brenlow_odt_module>)
  set_source_files_properties(${CMAKE_SOURCE_DIR}/documents/odt_loader.cpp PROPERTIES COMPILE_DEFINITIONS
    "BRENLOW_ODT_BESIDE=\"${origin}/${name}\";BRENLOW_ODT_INSTALLED=\"${origin}/${libraries}/${name}\"")
endfunction()

# The API reference of the public C headers: `cmake --build build --target docs`
# when Doxygen is there; the normal build never needs it. A built reference is
# installed under the documentation folder.
find_package(Doxygen QUIET)
if(NOT DOXYGEN_FOUND)
  return()
endif()
set(DOXYGEN_PROJECT_NAME "ocsystem_map")
set(DOXYGEN_PROJECT_NUMBER ${PROJECT_VERSION})
set(DOXYGEN_PROJECT_BRIEF "The C ABI of the OpenConfig system mapping library")
set(DOXYGEN_OPTIMIZE_OUTPUT_FOR_C YES)
set(DOXYGEN_EXTRACT_ALL YES)
set(DOXYGEN_JAVADOC_AUTOBRIEF YES)
set(DOXYGEN_FULL_PATH_NAMES NO)
set(DOXYGEN_GENERATE_LATEX NO)
set(DOXYGEN_WARN_IF_UNDOCUMENTED NO)
set(DOXYGEN_ENABLE_PREPROCESSING YES)
set(DOXYGEN_MACRO_EXPANSION YES)
set(DOXYGEN_INPUT_FILTER "sh ${PROJECT_SOURCE_DIR}/cmake/doxygen_filter.sh")
set(DOXYGEN_FILTER_SOURCE_FILES NO)
set(DOXYGEN_HTML_OUTPUT ${PROJECT_BINARY_DIR}/docs/html)
set(DOXYGEN_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/docs)
file(GLOB headers ${PROJECT_SOURCE_DIR}/include/*.h)
doxygen_add_docs(docs ${headers} ${PROJECT_BINARY_DIR}/include/ocsystem_map_version.h
  ${PROJECT_SOURCE_DIR}/framework/include/yfw/standin.h
  COMMENT "API reference of the public C headers")
install(DIRECTORY ${PROJECT_BINARY_DIR}/docs/html DESTINATION ${CMAKE_INSTALL_DOCDIR} OPTIONAL)

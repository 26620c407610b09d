# Install rules, the CMake package, the pkg-config files and the Debian
# package. Every file comes from a rule below; nothing else of the build tree
# is installed.
include(CMakePackageConfigHelpers)

set(OCSYSMAP_INCLUDE_DEST ${CMAKE_INSTALL_INCLUDEDIR}/ocsystem_map)
set(OCSYSMAP_CMAKE_DEST ${CMAKE_INSTALL_LIBDIR}/cmake/ocsystem_map)

# The libraries: the mapping library, its companions and the stand-in framework,
# which a host with a framework of its own does not link.
install(TARGETS ocsystem_map ocsystem_companions yfw_standin EXPORT ocsystem_map_targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${OCSYSMAP_INCLUDE_DEST})
# The contract headers, the version, the stand-in's own headers.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${OCSYSMAP_INCLUDE_DEST}
  FILES_MATCHING PATTERN "*.h")
install(FILES ${PROJECT_BINARY_DIR}/include/ocsystem_map_version.h
  DESTINATION ${OCSYSMAP_INCLUDE_DEST})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/framework/include/yfw DESTINATION ${OCSYSMAP_INCLUDE_DEST})

# The programs find the libraries beside them in any prefix.
set(programs ocsysmap)
if(TARGET ocsysmapd)
  list(APPEND programs ocsysmapd)
endif()
set_target_properties(${programs} PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
install(TARGETS ${programs} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
foreach(program IN LISTS programs)
  install(FILES ${PROJECT_SOURCE_DIR}/man/${program}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  if(OCSYSMAP_TESTS)
    add_test(NAME ${program}_help_version_page COMMAND sh ${PROJECT_SOURCE_DIR}/man/program_pages.sh
      $<TARGET_FILE:${program}> ${PROJECT_SOURCE_DIR}/man/${program}.1 ${PROJECT_VERSION})
  endif()
endforeach()

# find_package(ocsystem_map CONFIG): imported targets and a version file.
install(EXPORT ocsystem_map_targets NAMESPACE ocsystem_map:: FILE ocsystem_mapTargets.cmake
  DESTINATION ${OCSYSMAP_CMAKE_DEST})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/ocsystem_mapConfig.cmake.in
  ${PROJECT_BINARY_DIR}/cmake/ocsystem_mapConfig.cmake INSTALL_DESTINATION ${OCSYSMAP_CMAKE_DEST})
# The soname changes with the major version, and so may the C ABI.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/cmake/ocsystem_mapConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/cmake/ocsystem_mapConfig.cmake
  ${PROJECT_BINARY_DIR}/cmake/ocsystem_mapConfigVersion.cmake DESTINATION ${OCSYSMAP_CMAKE_DEST})

# pkg-config: the prefix is found from the .pc file's own place.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  message(FATAL_ERROR "CMAKE_INSTALL_LIBDIR must be relative to the prefix")
endif()
file(RELATIVE_PATH OCSYSMAP_PC_TO_PREFIX /root/${CMAKE_INSTALL_LIBDIR}/pkgconfig /root)
foreach(pc ocsystem_map ocsystem_map_standin)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${pc}.pc.in ${PROJECT_BINARY_DIR}/pkgconfig/${pc}.pc
    @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/pkgconfig/${pc}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

# cpack -G DEB: one package with the libraries, headers, programs and pages;
# its dependencies are read from the binaries by dpkg-shlibdeps.
set(CPACK_PACKAGE_NAME ocsystem-map)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
  "OpenConfig system mapping library, its tool and a simulated NETCONF device")
set(CPACK_PACKAGE_DESCRIPTION "Maps YANG data trees between the OpenConfig system models and \
a device's native modules, through a C ABI that a management framework loads. Holds the mapping \
library with its companions, a stand-in framework, their headers, CMake and pkg-config files, \
the ocsysmap tool and the ocsysmapd simulated device.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_GENERATOR DEB)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "ocsystem-map developers <ocsystem-map@localhost>")
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_STRIP_FILES ON)
include(CPack)

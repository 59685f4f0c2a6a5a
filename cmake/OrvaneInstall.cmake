# What `cmake --install` puts in place: the library, its headers, and what find_package and pkg-config read.
include(CMakePackageConfigHelpers)

# One include folder, include/orvane: <orvane/orvane.h>, <orvane/orvane.hpp>, and beneath it the class headers
# under the names by which they include each other ("ov_sys/Interface/...").
set(ORVANE_HEADERS ${CMAKE_INSTALL_INCLUDEDIR}/orvane)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/ov_sys/include/orvane/ DESTINATION ${ORVANE_HEADERS})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/ov_sys/Interface DESTINATION ${ORVANE_HEADERS}/ov_sys
  FILES_MATCHING PATTERN "*.h")

install(TARGETS orvane EXPORT orvane-targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} NAMELINK_COMPONENT development)

set(ORVANE_PACKAGE ${CMAKE_INSTALL_LIBDIR}/cmake/orvane)
install(EXPORT orvane-targets NAMESPACE orvane:: DESTINATION ${ORVANE_PACKAGE})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/orvane-config.cmake.in
  ${PROJECT_BINARY_DIR}/orvane-config.cmake INSTALL_DESTINATION ${ORVANE_PACKAGE})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/orvane-config-version.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/orvane-config.cmake ${PROJECT_BINARY_DIR}/orvane-config-version.cmake
  DESTINATION ${ORVANE_PACKAGE})

# The .pc file finds the rest of the installation from its own place, so that the tree can be moved.
file(RELATIVE_PATH ORVANE_PC_TO_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(${PROJECT_SOURCE_DIR}/cmake/orvane.pc.in ${PROJECT_BINARY_DIR}/orvane.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/orvane.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The simulated boards come along, for users who test against them.
if(TARGET orvane-sim AND TARGET orvane-lab)
  install(TARGETS orvane-sim orvane-lab RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

# What `cmake --install` puts in place: the library, its headers, what find_package and pkg-config read, and the
# simulated boards. The component of an install() says which Debian package it goes into (OrvanePackages.cmake).
include(CMakePackageConfigHelpers)

# One include folder, include/orvane-MAJOR, and one -I: <orvane/orvane.h>, <orvane/orvane.hpp>, <orvane/lab.h>, and beside
# them the headers that these include ("ov_sys/...", "simulator/..."); no other name is found there. Which headers are
# public stands in the file sets of each room. './check install' compiles each of them alone.
set(ORVANE_HEADERS ${CMAKE_INSTALL_INCLUDEDIR}/orvane-${PROJECT_VERSION_MAJOR})
function(orvane_install_library target)
  install(TARGETS ${target} ${ARGN}
    FILE_SET interface DESTINATION ${ORVANE_HEADERS} COMPONENT development
    FILE_SET HEADERS DESTINATION ${ORVANE_HEADERS} COMPONENT development)
endfunction()
orvane_install_library(orvane EXPORT orvane-targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development)

set(ORVANE_PACKAGE ${CMAKE_INSTALL_LIBDIR}/cmake/orvane)
install(EXPORT orvane-targets NAMESPACE orvane:: DESTINATION ${ORVANE_PACKAGE} COMPONENT development)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/orvane-config.cmake.in
  ${PROJECT_BINARY_DIR}/orvane-config.cmake INSTALL_DESTINATION ${ORVANE_PACKAGE})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/orvane-config-version.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/orvane-config.cmake ${PROJECT_BINARY_DIR}/orvane-config-version.cmake
  DESTINATION ${ORVANE_PACKAGE} COMPONENT development)

# The .pc file finds the rest of the installation from its own place, so that the tree can be moved.
file(RELATIVE_PATH ORVANE_PC_TO_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(${PROJECT_SOURCE_DIR}/cmake/orvane.pc.in ${PROJECT_BINARY_DIR}/orvane.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/orvane.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
  COMPONENT development)

# What a user reads, and the examples to start from.
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT development
  FILES_MATCHING PATTERN "*.md" PATTERN "*.svg")
install(FILES docs/register-map.schema.json docs/orvane-records.schema.json
  DESTINATION ${CMAKE_INSTALL_DATADIR}/orvane COMPONENT development)
install(DIRECTORY examples/tasks/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples COMPONENT development
  FILES_MATCHING PATTERN "*.c" PATTERN "*.cpp")

# The simulated boards come along, for users who test against them: two commands, and the library orvane::lab
# with <orvane/lab.h>.
if(ORVANE_BUILD_SIMULATOR)
  install(TARGETS orvane-sim orvane-lab RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  orvane_install_library(orvane_simulator EXPORT orvane-lab-targets
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
  install(EXPORT orvane-lab-targets NAMESPACE orvane:: DESTINATION ${ORVANE_PACKAGE} COMPONENT development)
  install(FILES ${PROJECT_SOURCE_DIR}/simulator/script/lab-file.schema.json
    DESTINATION ${CMAKE_INSTALL_DATADIR}/orvane COMPONENT tools)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/orvane-lab.pc.in ${PROJECT_BINARY_DIR}/orvane-lab.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/orvane-lab.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT development)
endif()

# The command line; its manual page and completion, and those of the simulator, come with orvane_add_documents().
if(TARGET orvane-tool)
  install(TARGETS orvane-tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
endif()

# Builds what is installed and nothing else; ./demo does, so that `cmake --install` may follow it.
add_custom_target(orvane-installed)
foreach(target orvane orvane-sim-documents orvane-lab-documents orvane-tool-documents orvane_python)
  if(TARGET ${target})
    add_dependencies(orvane-installed ${target})
  endif()
endforeach()

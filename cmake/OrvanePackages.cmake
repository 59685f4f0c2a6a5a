# The Debian packages that `cpack --preset package` makes: liborvane0, liborvane-dev, orvane-tools, python3-orvane and, with
# ORVANE_BUILD_WEB, orvane-web.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME orvane)
set(CPACK_PACKAGE_CONTACT "Orvane developers <orvane@example.org>")
set(CPACK_PACKAGE_VENDOR Orvane)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL library development tools)
set(CPACK_DEB_COMPONENT_INSTALL ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
# dpkg-shlibdeps names the packages of the shared libraries; ours, which no package holds yet, it finds here.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/ov_sys)
# Who links the library needs the version it was linked with, or a newer one of the same SONAME.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME liborvane${PROJECT_VERSION_MAJOR})
set(ORVANE_LIBRARY_PACKAGE "${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME} (= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "The shared library: finds evaluation boards on the local networks, opens sessions on them and forwards
MDIO, I2C, GPIO, JTAG, ADC and thermal operations to the board's own server.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME liborvane-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "Headers for C and C++, the CMake package, the pkg-config file, documentation and examples.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${ORVANE_LIBRARY_PACKAGE}, libtirpc-dev")
# For <orvane/lab_json.h> only.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS nlohmann-json3-dev)

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME orvane-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION electronics)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "The command line tools and the simulated boards: orvane-sim serves them, orvane-lab runs a command
in a private network with boards in it.")
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${ORVANE_LIBRARY_PACKAGE}")

if(TARGET orvane_python)
  list(APPEND CPACK_COMPONENTS_ALL python)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-orvane)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/packaging/python3-orvane/postinst ${PROJECT_SOURCE_DIR}/packaging/python3-orvane/prerm)
  set(CPACK_COMPONENT_PYTHON_DESCRIPTION "The package orvane for Python: registers of Ethernet PHYs on evaluation boards as numpy arrays.")
  math(EXPR next_minor "${Python_VERSION_MINOR} + 1") # the module is compiled for one minor version
  set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "${ORVANE_LIBRARY_PACKAGE}, python3 (>= 3.${Python_VERSION_MINOR}), python3 (<< 3.${next_minor}~), python3-numpy")
  # orvane.pytest, curves in notebooks, and orvane.lab.run().
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "python3-pytest, python3-matplotlib, python3-aiohttp, orvane-web, python3-labgrid, orvane-tools")
endif()

if(ORVANE_BUILD_WEB)
  list(APPEND CPACK_COMPONENTS_ALL web)
  set(CPACK_DEBIAN_WEB_PACKAGE_NAME orvane-web)
  set(CPACK_DEBIAN_WEB_PACKAGE_SECTION web)
  set(CPACK_DEBIAN_WEB_PACKAGE_ARCHITECTURE all)
  set(CPACK_COMPONENT_WEB_DESCRIPTION "The pages of orvane serve: boards, registers, time lines and runs in a browser.")
  set(CPACK_DEBIAN_WEB_PACKAGE_DEPENDS "python3-orvane, python3-aiohttp")
endif()

include(CPack)

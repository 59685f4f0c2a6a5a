# Finds what the Python package is built with: the interpreter that Debian's pybind11 and numpy are for, whichever other
# one comes first in PATH, and pybind11. Sets ORVANE_BUILD_PYTHON, on where both are there.
find_program(ORVANE_PYTHON NAMES python3 PATHS /usr/bin NO_DEFAULT_PATH DOC "Interpreter of the Python package")
find_program(ORVANE_PYTHON NAMES python3)
if(ORVANE_PYTHON)
  set(Python_EXECUTABLE ${ORVANE_PYTHON})
  find_package(Python 3.9 QUIET COMPONENTS Interpreter Development.Module)
  if(Python_FOUND)
    find_package(pybind11 2.10 CONFIG QUIET)
  endif()
endif()
# An interpreter that is not built with a sanitizer can load a module that is when it is started with clang's address
# sanitizer; the thread sanitizer wants to be there from the first instruction. What the sanitizer puts itself before
# (throwing, XDR's routines) has to be there when it starts.
set(ORVANE_PYTHON_PRELOAD "")
if(ORVANE_SANITIZE MATCHES address AND CMAKE_CXX_COMPILER_ID STREQUAL Clang)
  foreach(runtime libclang_rt.asan-${CMAKE_SYSTEM_PROCESSOR}.so libstdc++.so.6 libtirpc.so.3)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${runtime} OUTPUT_VARIABLE path
      OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(EXISTS ${path})
      list(APPEND ORVANE_PYTHON_PRELOAD ${path})
    endif()
  endforeach()
  list(JOIN ORVANE_PYTHON_PRELOAD ":" ORVANE_PYTHON_PRELOAD)
endif()
if(pybind11_FOUND AND (NOT ORVANE_SANITIZE OR ORVANE_PYTHON_PRELOAD))
  set(python_possible ON)
else()
  set(python_possible OFF)
endif()
option(ORVANE_BUILD_PYTHON "Build the Python package (needs pybind11 and numpy)" ${python_possible})
if(ORVANE_BUILD_PYTHON AND NOT pybind11_FOUND)
  message(FATAL_ERROR "ORVANE_BUILD_PYTHON needs pybind11 2.10 and the headers of Python (pybind11-dev, python3-dev)")
endif()

# Flags that every target of this project shares; link `orvane_build` privately to get them.
set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_VERIFY_INTERFACE_HEADER_SETS ON) # the target all_verify_interface_header_sets; see ./check install

find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(TIRPC REQUIRED IMPORTED_TARGET libtirpc)

add_library(orvane_build INTERFACE)
target_compile_options(orvane_build INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wformat=2 -Wundef
  $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual -Wextra-semi>)
if(ORVANE_WERROR)
  target_compile_options(orvane_build INTERFACE -Werror)
endif()

# What the compiler and the linker can do against memory errors that are left; for the library and the tools.
add_library(orvane_hardening INTERFACE)
if(ORVANE_HARDENING)
  include(CheckCXXCompilerFlag)
  foreach(flag -fstack-protector-strong -fstack-clash-protection -fcf-protection)
    string(MAKE_C_IDENTIFIER "ORVANE_HAS_${flag}" known)
    check_cxx_compiler_flag(${flag} ${known})
    target_compile_options(orvane_hardening INTERFACE $<$<BOOL:${${known}}>:${flag}>)
  endforeach()
  target_compile_definitions(orvane_hardening INTERFACE _GLIBCXX_ASSERTIONS)
  target_link_options(orvane_hardening INTERFACE -Wl,-z,relro,-z,now,-z,noexecstack)
  if(NOT ORVANE_SANITIZE) # whose own checks see more; without optimisation there is nothing to check with
    target_compile_options(orvane_hardening INTERFACE
      $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE> # some compilers set it by themselves
      $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-D_FORTIFY_SOURCE=2>)
  endif()
endif()

if(ORVANE_SANITIZE)
  add_compile_options(-fsanitize=${ORVANE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${ORVANE_SANITIZE})
endif()
if(ORVANE_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(ORVANE_COVERAGE)
  add_compile_options(--coverage -fprofile-update=atomic)
  add_link_options(--coverage)
endif()

# Reads the built library: what it was hardened with, and that it takes nothing from libtirpc whose answer lies in a
# buffer that all threads share. Call:
# cmake -D LIBRARY=... -D READELF=... -D OBJDUMP=... -D FORTIFIED=ON|OFF -P BuiltLibrary.cmake
cmake_minimum_required(VERSION 3.25)

function(readelf result)
  execute_process(COMMAND ${READELF} --wide ${ARGN} ${LIBRARY} OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)
  set(${result} "${text}" PARENT_SCOPE)
endfunction()

set(failed OFF)
function(expect what text pattern)
  if(NOT text MATCHES "${pattern}")
    message("missing: ${what}")
    set(failed ON PARENT_SCOPE)
  endif()
endfunction()
function(expect_no what text pattern)
  if(text MATCHES "${pattern}")
    message("should not be there: ${what} (${CMAKE_MATCH_0})")
    set(failed ON PARENT_SCOPE)
  endif()
endfunction()

readelf(segments --program-headers)
expect("relocations that become read-only" "${segments}" "GNU_RELRO")
expect("a stack without code" "${segments}" "GNU_STACK +[^\n]* RW +0x")
expect_no("a segment that is written and executed" "${segments}" "LOAD +[^\n]* RWE ")

readelf(dynamic --dynamic)
expect("symbols bound at load" "${dynamic}" "BIND_NOW|Flags:[^\n]* NOW")
expect_no("relocations in code" "${dynamic}" "TEXTREL")

# Debian's start files have no mark of it, so the library has none either: look at a function.
execute_process(COMMAND ${OBJDUMP} --disassemble=HW_Open ${LIBRARY} OUTPUT_VARIABLE code COMMAND_ERROR_IS_FATAL ANY)
expect("control-flow protection" "${code}" "<HW_Open>:\n[^\n]*endbr64")

readelf(symbols --dyn-syms)
expect("stack protection" "${symbols}" "UND __stack_chk_fail@")
expect("assertions of the standard library" "${symbols}" "UND _ZSt21__glibcxx_assert_fail")
if(FORTIFIED)
  expect("fortified calls" "${symbols}" "UND __[a-z]+_chk@")
endif()
expect_no("an object that threads destroy, which keeps the library from being unloaded" "${symbols}"
  "UND __cxa_thread_atexit")
expect_no("a text of libtirpc that threads share" "${symbols}" "UND clnt_(sperror|spcreateerror|perror|pcreateerror)@?")

if(failed)
  message(FATAL_ERROR "${LIBRARY} is not built as it should be.")
endif()

# Warnings and language flags of the house.
set(CMAKE_C_STANDARD 11)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")

add_library(nls_warnings INTERFACE)
target_compile_options(nls_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast>
  $<$<BOOL:${NLS_WERROR}>:-Werror>)

add_library(nls_instrumented INTERFACE)
if(NLS_SANITIZE)
  # Lines in the reports, and half the compiling time of -O2 -g.
  set(CMAKE_C_FLAGS_RELWITHDEBINFO "-O1 -g1")
  set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O1 -g1")
  target_compile_options(nls_instrumented INTERFACE
    -fsanitize=${NLS_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(nls_instrumented INTERFACE -fsanitize=${NLS_SANITIZE})
endif()
if(NLS_FUZZ)
  # The library tells the fuzzer which of its branches ran.
  target_compile_options(nls_instrumented INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(NLS_COVERAGE)
  target_compile_options(nls_instrumented INTERFACE --coverage)
  target_link_options(nls_instrumented INTERFACE --coverage)
endif()

# What goes into libnls.so: no exceptions, no RTTI, nothing visible but what is marked, no lock around a static.
function(nls_library_flags target)
  set_target_properties(${target} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    C_VISIBILITY_PRESET hidden CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  target_compile_options(${target} PRIVATE
    $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti -fno-threadsafe-statics>)
  target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR}/include PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${target} PRIVATE nls_warnings nls_instrumented)
  if(NLS_FUZZ)  # so that libFuzzer sees which ways through the library its inputs take
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
endfunction()

# Tools, tests and benchmarks: ordinary C++20.
function(nls_program_flags target)
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${target} PRIVATE nls_warnings nls_instrumented)
endfunction()

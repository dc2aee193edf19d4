# One line for each test, fuzz target and benchmark. The paths are relative to the current folder.
#
#   nls_test(toc_test.cpp more_test.cpp library)   a GoogleTest program that sees the library's insides (nls_static),
#                                    of one source or more and named after the first, with libraries besides
#   nls_fuzz(convert)                fuzz/convert.cpp: libFuzzer with NLS_FUZZ, else a test over its corpus
#   nls_bench(unicode)               bench/unicode.cpp
include(GoogleTest)

function(nls_test first)
  get_filename_component(name ${first} NAME_WE)
  set(sources ${first} ${ARGN})
  set(libraries ${ARGN})
  list(FILTER sources INCLUDE REGEX "\\.cpp$")
  list(FILTER libraries EXCLUDE REGEX "\\.cpp$")
  add_executable(${name} ${sources})
  nls_program_flags(${name})
  target_link_libraries(${name} PRIVATE nls_test_support nls_static GTest::gtest_main ${libraries})
  target_compile_definitions(${name} PRIVATE NLS_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data")
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 600)
endfunction()

function(nls_fuzz name)
  add_executable(fuzz_${name} ${name}.cpp)
  nls_program_flags(fuzz_${name})
  add_dependencies(fuzz_targets fuzz_${name})
  target_link_libraries(fuzz_${name} PRIVATE nls_static ${ARGN})
  if(NLS_FUZZ)
    target_compile_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
    target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
  else()
    target_sources(fuzz_${name} PRIVATE standalone_main.cpp)
    add_test(NAME fuzz_corpus.${name} COMMAND fuzz_${name} ${PROJECT_SOURCE_DIR}/fuzz/corpus/${name})
  endif()
endfunction()

function(nls_bench name)
  add_executable(bench_${name} ${name}.cpp)
  nls_program_flags(bench_${name})
  target_link_libraries(bench_${name} PRIVATE nls_bench_support ${ARGN})
endfunction()

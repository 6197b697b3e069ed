# The words the folders' CMakeLists.txt are written in.

include(GoogleTest)

# Flags and the root include path that everything of ours is compiled with.
add_library(korvo_options INTERFACE)
target_include_directories(korvo_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_features(korvo_options INTERFACE cxx_std_20)
target_compile_options(korvo_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict> # GCC 12 warns of std::string itself (its bug 105329)
  -Wno-missing-field-initializers # designated initialisers leave the rest to its default on purpose
  $<$<AND:$<BOOL:${CMAKE_UNITY_BUILD}>,$<CXX_COMPILER_ID:GNU>>:-Wno-shadow;-Wno-subobject-linkage> # they see other sources there
  $<$<BOOL:${KORVO_WERROR}>:-Werror>)

# korvo_library(catalog SOURCES Catalog.cpp ... DEPENDS base edits LIBRARIES PkgConfig::SQLITE)
# DEPENDS names folders of ours (seen by users of this one), LIBRARIES what only the sources use.
function(korvo_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;DEPENDS;LIBRARIES" ${ARGN})
  add_library(korvo_${name} STATIC ${arg_SOURCES})
  list(TRANSFORM arg_DEPENDS PREPEND korvo_)
  target_link_libraries(korvo_${name} PUBLIC korvo_options ${arg_DEPENDS} PRIVATE ${arg_LIBRARIES})
endfunction()

# korvo_test(catalog SOURCES CatalogTest.cpp ... DEPENDS catalog LIBRARIES ...): the program catalog_test.
function(korvo_test name)
  cmake_parse_arguments(arg "" "" "SOURCES;DEPENDS;LIBRARIES" ${ARGN})
  add_executable(${name}_test ${arg_SOURCES})
  list(TRANSFORM arg_DEPENDS PREPEND korvo_)
  target_link_libraries(${name}_test PRIVATE ${arg_DEPENDS} ${arg_LIBRARIES} korvo_test_support GTest::gtest_main)
  target_compile_definitions(${name}_test PRIVATE KORVO_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data")
  gtest_discover_tests(${name}_test PROPERTIES TIMEOUT 300 DISCOVERY_TIMEOUT 60)
endfunction()

# korvo_fuzzer(BinaryPlist aperture): fuzz/BinaryPlist.cpp with libFuzzer where the compiler has it; elsewhere a
# program that replays fuzz/corpus/BinaryPlist as a test, so that no fuzzer ever rots.
function(korvo_fuzzer name)
  add_executable(fuzz_${name} ${name}.cpp)
  list(TRANSFORM ARGN PREPEND korvo_ OUTPUT_VARIABLE libraries)
  target_link_libraries(fuzz_${name} PRIVATE ${libraries})
  set(corpus ${PROJECT_SOURCE_DIR}/fuzz/corpus/${name})
  if(KORVO_FUZZ)
    target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
  else()
    target_sources(fuzz_${name} PRIVATE Replay.cpp)
  endif()
  add_test(NAME fuzz_${name} COMMAND fuzz_${name} ${corpus})
  if(KORVO_FUZZ)
    set_tests_properties(fuzz_${name} PROPERTIES ENVIRONMENT "KORVO_FUZZ=1")
  endif()
endfunction()

# korvo_bench(catalog SOURCES ... DEPENDS ... LIBRARIES ...): the program bench_catalog.
function(korvo_bench name)
  cmake_parse_arguments(arg "" "" "SOURCES;DEPENDS;LIBRARIES" ${ARGN})
  add_executable(bench_${name} ${arg_SOURCES})
  list(TRANSFORM arg_DEPENDS PREPEND korvo_)
  target_link_libraries(bench_${name} PRIVATE ${arg_DEPENDS} ${arg_LIBRARIES} korvo_bench_support)
  add_dependencies(benches bench_${name})
endfunction()

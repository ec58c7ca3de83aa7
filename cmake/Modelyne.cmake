# Helpers that keep every subsystem's CMakeLists short and alike.

# modelyne_library(<target> SOURCES ... [DEPS ...] [PUBLIC_DEPS ...])
function(modelyne_library target)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPS;PUBLIC_DEPS" ${ARGN})
  add_library(${target} STATIC ${ARG_SOURCES})
  target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${target} PUBLIC ${ARG_PUBLIC_DEPS} ${ARG_DEPS})
  if(MODELYNE_FUZZ)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
endfunction()

# modelyne_test(<target> SOURCES ... LIBS ... [ENV ...])
# One GoogleTest executable; its tests are discovered when CTest runs.
function(modelyne_test target)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS;ENV" ${ARGN})
  add_executable(${target} ${ARG_SOURCES})
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${target} PRIVATE ${ARG_LIBS} GTest::gtest GTest::gtest_main)
  target_compile_definitions(${target} PRIVATE
    MODELYNE_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
    MODELYNE_BINARY_DIR="${PROJECT_BINARY_DIR}")
  gtest_discover_tests(${target}
    DISCOVERY_MODE PRE_TEST
    WORKING_DIRECTORY ${PROJECT_BINARY_DIR}
    PROPERTIES ENVIRONMENT "${ARG_ENV}")
endfunction()

# modelyne_fuzzer(<target> SOURCES ... LIBS ...)
function(modelyne_fuzzer target)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${target} ${ARG_SOURCES})
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${target} PRIVATE ${ARG_LIBS})
  target_compile_options(${target} PRIVATE -fsanitize=fuzzer)
  target_link_options(${target} PRIVATE -fsanitize=fuzzer)
endfunction()

# modelyne_bench(<target> SOURCES ... LIBS ...)
# A Google Benchmark program; scripts/bench runs every bench_* program and
# passes Google Benchmark's options to those made here.
function(modelyne_bench target)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  if(NOT target MATCHES "^bench_")
    message(FATAL_ERROR "benchmark program ${target}: name it bench_<subsystem>... so that scripts/bench runs it")
  endif()
  set_property(GLOBAL APPEND PROPERTY MODELYNE_GOOGLE_BENCHMARKS ${target})
  add_executable(${target} ${ARG_SOURCES})
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/bench)
  target_link_libraries(${target} PRIVATE ${ARG_LIBS} benchmark::benchmark)
  target_compile_definitions(${target} PRIVATE MODELYNE_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
endfunction()

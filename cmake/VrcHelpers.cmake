# Build helpers shared by every folder: warnings, sanitizers, test, benchmark and fuzz targets.

function(vrc_apply_sanitizers)
  if(VRC_SANITIZE)
    add_compile_options(-fsanitize=${VRC_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${VRC_SANITIZE})
  endif()
  if(VRC_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
  endif()
endfunction()

# Warnings for the project's own targets; errors too when VRC_WERROR is on (as in CI).
function(vrc_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wshadow $<$<BOOL:${VRC_WERROR}>:-Werror>)
endfunction()

# vrc_add_test_suite(NAME <name> SOURCES <files...> [LIBS <libs...>] [ENV <VAR=value...>]
#                    [LABELS <labels...>])
# One GoogleTest program per subsystem, registered with CTest under its own name as label plus
# LABELS (label "threads" marks the programs that CI also runs under ThreadSanitizer).
# Tests link the imaging library's objects (vrcw32_objects), so they reach its internal headers
# and functions, which libvrcw32.so does not export. Tests find fuzz seed folders under
# VRC_SEED_DIR/<fuzz target>.
function(vrc_add_test_suite)
  cmake_parse_arguments(ARG "" "NAME" "SOURCES;LIBS;ENV;LABELS" ${ARGN})
  add_executable(${ARG_NAME} ${ARG_SOURCES})
  target_link_libraries(${ARG_NAME} PRIVATE vrcw32_objects GTest::gtest GTest::gtest_main ${ARG_LIBS})
  target_include_directories(${ARG_NAME} PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/tests)
  target_compile_definitions(${ARG_NAME} PRIVATE VRC_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
                             VRC_SEED_DIR="${PROJECT_BINARY_DIR}/fuzz-seeds")
  vrc_warnings(${ARG_NAME})
  add_test(NAME ${ARG_NAME} COMMAND ${ARG_NAME} WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})
  set_tests_properties(${ARG_NAME} PROPERTIES LABELS "${ARG_NAME};${ARG_LABELS}" TIMEOUT 900)
  if(ARG_ENV)
    set_tests_properties(${ARG_NAME} PROPERTIES ENVIRONMENT "${ARG_ENV}")
  endif()
endfunction()

# vrc_add_bench(NAME <name> SOURCES <files...> [LIBS <libs...>]): a Google Benchmark program over
# the imaging library's objects.
function(vrc_add_bench)
  cmake_parse_arguments(ARG "" "NAME" "SOURCES;LIBS" ${ARGN})
  add_executable(${ARG_NAME} ${ARG_SOURCES})
  target_link_libraries(${ARG_NAME} PRIVATE vrcw32_objects benchmark::benchmark ${ARG_LIBS})
  target_include_directories(${ARG_NAME} PRIVATE ${PROJECT_SOURCE_DIR})
  vrc_warnings(${ARG_NAME})
endfunction()

# vrc_add_fuzz(NAME <name> SOURCES <files...>): a libFuzzer target over the imaging library
# (with VRC_FUZZ). In a test build its entry point is instead linked with fuzz/replay_main.cpp and
# run as the CTest case <name>_seeds on the seeds the tests write (VRC_SEED_DIR/<name>) and on
# fuzz/regressions/<name>.
function(vrc_add_fuzz)
  cmake_parse_arguments(ARG "" "NAME" "SOURCES" ${ARGN})
  if(VRC_FUZZ)
    add_executable(${ARG_NAME} ${ARG_SOURCES})
    target_link_options(${ARG_NAME} PRIVATE -fsanitize=fuzzer)
    set(program ${ARG_NAME})
  elseif(VRC_BUILD_TESTS)
    set(program ${ARG_NAME}_replay)
    add_executable(${program} ${ARG_SOURCES} ${PROJECT_SOURCE_DIR}/fuzz/replay_main.cpp)
    add_test(NAME ${ARG_NAME}_seeds
             COMMAND ${program} ${PROJECT_BINARY_DIR}/fuzz-seeds/${ARG_NAME}
                     ${PROJECT_SOURCE_DIR}/fuzz/regressions/${ARG_NAME})
    set_tests_properties(${ARG_NAME}_seeds PROPERTIES FIXTURES_REQUIRED fuzz_seeds
                         LABELS fuzz_seeds)
  else()
    return()
  endif()
  target_link_libraries(${program} PRIVATE vrcw32_objects)
  target_include_directories(${program} PRIVATE ${PROJECT_SOURCE_DIR})
  vrc_warnings(${program})
endfunction()

# One static library a folder. All libraries share the warnings, the sanitizers and the include roots: a header is named by
# its folder ("link/Channel.h", "KvCmDrv1/Driver.h", "simulator/Controller.h").

find_program(CCACHE ccache)
if(CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

add_library(kv_options INTERFACE)
target_include_directories(kv_options INTERFACE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/libs
                                                ${PROJECT_SOURCE_DIR})
if(MSVC)
  target_compile_options(kv_options INTERFACE /W4 /WX /utf-8 /permissive-)
  target_compile_definitions(kv_options INTERFACE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0A00)
else()
  target_compile_options(kv_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor
                                              -Woverloaded-virtual -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # g++ 12 at -O3 sees overlapping copies in "text" + std::string, where there are none (its bug 105651).
  target_compile_options(kv_options INTERFACE -Wno-restrict)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # It first tidies its own memory at 400 MB instead of 128: a test compiles a seventh sooner, and takes up to 180 MB more.
  target_compile_options(kv_options INTERFACE "SHELL:--param ggc-min-heapsize=400000")
endif()
if(KV_SANITIZE)
  # In the tests' own files the checks for undefined behaviour take two fifths of the time that these compile, and what they check is the tests.
  string(REPLACE ",undefined" "" kv_test_sanitizers "${KV_SANITIZE}")
  set(kv_is_test $<BOOL:$<TARGET_PROPERTY:KV_IS_TEST>>)
  target_compile_options(kv_options INTERFACE $<${kv_is_test}:-fsanitize=${kv_test_sanitizers}> $<$<NOT:${kv_is_test}>:-fsanitize=${KV_SANITIZE}>
                                              -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(kv_options INTERFACE -fsanitize=${KV_SANITIZE})
  find_program(MOLD mold)  # these programs are large, and the usual linker takes five times as long
  if(MOLD)
    target_link_options(kv_options INTERFACE -fuse-ld=mold)
  endif()
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # The sanitizers' checks hide from g++ what is initialised: it warns of std::regex. Its manual says not to combine them.
    target_compile_options(kv_options INTERFACE -Wno-maybe-uninitialized)
  endif()
endif()

if(KV_FUZZ)
  target_compile_options(kv_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# Matchers compile in half the time without optimisation; the libraries that are tested keep what the preset says. The linker for Windows takes time by
# the square of an object's functions, and without any optimisation each of a template is one.
if(MINGW)
  set(kv_test_options -Og)
elseif(NOT MSVC)
  set(kv_test_options -O0)
endif()

# kv_precompile(<name> HEADERS ... [ON ...]): headers that are compiled once, for kv_precompiled(): <name>_headers, and for tests <name>_test_headers
function(kv_precompile name)
  cmake_parse_arguments(ARG "" "" "HEADERS;ON" ${ARGN})
  find_package(GTest REQUIRED)
  foreach(headers ${name}_headers ${name}_test_headers)
    file(WRITE ${PROJECT_BINARY_DIR}/${headers}.cpp "")
    add_library(${headers} OBJECT EXCLUDE_FROM_ALL ${PROJECT_BINARY_DIR}/${headers}.cpp)
    target_link_libraries(${headers} PRIVATE kv_options ${ARG_ON})
    target_precompile_headers(${headers} PRIVATE ${ARG_HEADERS})
  endforeach()
  target_link_libraries(${name}_test_headers PRIVATE GTest::gmock)
  target_compile_options(${name}_test_headers PRIVATE ${kv_test_options})
  set_target_properties(${name}_test_headers PROPERTIES KV_IS_TEST ON)
  target_precompile_headers(${name}_test_headers PRIVATE <gmock/gmock.h> <gtest/gtest.h>)
endfunction()

if(KV_PRECOMPILE)
  set(headers <algorithm> <chrono> <expected> <filesystem> <functional> <map> <memory> <optional> <span> <string> <string_view> <vector>)
  kv_precompile(kv_common HEADERS ${headers})
  kv_precompile(kv_command HEADERS ${headers} <CLI/App.hpp> <CLI/Option.hpp> <CLI/Validators.hpp> <nlohmann/json.hpp>)
  if(UNIX)  # programs and libraries share them, and cmake gives programs another option
    target_compile_options(kv_options INTERFACE -fPIC)
  endif()
endif()

# kv_precompiled(<target> <kind> <on>): the target, which stands on these libraries, includes what kv_precompile() has compiled, where that is wanted;
# <kind> is headers or test_headers. The windows' toolkit defines macros of its own, so what stands on them takes headers that were compiled with these.
function(kv_precompiled target kind on)
  if(KV_PRECOMPILE AND on MATCHES "_ui(;|$)|Qt6::Widgets")
    target_precompile_headers(${target} REUSE_FROM kv_window_${kind})
  elseif(KV_PRECOMPILE AND on MATCHES "CLI11::CLI11|kvtele_core")
    target_precompile_headers(${target} REUSE_FROM kv_command_${kind})
  elseif(KV_PRECOMPILE)
    target_precompile_headers(${target} REUSE_FROM kv_common_${kind})
  endif()
endfunction()

# kv_library(<target> SOURCES ... [ON libraries that this one stands on])
function(kv_library target)
  cmake_parse_arguments(ARG "" "" "SOURCES;ON" ${ARGN})
  add_library(${target} STATIC ${ARG_SOURCES})
  target_link_libraries(${target} PUBLIC kv_options ${ARG_ON})
  kv_precompiled(${target} headers "${ARG_ON}")
  set_property(GLOBAL APPEND PROPERTY KV_LIBRARIES ${target})
endfunction()

# kv_engines(<variable>): every library that knows no window, for benchmarks and fuzz targets, which may use them all.
function(kv_engines variable)
  get_property(libraries GLOBAL PROPERTY KV_LIBRARIES)
  list(FILTER libraries EXCLUDE REGEX "_ui$")
  set(${variable} ${libraries} PARENT_SCOPE)
endfunction()

# kv_windows(<variable>): every library of windows so far, for the program that shows them all.
function(kv_windows variable)
  get_property(libraries GLOBAL PROPERTY KV_LIBRARIES)
  list(FILTER libraries INCLUDE REGEX "_ui$")
  set(${variable} ${libraries} PARENT_SCOPE)
endfunction()

# kv_program(<target> SOURCES ... [ON ...] [DESCRIPTION "what it is, in its properties on Windows"])
function(kv_program target)
  cmake_parse_arguments(ARG "" "DESCRIPTION" "SOURCES;ON" ${ARGN})
  add_executable(${target} ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE kv_options ${ARG_ON})
  kv_precompiled(${target} headers "${ARG_ON}")
  set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
  if(WIN32 AND ARG_DESCRIPTION)
    kv_windows_resources(${target} "${ARG_DESCRIPTION}")
  endif()
  if(UNIX)  # an archive with the programs brings libraries, which also load each other from there
    set_target_properties(${target} PROPERTIES BUILD_RPATH "$ORIGIN/lib")
    target_link_options(${target} PRIVATE -Wl,--disable-new-dtags)
  endif()
endfunction()

# kv_test(<target> SOURCES ... [ON ...]): one GoogleTest program, one ctest entry.
function(kv_test target)
  cmake_parse_arguments(ARG "" "" "SOURCES;ON" ${ARGN})
  find_package(GTest REQUIRED)
  add_executable(${target} ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE kv_options ${ARG_ON} kv_test_records GTest::gmock GTest::gtest_main)
  kv_precompiled(${target} test_headers "${ARG_ON}")
  target_compile_definitions(${target} PRIVATE KV_TEST_DATA="${PROJECT_SOURCE_DIR}/tests")
  target_compile_options(${target} PRIVATE ${kv_test_options})
  set_target_properties(${target} PROPERTIES KV_IS_TEST ON)
  if(MINGW)  # g++ 12's headers and its static library both bring std::type_info::operator== in C++23 without optimisation; the preset windows-quick says it for the programs
    # Regular expressions take stack by the letter: as much as the tests have elsewhere.
    target_link_options(${target} PRIVATE -Wl,--allow-multiple-definition -Wl,--stack,8388608)
  endif()
  set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests)
  add_test(NAME ${target} COMMAND ${target})
  set_tests_properties(${target} PROPERTIES TIMEOUT 300)
endfunction()

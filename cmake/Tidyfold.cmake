# Functions that define libraries, programs and tests, so that all get the same warnings.

find_package(PkgConfig REQUIRED)

add_library(tidyfold_warnings INTERFACE)
target_compile_options(tidyfold_warnings INTERFACE
  $<$<COMPILE_LANGUAGE:C,CXX>:-Wall;-Wextra;-Wpedantic;-Wconversion;-Wshadow>)
if(TIDYFOLD_WERROR)
  target_compile_options(tidyfold_warnings INTERFACE $<$<COMPILE_LANGUAGE:C,CXX>:-Werror>)
endif()
if(TIDYFOLD_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

# Headers that most files include are compiled once. Files include what they use all the same: clang-tidy and
# builds with CMAKE_DISABLE_PRECOMPILE_HEADERS read them without.
set(usual_headers <algorithm> <array> <chrono> <cstdint> <filesystem> <functional> <map> <memory> <optional> <string>
  <string_view> <unordered_map> <utility> <vector>)
if(NOT WIN32)
  # Libraries ask for these here and there; a compiled header serves only those that set the same.
  add_compile_definitions(_FILE_OFFSET_BITS=64 _LARGEFILE_SOURCE _LARGEFILE64_SOURCE)
  add_compile_options(-pthread)
endif()
function(tidyfold_usual_headers name)
  file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp "")
  add_library(${name} OBJECT ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
  target_link_libraries(${name} PRIVATE tidyfold_warnings)
  target_precompile_headers(${name} PRIVATE ${usual_headers} ${ARGN})
endfunction()
tidyfold_usual_headers(tidyfold_usual_headers)

# tidyfold_library(NAME [TOOLKIT] [DEPENDS target...] SOURCES file...): the static library of one folder under src/.
# TOOLKIT: most of its files include wxWidgets.
function(tidyfold_library name)
  cmake_parse_arguments(ARG "TOOLKIT" "" "SOURCES;DEPENDS" ${ARGN})
  add_library(tidyfold_${name} STATIC ${ARG_SOURCES})
  target_include_directories(tidyfold_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(tidyfold_${name} PUBLIC ${ARG_DEPENDS} PRIVATE tidyfold_warnings)
  if(ARG_TOOLKIT)
    target_precompile_headers(tidyfold_${name} PRIVATE ${usual_headers} <wx/wx.h> <wx/grid.h> <wx/treectrl.h>)
  else()
    target_precompile_headers(tidyfold_${name} REUSE_FROM tidyfold_usual_headers)
  endif()
endfunction()

function(tidyfold_program name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PRIVATE ${ARG_DEPENDS} tidyfold_warnings)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${TIDYFOLD_PROGRAM_DIR})
endfunction()

# What the tests test is built as it is shipped; for the tests themselves that takes twice the time for nothing.
add_library(tidyfold_test_settings INTERFACE)
target_compile_options(tidyfold_test_settings INTERFACE $<$<NOT:$<CONFIG:Debug>>:-O0>)

# tidyfold_test(NAME [ALONE] [DEPENDS target...] SOURCES file...): one GoogleTest program, each case a CTest
# test. ALONE: no other test runs beside one of these.
function(tidyfold_test name)
  cmake_parse_arguments(ARG "ALONE" "" "SOURCES;DEPENDS" ${ARGN})
  add_executable(test_${name} ${ARG_SOURCES})
  target_include_directories(test_${name} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/tests)
  # Files of other programs, which are not part of this project.
  target_compile_definitions(test_${name} PRIVATE TIDYFOLD_SHARED_DATA="${PROJECT_SOURCE_DIR}/../shared/data")
  target_link_libraries(test_${name} PRIVATE ${ARG_DEPENDS} GTest::gtest GTest::gmock GTest::gtest_main
                                             tidyfold_warnings tidyfold_test_settings)
  target_precompile_headers(test_${name} REUSE_FROM tidyfold_test_headers)
  if(CMAKE_CROSSCOMPILING)
    # Starting a program under Wine takes longer than most test cases.
    add_test(NAME ${name} COMMAND test_${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT 900)
    return()
  endif()
  # Without NO_PRETTY_VALUES, names would show the bytes of parameters.
  gtest_discover_tests(test_${name} NO_PRETTY_VALUES DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300 RUN_SERIAL ${ARG_ALONE})
endfunction()

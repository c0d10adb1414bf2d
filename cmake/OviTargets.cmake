# How targets are made here: one options interface for all of them, one function a kind.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

# Whatever runs lies together, so that a program finds its library and its producer without a search path.
set(OVI_OUT_DIR "${CMAKE_BINARY_DIR}/out")
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${OVI_OUT_DIR}")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${OVI_OUT_DIR}")
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

find_program(OVI_CCACHE ccache)
if(OVI_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_C_COMPILER_LAUNCHER "${OVI_CCACHE}")
  set(CMAKE_CXX_COMPILER_LAUNCHER "${OVI_CCACHE}")
endif()

set(THREADS_PREFER_PTHREAD_FLAG ON)
find_package(Threads REQUIRED)

add_library(ovi_options INTERFACE)
if(MSVC)
  target_compile_definitions(ovi_options INTERFACE NOMINMAX _CRT_SECURE_NO_WARNINGS)
  target_compile_options(ovi_options INTERFACE /W4 /utf-8 /Zc:__cplusplus $<$<BOOL:${OVI_WARNINGS_AS_ERRORS}>:/WX>)
else()
  target_compile_options(ovi_options INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow
    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>
    # At -O3 this compiler warns of overlapping copies and unset bytes inside std::string that cannot happen.
    $<$<AND:$<COMPILE_LANG_AND_ID:CXX,GNU>,$<CONFIG:Release>>:-Wno-restrict$<SEMICOLON>-Wno-maybe-uninitialized>
    # clang sees through libstdc++'s std::stable_sort to a function that is deprecated for others.
    $<$<COMPILE_LANG_AND_ID:CXX,Clang>:-Wno-error=deprecated-declarations>
    $<$<BOOL:${OVI_WARNINGS_AS_ERRORS}>:-Werror>)
endif()
if(OVI_SANITIZE)
  target_compile_options(ovi_options INTERFACE -fsanitize=${OVI_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(ovi_options INTERFACE -fsanitize=${OVI_SANITIZE})
endif()
target_link_libraries(ovi_options INTERFACE Threads::Threads)

# ovi_add_version(TARGET FILE_NAME TYPE DESCRIPTION): the version resource of a file on Windows; TYPE is VFT_DLL or VFT_APP.
function(ovi_add_version target file_name resource_type description)
  if(WIN32)
    configure_file("${CMAKE_SOURCE_DIR}/cmake/version.rc.in" "${CMAKE_BINARY_DIR}/version/${target}.rc" @ONLY)
    target_sources(${target} PRIVATE "${CMAKE_BINARY_DIR}/version/${target}.rc")
  endif()
endfunction()

# ovi_add_layer(NAME [PUBLIC targets...] [PRIVATE targets...])
#
# A layer of the house: the static library of all .cpp files in this folder. Headers that other layers may see lie in
# include/<folder>/, the others beside their sources. A layer sees just the layers that it links.
function(ovi_add_layer name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "PUBLIC;PRIVATE;SOURCES")
  if(NOT arg_SOURCES)
    file(GLOB arg_SOURCES CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp")
  endif()
  if(arg_SOURCES)
    add_library(${name} STATIC ${arg_SOURCES})
    target_include_directories(${name} PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}/include" PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}")
    target_link_libraries(${name} PUBLIC ${arg_PUBLIC} PRIVATE ovi_options ${arg_PRIVATE})
  else()
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE "${CMAKE_CURRENT_SOURCE_DIR}/include")
    target_link_libraries(${name} INTERFACE ${arg_PUBLIC})
  endif()
endfunction()

# ovi_add_test(NAME SOURCES files... [LIBS targets...] [ENVIRONMENT NAME=value...] [TIMEOUT seconds] [LABELS labels...]
#              [PARTS number])
#
# One test program. It runs in a scratch folder of its own with the virtual camera's folder on the producer search path;
# a long one in several parts, which may run side by side.
function(ovi_add_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "TIMEOUT;PARTS" "SOURCES;LIBS;ENVIRONMENT;LABELS")
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ovi_options ${arg_LIBS} GTest::gtest GTest::gmock GTest::gtest_main)
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 120)
  endif()
  if(NOT arg_PARTS)
    set(arg_PARTS 1)
  endif()
  foreach(part RANGE 1 ${arg_PARTS})
    set(test ${name})
    if(arg_PARTS GREATER 1)
      string(APPEND test "_${part}")
    endif()
    set(scratch "${CMAKE_BINARY_DIR}/scratch/${test}")
    file(MAKE_DIRECTORY "${scratch}")
    add_test(NAME ${test} COMMAND ${name} WORKING_DIRECTORY "${scratch}")
    math(EXPR index "${part} - 1")
    set_tests_properties(${test} PROPERTIES TIMEOUT ${arg_TIMEOUT} LABELS "${arg_LABELS}"
      ENVIRONMENT "GENICAM_GENTL64_PATH=${OVI_OUT_DIR};GTEST_TOTAL_SHARDS=${arg_PARTS};GTEST_SHARD_INDEX=${index};${arg_ENVIRONMENT}")
  endforeach()
endfunction()

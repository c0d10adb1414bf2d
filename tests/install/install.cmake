# Installs component by component into a scratch prefix, moves that elsewhere, and uses it from outside.
cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/common.cmake")

function(expect_files)
  foreach(file IN LISTS ARGN)
    if(NOT EXISTS "${prefix}/${file}")
      message(FATAL_ERROR "${file} was not installed")
    endif()
  endforeach()
endfunction()

file(REMOVE_RECURSE "${SCRATCH}")
set(prefix "${SCRATCH}/at first")
run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${prefix}" --component runtime)
expect_files(${LIBDIR}/libovi.so.${VERSION})
if(EXISTS "${prefix}/include" OR EXISTS "${prefix}/${LIBDIR}/libovi.so" OR EXISTS "${prefix}/bin")
  message(FATAL_ERROR "the library's component has more than the library")
endif()
foreach(component IN ITEMS dev tools virtual-camera)
  run("${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${prefix}" --component ${component})
endforeach()
expect_files(include/ovi/ovi.h include/ovi/ovi.hpp ${LIBDIR}/libovi.so ${LIBDIR}/pkgconfig/ovi.pc bin/ovi
             ${PRODUCER_DIR}/VirtualCamera.cti include/ovi_virtual/recording.h share/man/man1/ovi.1.gz
             share/bash-completion/completions/ovi)

# Nothing in it may remember where it was first.
file(RENAME "${prefix}" "${SCRATCH}/moved")
set(prefix "${SCRATCH}/moved")
set(examples "${prefix}/${DOCDIR}/examples")

# find_package
run("${CMAKE_COMMAND}" -S "${CMAKE_CURRENT_LIST_DIR}/outside" -B "${SCRATCH}/outside" -G "${GENERATOR}"
    "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_C_COMPILER=${CC}" "-DCMAKE_CXX_COMPILER=${CXX}"
    "-DOVI_VERSION=${VERSION}" "-DOVI_EXAMPLES=${examples}")
run("${CMAKE_COMMAND}" --build "${SCRATCH}/outside")

# The programs of the page that newcomers follow, word by word.
set(newcomer "${SCRATCH}/newcomer")
set(page "${prefix}/${DOCDIR}/docs/getting-started.md")
save_code(cpp "${newcomer}/first.cpp")
save_code(cmake "${newcomer}/CMakeLists.txt")
save_code(c "${newcomer}/first.c")
run("${CMAKE_COMMAND}" -S "${newcomer}" -B "${newcomer}/build" -G "${GENERATOR}"
    "-DCMAKE_PREFIX_PATH=${prefix}" "-DCMAKE_CXX_COMPILER=${CXX}")
run("${CMAKE_COMMAND}" --build "${newcomer}/build")
set(ENV{PKG_CONFIG_PATH} "${prefix}/${LIBDIR}/pkgconfig")
run("${PKG_CONFIG}" --exact-version=${VERSION} ovi)
run("${PKG_CONFIG}" --cflags --libs ovi)
separate_arguments(flags UNIX_COMMAND "${output}")
run("${CC}" "${newcomer}/first.c" -o "${newcomer}/first" ${flags} "-Wl,-rpath,${prefix}/${LIBDIR}")

run("${PKG_CONFIG}" --variable=producerdir ovi)
string(STRIP "${output}" producers)
set(ENV{GENICAM_GENTL64_PATH} "${producers}")
foreach(program IN ITEMS outside/outside_c outside/outside_cpp newcomer/build/first newcomer/first)
  run("${SCRATCH}/${program}")
  if(NOT output MATCHES "frame [0-9]+: 1280 x 1024")
    message(FATAL_ERROR "${program} printed:\n${output}")
  endif()
endforeach()

# The tool finds the library and the virtual camera of its own installation without being told.
set(ENV{GENICAM_GENTL64_PATH} "")
run("${prefix}/bin/ovi" list)
if(NOT output MATCHES "KV130001")
  message(FATAL_ERROR "the installed tool does not offer the virtual camera:\n${output}")
endif()

# Makes the archive for Windows, unpacks it, and uses it from outside: the newcomer's program is built against it and run.
cmake_minimum_required(VERSION 3.25)
include("${CMAKE_CURRENT_LIST_DIR}/common.cmake")

file(REMOVE_RECURSE "${SCRATCH}")
run("${CPACK}" --config "${BUILD}/CPackConfig.cmake" -G ZIP -B "${SCRATCH}")
file(GLOB archive "${SCRATCH}/*.zip")
file(ARCHIVE_EXTRACT INPUT "${archive}" DESTINATION "${SCRATCH}/somewhere else")
file(GLOB root "${SCRATCH}/somewhere else/ovi-${VERSION}-*")

set(newcomer "${SCRATCH}/newcomer")
set(page "${root}/${DOCDIR}/docs/getting-started.md")
save_code(cpp "${newcomer}/first.cpp")
save_code(cmake "${newcomer}/CMakeLists.txt")
run("${CMAKE_COMMAND}" -S "${newcomer}" -B "${newcomer}/build" -G "${GENERATOR}" "-DCMAKE_PREFIX_PATH=${root}"
    -DCMAKE_SYSTEM_NAME=Windows "-DCMAKE_CXX_COMPILER=${CXX}" -DCMAKE_EXE_LINKER_FLAGS=-static)
run("${CMAKE_COMMAND}" --build "${newcomer}/build")
file(COPY "${root}/bin/ovi.dll" DESTINATION "${newcomer}/build")
set(ENV{GENICAM_GENTL64_PATH} "Z:${root}/lib/genicam")
run("${EMULATOR}" "${newcomer}/build/first.exe")
if(NOT output MATCHES "frame [0-9]+: 1280 x 1024")
  message(FATAL_ERROR "the program printed:\n${output}")
endif()

set(ENV{GENICAM_GENTL64_PATH} "")
run("${EMULATOR}" "${root}/bin/ovi.exe" list)
if(NOT output MATCHES "KV130001")
  message(FATAL_ERROR "the unpacked tool does not offer the virtual camera:\n${output}")
endif()

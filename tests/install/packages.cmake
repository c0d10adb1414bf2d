# Makes the packages of Debian, unpacks them together, and looks at what they say and whether the tool in them runs.
cmake_minimum_required(VERSION 3.25)

include("${CMAKE_CURRENT_LIST_DIR}/common.cmake")

file(REMOVE_RECURSE "${SCRATCH}")
run("${CPACK}" --config "${BUILD}/CPackConfig.cmake" -G DEB -B "${SCRATCH}")
set(root "${SCRATCH}/root")
foreach(package IN ITEMS libovi0 libovi-dev ovi-tools ovi-virtual-camera)
  file(GLOB file "${SCRATCH}/${package}_${VERSION}_*.deb")
  run(dpkg-deb --field "${file}" Version Depends Description)
  if(NOT output MATCHES "Version: ${VERSION}\n")
    message(FATAL_ERROR "${package} has another version:\n${output}")
  endif()
  if(package MATCHES "dev|tools" AND NOT output MATCHES "libovi0 \\(= ${VERSION}\\)")
    message(FATAL_ERROR "${package} does not ask for its library:\n${output}")
  endif()
  run(dpkg-deb --extract "${file}" "${root}")
endforeach()

# The system's own trigger tells the loader of the library.
file(GLOB library "${SCRATCH}/libovi0_*.deb")
run(dpkg-deb --control "${library}" "${SCRATCH}/control")
if(NOT EXISTS "${SCRATCH}/control/triggers" OR EXISTS "${SCRATCH}/control/postinst")
  message(FATAL_ERROR "the library's package calls ldconfig itself, or nobody does")
endif()

# The list of symbols by which other packages find out which version they need.
run(dpkg-deb --info "${library}" symbols)
string(REGEX MATCHALL "[A-Za-z0-9_]+@Base" listed "${output}")
list(TRANSFORM listed REPLACE "@Base" "")
file(STRINGS "${EXPORTS}" exported REGEX "^ +[A-Za-z0-9_]+;")
list(TRANSFORM exported REPLACE "[ ;]" "")
list(SORT listed)
list(SORT exported)
if(NOT listed STREQUAL exported)
  message(FATAL_ERROR "packaging/debian/symbols does not list what is exported:\n${listed}\n${exported}")
endif()

set(ENV{GENICAM_GENTL64_PATH} "")
run("${root}/usr/bin/ovi" list)
if(NOT output MATCHES "KV130001")
  message(FATAL_ERROR "the packaged tool does not offer the packaged virtual camera:\n${output}")
endif()

# Packages of an installation: a .deb for each component on Linux, one .zip with everything on Windows.
set(CPACK_PACKAGE_NAME ovi)
set(CPACK_PACKAGE_VENDOR Kestrova)
set(CPACK_PACKAGE_CONTACT "Kestrova <support@kestrova.invalid>")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_RESOURCE_FILE_LICENSE "${CMAKE_SOURCE_DIR}/LICENSE")
set(CPACK_PACKAGE_DIRECTORY "${CMAKE_BINARY_DIR}/packages")
set(CPACK_VERBATIM_VARIABLES ON)
# What was built with debug information keeps it, in packages of its own where there is such a thing.
string(FIND "${CMAKE_CXX_FLAGS_RELEASE}" "-g" debug_information)
if(debug_information EQUAL -1)
  set(CPACK_STRIP_FILES ON)
endif()
set(CPACK_COMPONENTS_ALL runtime dev tools virtual-camera)

if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME "ovi-${PROJECT_VERSION}-windows-x64")
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_DEB_COMPONENT_INSTALL ON)
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
  if(NOT debug_information EQUAL -1)
    set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ON)
  endif()
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${OVI_OUT_DIR}")
  set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
  # A summary for all packages would stand before each one's own.
  set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")

  # What Debian wants in every package: whose it is, with the notices of what is inside the binaries, and its changes.
  set(debian_dir "${CMAKE_SOURCE_DIR}/packaging/debian")
  set(debian_out "${CMAKE_BINARY_DIR}/packaging/debian")
  file(READ packaging/third-party.txt OVI_THIRD_PARTY)
  string(TIMESTAMP OVI_DEB_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
  foreach(file IN ITEMS copyright changelog shlibs)
    configure_file("${debian_dir}/${file}.in" "${debian_out}/${file}" @ONLY)
  endforeach()
  file(ARCHIVE_CREATE OUTPUT "${debian_out}/changelog.gz" PATHS "${debian_out}/changelog"
    FORMAT raw COMPRESSION GZip COMPRESSION_LEVEL 9)

  # ovi_deb(COMPONENT NAME SECTION SUMMARY DESCRIPTION [DEPENDS packages] [RECOMMENDS packages] [SUGGESTS packages])
  macro(ovi_deb component name section summary description)
    cmake_parse_arguments(deb "" "DEPENDS;RECOMMENDS;SUGGESTS" "" ${ARGN})
    string(TOUPPER ${component} key)
    set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${name})
    set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section})
    set(CPACK_DEBIAN_${key}_DESCRIPTION "${summary}\n${description}")
    set(CPACK_DEBIAN_${key}_PACKAGE_DEPENDS "${deb_DEPENDS}")
    set(CPACK_DEBIAN_${key}_PACKAGE_RECOMMENDS "${deb_RECOMMENDS}")
    set(CPACK_DEBIAN_${key}_PACKAGE_SUGGESTS "${deb_SUGGESTS}")
    # Not part of an installation without a package.
    install(FILES "${debian_out}/copyright" "${debian_out}/changelog.gz" DESTINATION share/doc/${name}
      COMPONENT ${component} EXCLUDE_FROM_ALL)
  endmacro()
  set(library libovi${PROJECT_VERSION_MAJOR})
  set(same_library "${library} (= ${PROJECT_VERSION})")
  ovi_deb(runtime ${library} libs "GenTL consumer library for machine-vision cameras"
    "Loads the GenTL producers of camera makers, opens their cameras, reads and
writes features and streams images."
    SUGGESTS ovi-virtual-camera)
  ovi_deb(dev libovi-dev libdevel "GenTL consumer library for machine-vision cameras: headers"
    "The C and C++ headers, files for CMake and pkg-config, examples and documents
of the library."
    DEPENDS "${same_library}" SUGGESTS ovi-virtual-camera)
  ovi_deb(tools ovi-tools graphics "command-line tool for machine-vision cameras"
    "Lists cameras, shows and sets features, streams and saves images, and finds
out why a camera does not work."
    DEPENDS "${same_library}" RECOMMENDS ovi-virtual-camera)
  ovi_deb(virtual-camera ovi-virtual-camera graphics "GenTL producer with cameras that need no hardware"
    "A GenTL 1.5 producer whose cameras have features that act and deliver images
that can be proved.")
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
    "${debian_dir}/symbols" "${debian_dir}/triggers" "${debian_out}/shlibs")
  set(CPACK_POST_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/OviWithoutLdconfig.cmake")
endif()
include(CPack)

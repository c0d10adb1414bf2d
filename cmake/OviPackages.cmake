# Packages of an installation: a .deb for each component on Linux, one .zip with everything on Windows.
set(CPACK_PACKAGE_NAME ovi)
set(CPACK_PACKAGE_VENDOR Kestrova)
set(CPACK_PACKAGE_CONTACT "Kestrova <support@kestrova.invalid>")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_RESOURCE_FILE_LICENSE "${CMAKE_SOURCE_DIR}/LICENSE")
set(CPACK_PACKAGE_DIRECTORY "${CMAKE_BINARY_DIR}/packages")
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime dev tools virtual-camera)

if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME "ovi-${PROJECT_VERSION}-windows-x64")
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_DEB_COMPONENT_INSTALL ON)
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${OVI_OUT_DIR}")
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
  set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

  # ovi_deb(COMPONENT NAME SECTION SUMMARY DESCRIPTION [DEPENDS packages] [RECOMMENDS packages] [SUGGESTS packages])
  macro(ovi_deb component name section summary description)
    cmake_parse_arguments(deb "" "DEPENDS;RECOMMENDS;SUGGESTS" "" ${ARGN})
    string(TOUPPER ${component} key)
    set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${name})
    set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section})
    set(CPACK_COMPONENT_${key}_DESCRIPTION "${summary}\n${description}")
    set(CPACK_DEBIAN_${key}_DESCRIPTION "${summary}\n${description}")
    set(CPACK_DEBIAN_${key}_PACKAGE_DEPENDS "${deb_DEPENDS}")
    set(CPACK_DEBIAN_${key}_PACKAGE_RECOMMENDS "${deb_RECOMMENDS}")
    set(CPACK_DEBIAN_${key}_PACKAGE_SUGGESTS "${deb_SUGGESTS}")
    install(FILES LICENSE DESTINATION share/doc/${name} RENAME copyright COMPONENT ${component})
  endmacro()
  set(library libovi${PROJECT_VERSION_MAJOR})
  ovi_deb(runtime ${library} libs "GenTL consumer library for machine-vision cameras"
    "Loads the GenTL producers of camera makers, opens their cameras, reads and writes features and streams images."
    SUGGESTS ovi-virtual-camera)
  ovi_deb(dev libovi-dev libdevel "GenTL consumer library for machine-vision cameras: headers"
    "The C and C++ headers, files for CMake and pkg-config, examples and documents of the library."
    DEPENDS "${library} (= ${PROJECT_VERSION})" SUGGESTS ovi-virtual-camera)
  ovi_deb(tools ovi-tools graphics "Command-line tool for machine-vision cameras"
    "Lists cameras, shows and sets features, streams and saves images, and finds out why a camera does not work."
    RECOMMENDS ovi-virtual-camera)
  ovi_deb(virtual-camera ovi-virtual-camera graphics "GenTL producer with cameras that need no hardware"
    "A GenTL 1.5 producer whose cameras have features that act and deliver images that can be proved.")
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${CMAKE_SOURCE_DIR}/packaging/debian/symbols")
endif()
include(CPack)

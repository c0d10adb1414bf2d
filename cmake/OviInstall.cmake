# What an installation holds, in four components: runtime (the library), dev (headers, CMake and pkg-config files,
# examples), tools (the command-line program) and virtual-camera (the producer).
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# Producers lie in a folder of their own below the libraries; the tool looks for the virtual camera there.
set(OVI_INSTALL_PRODUCER_DIR "${CMAKE_INSTALL_LIBDIR}/genicam")
set(OVI_INSTALL_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/ovi")

# Programs find the library of their own installation wherever that was moved to.
if(UNIX)
  file(RELATIVE_PATH ovi_bin_to_lib "/prefix/${CMAKE_INSTALL_BINDIR}" "/prefix/${CMAKE_INSTALL_LIBDIR}")
  set(CMAKE_INSTALL_RPATH "$ORIGIN/${ovi_bin_to_lib}")
endif()

# ovi_install(): called once all targets are there.
function(ovi_install)
  install(TARGETS ovi EXPORT ovi-targets
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT runtime
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime NAMELINK_COMPONENT dev
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT dev
    INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
  # Neither they nor what they load lies anywhere but in the system's folders.
  set_target_properties(ovi ovi_virtual_camera ovi_virtual_recorder PROPERTIES INSTALL_RPATH "")

  install(DIRECTORY include/ovi DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT dev)
  install(DIRECTORY examples DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT dev)
  install(DIRECTORY docs DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT dev
    FILES_MATCHING PATTERN "*.md" PATTERN "*.svg")
  install(FILES README.md CHANGELOG.md LICENSE DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT dev)
  # Their licences ask for it wherever the binaries go; a package of Debian has it in its copyright file as well.
  install(FILES packaging/third-party.txt DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT runtime)
  if(WIN32)
    # For linkers that want an import library of their own making.
    install(FILES src/api/ovi.def DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT dev)
  endif()

  install(EXPORT ovi-targets NAMESPACE ovi:: DESTINATION "${OVI_INSTALL_CMAKE_DIR}" COMPONENT dev)
  configure_package_config_file(packaging/ovi-config.cmake.in "${CMAKE_BINARY_DIR}/packaging/ovi-config.cmake"
    INSTALL_DESTINATION "${OVI_INSTALL_CMAKE_DIR}" PATH_VARS OVI_INSTALL_PRODUCER_DIR
    NO_CHECK_REQUIRED_COMPONENTS_MACRO)
  # Before 1.0 a minor version may break what the one before promised.
  write_basic_package_version_file("${CMAKE_BINARY_DIR}/packaging/ovi-config-version.cmake"
    COMPATIBILITY SameMinorVersion)
  install(FILES "${CMAKE_BINARY_DIR}/packaging/ovi-config.cmake" "${CMAKE_BINARY_DIR}/packaging/ovi-config-version.cmake"
    DESTINATION "${OVI_INSTALL_CMAKE_DIR}" COMPONENT dev)

  set(pkgconfig_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
  file(RELATIVE_PATH OVI_PC_TO_PREFIX "/prefix/${pkgconfig_dir}" "/prefix")
  string(REGEX REPLACE "/$" "" OVI_PC_TO_PREFIX "${OVI_PC_TO_PREFIX}")
  configure_file(packaging/ovi.pc.in "${CMAKE_BINARY_DIR}/packaging/ovi.pc" @ONLY)
  install(FILES "${CMAKE_BINARY_DIR}/packaging/ovi.pc" DESTINATION "${pkgconfig_dir}" COMPONENT dev)

  if(TARGET ovi-tool)
    install(TARGETS ovi-tool RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tools)
    if(OVI_MAN_PAGE)
      install(FILES "${OVI_MAN_PAGE}" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT tools)
    endif()
    if(UNIX)
      install(FILES tools/ovi/completion/ovi.bash DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions"
        RENAME ovi COMPONENT tools)
      # Debian keeps its own packages' functions apart.
      set(zsh_dir site-functions)
      if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
        set(zsh_dir vendor-completions)
      endif()
      install(FILES tools/ovi/completion/_ovi DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/${zsh_dir}" COMPONENT tools)
    endif()
  endif()

  install(TARGETS ovi_virtual_camera LIBRARY DESTINATION "${OVI_INSTALL_PRODUCER_DIR}" COMPONENT virtual-camera)
  install(TARGETS ovi_virtual_recorder
    LIBRARY DESTINATION "${OVI_INSTALL_PRODUCER_DIR}/recording" COMPONENT virtual-camera)
  install(DIRECTORY producers/virtual/include/ovi_virtual DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
    COMPONENT virtual-camera)
endfunction()

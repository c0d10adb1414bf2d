# Run by CPack when the packages of Debian are made. CPack gives a package with a library scripts that call ldconfig;
# Debian wants the trigger instead, which the package has already, so the scripts are taken out again.
find_program(dpkg_deb dpkg-deb REQUIRED)
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  set(root "${package}.root")
  file(REMOVE_RECURSE "${root}")
  execute_process(COMMAND "${dpkg_deb}" --raw-extract "${package}" "${root}" COMMAND_ERROR_IS_FATAL ANY)
  if(EXISTS "${root}/DEBIAN/triggers" AND EXISTS "${root}/DEBIAN/postinst")
    file(REMOVE "${root}/DEBIAN/postinst" "${root}/DEBIAN/postrm")
    execute_process(COMMAND "${dpkg_deb}" --root-owner-group --build "${root}" "${package}"
                    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  endif()
  file(REMOVE_RECURSE "${root}")
endforeach()

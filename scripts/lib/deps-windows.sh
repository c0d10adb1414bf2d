# Functions of install-deps.sh --windows: the libraries for 64-bit Windows, built from the distribution's own sources.

windows_prefix="$deps_dir/windows"

build_windows_library() {
  # build_windows_library NAME SOURCE-PACKAGE NATIVE-PACKAGE arguments...: a source package that builds with CMake as it is.
  local name=$1 package=$2 version work
  version=$(header_version "$3")
  shift 3
  built windows "$name" "$version" && return 0
  say "building $name for windows"
  work=$(mktemp -d)
  unpack_source "$(own_suite)" "$package" "$work"
  cmake_install windows "$work" "$@"
  rm -rf "$work"
  mark_built windows "$name" "$version"
}

build_windows_gtest() {
  local version work
  version=$(header_version libgtest-dev)
  built windows gtest "$version" && return 0
  say "building GoogleTest for windows"
  work=$(mktemp -d)
  cp -r /usr/src/googletest "$work/source"
  cmake_install windows "$work/source" -DBUILD_GMOCK=ON
  rm -rf "$work"
  mark_built windows gtest "$version"
}

link_windows_headers() {
  # Header-only libraries serve both platforms; their CMake packages are found through the prefix.
  mkdir -p "$windows_prefix/include" "$windows_prefix/share/cmake" "$windows_prefix/lib/cmake"
  ln -sfn /usr/include/plog "$windows_prefix/include/plog"
  ln -sfn /usr/include/CLI "$windows_prefix/include/CLI"
  ln -sfn /usr/include/nlohmann "$windows_prefix/include/nlohmann"
}

build_windows_dependencies() {
  mkdir -p "$windows_prefix"
  link_windows_headers
  build_miniz windows
  build_boost windows
  build_windows_library pugixml pugixml libpugixml-dev -DBUILD_SHARED_LIBS=OFF
  build_windows_library libpng libpng1.6 libpng-dev -DPNG_SHARED=OFF -DPNG_TESTS=OFF -DPNG_EXECUTABLES=OFF
  build_windows_gtest
}

# Functions of install-deps.sh: packages, sources of a newer release, and the libraries built from them.

deps_dir="${OVI_DEPS_DIR:-${XDG_CACHE_HOME:-$HOME/.cache}/ovi-deps}"
source_suite=trixie # where plog and miniz come from while the machine's own release lacks them

as_root() {
  if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

say() { printf 'install-deps: %s\n' "$*"; }

missing_packages() {
  # Prints those of the given packages that are not fully installed.
  local installed
  installed=$(dpkg-query -W -f '${db:Status-Abbrev} ${Package}\n' "$@" 2>/dev/null | sed -n 's/^ii  *//p') || true # unknown names fail
  local package
  for package in "$@"; do
    grep -qx -- "$package" <<<"$installed" || printf '%s\n' "$package"
  done
}

install_packages() {
  local missing
  mapfile -t missing < <(missing_packages "$@")
  [ "${#missing[@]}" -gt 0 ] || return 0
  say "installing ${missing[*]}"
  as_root apt-get update -qq
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

mirror_uri() {
  # The mirror that this machine already uses for the distribution itself.
  local uri
  uri=$(sed -n 's/^URIs:[[:space:]]*\([^[:space:]]*\/debian\)\/\?[[:space:]]*$/\1/p' \
    /etc/apt/sources.list.d/*.sources 2>/dev/null | head -n 1)
  if [ -z "$uri" ]; then
    uri=$(sed -n 's/^deb[[:space:]]\+\(\[[^]]*\][[:space:]]\+\)\?\([^[:space:]]*\/debian\)\/\?[[:space:]].*/\2/p' \
      /etc/apt/sources.list /etc/apt/sources.list.d/*.list 2>/dev/null | head -n 1)
  fi
  [ -n "$uri" ] || { echo "install-deps: no Debian mirror found in the machine's apt sources" >&2; return 1; }
  printf '%s\n' "$uri"
}

with_suite() {
  # with_suite SUITE KIND apt-get-arguments...: runs apt-get over a temporary list of one suite, KIND being deb or deb-src.
  local suite=$1 kind=$2 folder="$deps_dir/apt/$1-$2" keyring
  shift 2
  keyring=$(ls /usr/share/keyrings/debian-archive-keyring.gpg 2>/dev/null || true)
  local options=(-qq -o Dir::Etc::SourceList="$folder/sources.list" -o Dir::Etc::SourceParts=/dev/null
    -o Dir::State::Lists="$folder/lists" -o Dir::Cache="$folder/cache" -o APT::Sandbox::User=root)
  if [ ! -e "$folder/ready" ] || [ -n "$(find "$folder/ready" -mmin +1440 2>/dev/null)" ]; then
    mkdir -p "$folder/lists/partial" "$folder/cache/archives/partial"
    printf '%s %s%s %s main\n' "$kind" "${keyring:+[signed-by=$keyring] }" "$(mirror_uri)" "$suite" >"$folder/sources.list"
    apt-get "${options[@]}" update
    touch "$folder/ready"
  fi
  apt-get "${options[@]}" "$@"
}

own_suite() { ( . /etc/os-release && printf "%s\n" "$VERSION_CODENAME" ); }

fetch_source() {
  # fetch_source SUITE PACKAGE: downloads a source package and prints the path of its original archive.
  local folder="$deps_dir/sources/$2"
  mkdir -p "$folder"
  if ! ls "$folder"/*.orig.tar.* >/dev/null 2>&1; then
    say "fetching the source of $2" >&2
    (cd "$folder" && with_suite "$1" deb-src source --download-only "$2" >/dev/null)
  fi
  ls "$folder"/*.orig.tar.* | grep -v '\.asc$' | head -n 1
}

install_plog() {
  [ -z "$(missing_packages libplog-dev)" ] && return 0
  if [ -n "$(apt-cache search --names-only '^libplog-dev$' 2>/dev/null)" ]; then
    install_packages libplog-dev
    return 0
  fi
  say "installing libplog-dev from $source_suite"
  local folder="$deps_dir/packages"
  mkdir -p "$folder"
  (cd "$folder" && with_suite "$source_suite" deb download libplog-dev >/dev/null)
  as_root dpkg -i "$folder"/libplog-dev_*.deb >/dev/null
}

# A prefix a platform, native or windows, and in it a mark for each library and version that it holds.
built() { [ -e "$deps_dir/$1/.$2-$3" ]; }
mark_built() { touch "$deps_dir/$1/.$2-$3"; }
header_version() { dpkg-query -W -f '${Version}' "$1" | tr -c 'A-Za-z0-9.\n' '_'; }

unpack_source() {
  # unpack_source SUITE PACKAGE FOLDER [tar arguments]: a source package's original archive, without its top folder.
  local archive
  archive=$(fetch_source "$1" "$2")
  mkdir -p "$3"
  tar -xf "$archive" -C "$3" --strip-components=1 "${@:4}"
}

cmake_install() {
  # cmake_install PLATFORM SOURCE-FOLDER arguments...: configures, builds and installs into the platform's prefix.
  local platform=$1 source=$2 arguments=()
  shift 2
  [ "$platform" = native ] || arguments=(-DCMAKE_TOOLCHAIN_FILE="$here/../cmake/mingw.cmake" -DOVI_DEPS_WINDOWS="$deps_dir/windows")
  cmake -S "$source" -B "$source/build-$platform" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_INSTALL_PREFIX="$deps_dir/$platform" ${arguments[@]+"${arguments[@]}"} "$@" >/dev/null
  cmake --build "$source/build-$platform" --target install >/dev/null
}

# miniz: two files, unchanged, as one static library with a CMake package.
build_miniz() {
  local platform=$1 work
  built "$platform" miniz 1 && return 0
  say "building miniz for $platform"
  work=$(mktemp -d)
  unpack_source "$source_suite" r-cran-zip "$work" --wildcards '*/src/miniz.c' '*/src/miniz.h'
  cp "$here/lib/miniz.cmake" "$work/CMakeLists.txt"
  cmake_install "$platform" "$work"
  rm -rf "$work"
  mark_built "$platform" miniz 1
}

# Boost.Filesystem: the distribution's static library cannot go into a shared one, and none exists for Windows.
build_boost() {
  local platform=$1 version package work
  package=$(dpkg-query -W -f '${db:Status-Abbrev} ${Package}\n' 'libboost-filesystem1*-dev' | sed -n 's/^ii  *//p' | head -n 1)
  version=$(header_version "$package")
  built "$platform" boost "$version" && return 0
  say "building Boost.Filesystem for $platform"
  work=$(mktemp -d)
  unpack_source "$(own_suite)" "boost$(sed 's/^libboost-filesystem\(.*\)-dev$/\1/' <<<"$package")" "$work" \
    --wildcards '*/libs/filesystem/src/*'
  mkdir -p "$deps_dir/$platform/include"
  ln -sfn /usr/include/boost "$deps_dir/$platform/include/boost"
  cp "$here/lib/boost.cmake" "$work/CMakeLists.txt"
  cmake_install "$platform" "$work"
  rm -rf "$work"
  mark_built "$platform" boost "$version"
}

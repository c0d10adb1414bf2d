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
  installed=$(dpkg-query -W -f '${db:Status-Abbrev} ${Package}\n' "$@" 2>/dev/null | sed -n 's/^ii  *//p')
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

# build_miniz native|windows: two files, unchanged, as one static library with a CMake package.
build_miniz() {
  local prefix="$deps_dir/$1" mark="$deps_dir/$1/.miniz-1"
  [ -e "$mark" ] && return 0
  say "building miniz for $1"
  local archive work
  archive=$(fetch_source "$source_suite" r-cran-zip)
  work=$(mktemp -d)
  tar -xf "$archive" -C "$work" --strip-components=1 --wildcards '*/src/miniz.c' '*/src/miniz.h'
  cp "$here/lib/miniz.cmake" "$work/CMakeLists.txt"
  cmake -S "$work" -B "$work/build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$prefix" \
    ${toolchain_arguments[@]+"${toolchain_arguments[@]}"} >/dev/null
  cmake --build "$work/build" --target install >/dev/null
  rm -rf "$work"
  touch "$mark"
}

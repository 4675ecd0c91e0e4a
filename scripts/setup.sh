# shellcheck shell=bash
# What ./run, ./test and .ci/run share: installs the packages that are missing and configures a preset.
# To be sourced; works from any folder.

project_root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)

# The Debian packages of one purpose.
packages_for() {
  case $1 in
    program) echo build-essential cmake ninja-build pkg-config libncurses-dev libzip-dev libxml2-dev libpcre2-dev \
      zlib1g-dev nlohmann-json3-dev ncurses-bin ;;
    tests) echo clang libclang-rt-dev llvm libgtest-dev libgmock-dev libvterm-dev util-linux ;;
    packages) echo dpkg-dev file ;;
    checks) echo clang-format clang-tidy cppcheck shellcheck mandoc desktop-file-utils appstream libxml2-utils ;;
  esac
}

if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-ccache}
fi

missing_packages() { # purpose...
  local wanted installed purpose package
  wanted=$(for purpose; do packages_for "$purpose"; done)
  # shellcheck disable=SC2086 # one argument per package
  installed=$(dpkg-query -W -f='${db:Status-Status} ${Package}\n' $wanted 2>/dev/null || true)
  for package in $wanted; do
    grep -qx "installed $package" <<<"$installed" || printf '%s\n' "$package"
  done
}

as_root() {
  if ((EUID == 0)); then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    printf 'Not root and sudo is not installed. As root, run:\n  apt-get install' >&2
    printf ' %s' "${missing[@]}" >&2
    printf '\n' >&2
    return 1
  fi
}

# Without apt-get nothing can be installed here: tells what a build needs if something of it is not there.
require_tools() {
  local needed=() tool library
  for tool in cmake ninja pkg-config; do
    command -v "$tool" >/dev/null || needed+=("$tool")
  done
  if command -v pkg-config >/dev/null; then
    for library in ncursesw libzip libxml-2.0 libpcre2-32; do
      pkg-config --exists "$library" || needed+=("$library")
    done
  fi
  ((${#needed[@]} == 0)) && return
  printf 'This machine has no apt-get. Install with its own package manager, then try again: %s\n' "${needed[*]}" >&2
  printf 'In all: a C++20 compiler, CMake 3.25, Ninja, pkg-config, ncurses (wide), libzip, libxml2, PCRE2, zlib, %s\n' \
    'nlohmann-json; for the tests also clang, GoogleTest and libvterm.' >&2
  return 1
}

# Installs the packages of these purposes that are missing. When none is, this asks dpkg and nobody else.
install_packages() { # purpose...
  if ! command -v apt-get >/dev/null; then
    require_tools
    return
  fi
  local missing
  mapfile -t missing < <(missing_packages "$@")
  ((${#missing[@]} == 0)) && return
  printf 'Installing %s\n' "${missing[*]}"
  as_root env DEBIAN_FRONTEND=noninteractive apt-get -qq -o DPkg::Lock::Timeout=300 update </dev/null
  as_root env DEBIAN_FRONTEND=noninteractive apt-get -qq -y -o DPkg::Lock::Timeout=300 \
    install --no-install-recommends "${missing[@]}" </dev/null
}

configure() { # preset
  cmake -S "$project_root" --preset "$1" -Wno-dev --log-level=WARNING
}

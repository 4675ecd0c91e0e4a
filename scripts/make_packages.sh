#!/usr/bin/env bash
# Builds the program and makes the Debian package and the source tarball of it, in build/packages.
set -euo pipefail
# shellcheck source=scripts/setup.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/setup.sh"
cd -- "$project_root"

install_packages program packages
configure release
cmake --build build/release --target brenlow
cmake -E rm -rf build/packages
cpack --preset deb
cpack --preset source

#!/usr/bin/env bash
# Draws the pictures in docs/pictures anew, from the program as it is built now.
set -euo pipefail
# shellcheck source=scripts/setup.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/setup.sh"

install_packages program tests
configure release
cmake --build "$project_root/build/release" --target program_tests
BRENLOW_DRAW_PICTURES=1 "$project_root/build/release/tests/program_tests" --gtest_filter='Pictures.*' --gtest_brief
git -C "$project_root" status --short docs/pictures

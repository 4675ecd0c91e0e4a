#!/usr/bin/env bash
# Whether man pages, desktop entry and metadata are what their readers expect, and name one version.
set -euo pipefail
cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.."

mandoc -Tlint -W style docs/man/*
desktop-file-validate packaging/brenlow.desktop
appstreamcli validate --no-net packaging/*.metainfo.xml
xmllint --noout packaging/*.xml packaging/*.svg

version=$(sed -n 's/.*VERSION = "\(.*\)";/\1/p' core/version.h)
require() { # text, file...
  local text=$1 file
  shift
  for file; do
    grep -qF -- "$text" "$file" || { printf '%s does not say %s\n' "$file" "$text" >&2 && return 1; }
  done
}
require "\"Brenlow $version\"" docs/man/*
require "project(brenlow VERSION $version " CMakeLists.txt
require "<release version=\"$version\"" packaging/*.metainfo.xml
require "## $version" CHANGELOG.md

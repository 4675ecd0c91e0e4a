#!/usr/bin/env bash
# Whether the files that the documentation speaks of are there, and its map of the tree is true.
# shellcheck disable=SC2016 # the backticks are those of Markdown
set -euo pipefail
cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.."

status=0
missing() { # page, path
  printf '%s speaks of %s, which is not there\n' "$1" "$2" >&2
  status=1
}
for page in README.md CONTRIBUTING.md CHANGELOG.md docs/*.md; do
  # Names of files in code spans: they have a folder, and an ending or a slash at the end.
  while read -r path; do
    [[ $path == *'<'* || $path == build/* || -e $path ]] || missing "$page" "$path"
  done < <(grep -ohE '`(\.?[A-Za-z_<>-]+/)+([A-Za-z_<>.-]+\.[a-z0-9]+)?`' "$page" | grep -v '~' | tr -d '`')
  # Targets of links and pictures outside of code, from the page's own folder.
  while read -r path; do
    [[ $path == http* || -e $(dirname -- "$page")/$path ]] || missing "$page" "$path"
  done < <(sed '/^```/,/^```/d' "$page" | grep -oE '(\]\(|src=")[^)"#]+' | sed -E 's/^(\]\(|src=")//')
done
scripts/draw_map.sh --check || status=1
exit "$status"

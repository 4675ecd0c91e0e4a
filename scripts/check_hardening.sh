#!/usr/bin/env bash
# Whether a built program has what cmake/hardening.cmake asks for: check_hardening.sh PROGRAM
set -euo pipefail

program=$1
status=0
expect() { # what, pattern, text
  grep -qE -- "$2" <<<"$3" && return
  printf '%s: no %s\n' "$program" "$1" >&2
  status=1
}

headers=$(readelf -hlW -- "$program")
dynamic=$(readelf -dW -- "$program")
symbols=$(readelf --dyn-syms -W -- "$program")

expect 'position-independent executable' 'Type: +DYN' "$headers"
expect 'position-independent executable' 'FLAGS_1.* PIE' "$dynamic"
expect 'read-only relocations (RELRO)' 'GNU_RELRO' "$headers"
expect 'binding at start (now)' 'FLAGS.*(BIND_NOW|NOW)' "$dynamic"
expect 'stack that is not executable' 'GNU_STACK +.* RW +0x' "$headers"
expect 'stack protector' '__stack_chk_fail' "$symbols"
expect 'checked library calls (_FORTIFY_SOURCE)' '__[a-z0-9]+_chk@' "$symbols"
exit "$status"

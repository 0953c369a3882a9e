#!/usr/bin/env bash
# Makes the pictures in docs/screens anew: the PLAYER tab at all text sizes and in all states, on demo media.
set -euo pipefail
. "$(dirname "$0")/lib.sh"

install_packages "$root/packaging/debian-packages.txt"
build halcyra ombra
media=$root/.demo/media
"$root/packaging/make-demo-media.sh" "$media"

work=$(mktemp -d)
ombra_pid=
finish() {
  [ -z "$ombra_pid" ] || kill "$ombra_pid" 2>/dev/null || true
  wait 2>/dev/null || true
  rm -rf "$work"
}
trap finish EXIT
trap 'exit 130' INT TERM
start_ombra "$media" "$work/state" "$work/ombra.out" "$work/ombra.log"
python3 "$root/packaging/screens.py" --bin "$bin_dir/halcyra" --out "$root/docs/screens" --ombra "$ombra_pid" \
  "$@" -- "${server_args[@]}"

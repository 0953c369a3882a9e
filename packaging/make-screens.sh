#!/usr/bin/env bash
# Makes the pictures in docs/screens anew: the PLAYER tab at all text sizes and in all states, on demo media.
set -euo pipefail
. "$(dirname "$0")/lib.sh"

install_packages "$root/packaging/debian-packages.txt"
build halcyra ombra
media=$root/.demo/media
"$root/packaging/make-demo-media.sh" "$media"

work=$(mktemp -d)
# Beside the demo's a file of sound alone, and one that the server takes up and that is damaged later.
mkdir "$work/media"
cp "$media"/*.* "$work/media"
ffmpeg -v error -nostdin -y -f lavfi -i "sine=frequency=330:duration=60" "$work/media/06 Interlude.wav"
cp "$media/03 Bars and tone.mp4" "$work/media/07 Interview.mp4"
ombra_pid=
finish() {
  [ -z "$ombra_pid" ] || kill "$ombra_pid" 2>/dev/null || true
  wait 2>/dev/null || true
  rm -rf "$work"
}
trap finish EXIT
trap 'exit 130' INT TERM
start_ombra "$work/media" "$work/state" "$work/ombra.out" "$work/ombra.log"
head -c 40000 /dev/zero >"$work/media/07 Interview.mp4"
python3 "$root/packaging/screens.py" --bin "$bin_dir/halcyra" --out "$root/docs/screens" --ombra "$ombra_pid" --media "$work/media" \
  "$@" -- "${server_args[@]}"

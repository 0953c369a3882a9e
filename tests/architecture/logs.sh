#!/usr/bin/env bash
# Fails when ./run would keep its logs on the disk of the show though there is another place, or says nothing of where
# they are.
#
# usage: logs.sh ROOT
set -euo pipefail
root=$1
. "$root/packaging/lib.sh"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work"/{show,state,session,shm}
export XDG_STATE_HOME=$work/state XDG_RUNTIME_DIR=$work/session
memory_folder=$work/shm

# Which of the folders are on another disk than the show.
others=
device_of() {
  local folder
  for folder in $others; do
    case $1 in "$work/$folder"*) echo 2; return ;; esac
  done
  echo 1
}
# expect FOLDER WORDS OTHERS: where the logs are, what is said, and what is on other disks.
expect() {
  others=$3
  local folder said
  folder=$(log_folder "$work/show" 2>"$work/said")
  said=$(cat "$work/said")
  [ "$folder" = "$work/$1" ] || fail "logs in $folder, not in $work/$1, with '$3' on other disks"
  [ -d "$folder" ] && [ -w "$folder" ] || fail "nothing can be written to $folder"
  [ -n "$2" ] || { [ -z "$said" ] || fail "said for nothing: $said"; return 0; }
  case $said in *"$2"*) ;; *) fail "said '$said' with '$3' on other disks" ;; esac
}
own=halcyra-$(id -u)
expect state/halcyra "" "state session shm"
expect "session/$own" "in memory, in $work/session/$own, until" "session shm"
expect "shm/$own" "in memory" "shm"
expect state/halcyra "no other place" ""
rm -r "$work/shm/$own" && ln -s "$work/show" "$work/shm/$own" # by somebody else
expect state/halcyra "no other place" "shm"

# And on the disks of this machine, as ./run asks.
grep -q 'logs=$(log_folder "$state")' "$root/run" || fail "./run does not ask where to keep its logs"
unset -f device_of
unset memory_folder XDG_RUNTIME_DIR
. "$root/packaging/lib.sh"
folder=$(log_folder "$work/show" 2>/dev/null)
rmdir "$folder" 2>/dev/null || true # of an own ./run it is in use
[ "$(stat -c %d "$(dirname "$folder")")" != "$(stat -c %d "$work/show")" ] ||
  [ "$(stat -c %d /dev/shm)" = "$(stat -c %d "$work/show")" ] || [ ! -w /dev/shm ] ||
  fail "$folder is on the show's disk"

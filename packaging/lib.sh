# Shared by ./run and ./test: one clear line for what is done, one for what went wrong.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# use_preset NAME: where what follows is built, with which settings (CMakePresets.json).
use_preset() {
  preset=$1
  build_dir=$root/build/$preset
  bin_dir=$build_dir/bin
}
use_preset release

say() { printf '==> %s\n' "$*" >&2; }
fail() { printf 'error: %s\n' "$*" >&2; exit 1; }

as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else command -v sudo >/dev/null || fail "sudo or root is needed for: $*"; sudo "$@"; fi
}

# The packages of the given lists that this machine lacks.
missing_packages() {
  local wanted have
  wanted=$(sed -e 's/#.*//' -e '/^[[:space:]]*$/d' "$@" | sort -u)
  # shellcheck disable=SC2086
  have=$(dpkg-query -W -f='${db:Status-Status} ${Package}\n' $wanted 2>/dev/null | sed -n 's/^installed //p' | sort -u)
  comm -23 <(printf '%s\n' "$wanted") <(printf '%s\n' "$have")
}

install_packages() {
  command -v dpkg-query >/dev/null || fail "this machine is no Debian: install what packaging/debian-packages.txt lists by hand"
  local missing log
  missing=$(missing_packages "$@")
  [ -z "$missing" ] && return 0
  log=$(mktemp)
  say "installing $(printf '%s\n' "$missing" | wc -l) packages"
  # shellcheck disable=SC2086
  { as_root apt-get update -q && as_root env DEBIAN_FRONTEND=noninteractive \
      apt-get install -q -y --no-install-recommends $missing; } >"$log" 2>&1 \
    || { tail -n 20 "$log" >&2; fail "installing the packages failed; the whole log is in $log"; }
  rm -f "$log"
}

# What is there already is brought up to date first, so that whoever lists its tests lists those of now.
configure() {
  local log=$build_dir/configure.log
  mkdir -p "$build_dir"
  [ -e "$build_dir/build.ninja" ] && ninja -C "$build_dir" build.ninja >"$log" 2>&1 && return 0
  say "configuring"
  (cd "$root" && cmake --preset "$preset") >"$log" 2>&1 || { tail -n 20 "$log" >&2; fail "configuring failed; see $log"; }
}

# build TARGET...: configures once, then builds what changed.
build() {
  local log=$build_dir/build.log
  configure
  say "building (a first build takes some minutes)"
  ninja -C "$build_dir" "$@" >"$log" 2>&1 || { grep -E 'error|FAILED' -A 5 "$log" | head -n 40 >&2; fail "the build failed; see $log"; }
}

# File servers for the tests, unpacked into the build folder with the libraries that few machines have: their
# packages would start them on port 21.
unpack_file_servers() {
  local folder=$build_dir/ftpd package server packages
  mkdir -p "$folder"
  while read -r server packages; do
    [ -e "$folder/usr/sbin/$server" ] && continue
    say "unpacking $server"
    rm -rf "$folder/packages" && mkdir "$folder/packages"
    # shellcheck disable=SC2086
    (cd "$folder/packages" && apt-get download -q $packages) >"$folder/log" 2>&1 || {
      say "$server could not be had: its tests are skipped"
      continue
    }
    for package in "$folder"/packages/*.deb; do dpkg -x "$package" "$folder"; done
  done <<'END'
pure-ftpd pure-ftpd pure-ftpd-common
proftpd proftpd-core libhiredis0.14 libmemcached11 libmemcachedutil2 libhashkit2 libpcre2-posix3
vsftpd vsftpd libwrap0
END
  ln -sfn "usr/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH 2>/dev/null || gcc -print-multiarch)" "$folder/libraries"
}

# Sets DISPLAY, to an Xvfb of our own where there is no display; that Xvfb's process id is then in xvfb_pid.
need_display() {
  [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] && return 0
  say "no display here: starting Xvfb"
  local number fifo
  fifo=$(mktemp -u) && mkfifo "$fifo"
  Xvfb -displayfd 3 -screen 0 1600x1000x24 -nolisten tcp 3>"$fifo" >/dev/null 2>&1 &
  xvfb_pid=$!
  read -r -t 20 number <"$fifo" || fail "Xvfb did not start"
  rm -f "$fifo"
  export DISPLAY=:$number
}

# bounded FILE: keeps the first 10 MB of what it reads, as it comes, and takes the rest without a word.
bounded() { stdbuf -o0 head -c 10485760 >"$1"; cat >/dev/null; }

device_of() { stat -c %d "$1"; }

# log_folder SHOW: prints the folder for logs of at most 60 MB, on another device than the show in SHOW, so that they
# neither fill its disk nor keep it busy. Where there is but one disk that is memory. It is lost when the machine
# restarts, the smaller harm: what logs are read for, a server or a window that ended, leaves them there, and
# XDG_STATE_HOME can name a place that keeps them.
log_folder() {
  local own place show
  own=${XDG_STATE_HOME:-${HOME:-/tmp}/.local/state}/halcyra
  mkdir -p "$1" "$own"
  show=$(device_of "$1")
  [ "$(device_of "$own")" = "$show" ] || { printf '%s\n' "$own"; return; }
  for place in "${XDG_RUNTIME_DIR:-}" "${memory_folder:-/dev/shm}"; do
    [ -d "$place" ] && [ -w "$place" ] && [ "$(device_of "$place")" != "$show" ] || continue
    [ "$(df --output=avail -k "$place" | tail -n 1)" -gt 131072 ] || continue
    place=$place/halcyra-$(id -u)
    mkdir -p -m 700 "$place" 2>/dev/null || true
    [ -O "$place" ] && [ ! -L "$place" ] || continue # everybody may write there
    say "the show is on the disk of $own: logs are kept in memory, in $place, until this machine restarts"
    printf '%s\n' "$place"
    return
  done
  say "there is no other place for logs than the show's disk: they take at most 60 MB of it, in $own"
  printf '%s\n' "$own"
}

# What else start_ombra gives to the server.
ombra_args=()

# start_ombra MEDIA STATE OUTPUT LOG: a server on free ports. Its process id is then in ombra_pid, and what
# connects halcyra to it in server_args.
start_ombra() {
  say "starting ombra"
  mkdir -p "$2"
  touch "$3"
  "$bin_dir/ombra" --media "$1" --state "$2" --http-port 0 --link-port 0 --preview-port 0 --ftp-port 0 --log "$4" \
    "${ombra_args[@]}" >"$3" 2>"$3.err" &
  ombra_pid=$!
  for _ in $(seq 200); do
    grep -q '^ombra ready' "$3" && break
    kill -0 "$ombra_pid" 2>/dev/null || { tail -q -n 5 "$3.err" >&2; fail "ombra ended at once; its log is $4"; }
    sleep 0.1
  done
  local ready name
  ready=$(grep -m1 '^ombra ready' "$3") || fail "ombra did not get ready within 20 seconds; its log is $4"
  server_args=(--connect 127.0.0.1)
  for name in http link preview ftp; do
    server_args+=("--$name-port" "$(printf '%s' "$ready" | sed -E "s/.*$name=([0-9]+).*/\1/")")
  done
}

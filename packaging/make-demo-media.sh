#!/usr/bin/env bash
# Makes the demo media in the given folder with the ffmpeg tool: three clips, a still and a title. Keeps what is there.
set -euo pipefail
. "$(dirname "$0")/lib.sh"
folder=${1:?usage: make-demo-media.sh FOLDER}
[ -e "$folder/.complete" ] && exit 0
say "making demo media"
mkdir -p "$folder"

clip() { # NAME SECONDS VIDEO-SOURCE AUDIO-SOURCE
  ffmpeg -v error -nostdin -y -f lavfi -i "$3" -f lavfi -i "$4" -t "$2" \
    -c:v libx264 -preset veryfast -crf 28 -pix_fmt yuv420p -g 25 -c:a aac "$folder/$1" || fail "ffmpeg could not make $1"
}
size=1280x720
clip "01 Walk-in loop.mp4" 20 "gradients=s=$size:r=25:c0=0x10243a:c1=0xf2711c:c2=0x0a5c7a:x0=0:y0=0:x1=1280:y1=720:speed=0.02" \
  "sine=frequency=220:sample_rate=48000"
clip "02 Opening.mp4" 30 "mandelbrot=s=$size:r=25:maxiter=300" "sine=frequency=330:sample_rate=48000"
clip "03 Bars and tone.mp4" 15 "smptehdbars=s=$size:r=25" "sine=frequency=1000:sample_rate=48000"
clip "04 Clock.mp4" 30 "testsrc2=s=$size:r=25" "sine=frequency=440:sample_rate=48000"
ffmpeg -v error -nostdin -y -f lavfi \
  -i "gradients=s=1920x1080:c0=0x08141b:c1=0x242f37:n=2:x0=0:y0=0:x1=1920:y1=1080,drawgrid=w=120:h=120:t=2:c=white@0.12" \
  -frames:v 1 "$folder/05 Logo plate.png" || fail "ffmpeg could not make the still"
touch "$folder/.complete"

#!/usr/bin/env bash
# Fails when a source is not formatted as .clang-format says.
#
# usage: format.sh ROOT
set -euo pipefail
cd "$1"
find util tarn ombra common launcher tests bench fuzz \( -name '*.cpp' -o -name '*.h' \) -print0 |
  xargs -0 -P 2 -n 60 clang-format --dry-run -Werror

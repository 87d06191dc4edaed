#!/bin/sh
# Builds the agent, scans, and shows the result. On a Mac it scans that Mac; elsewhere it plays a recorded one.
# Usage: ./scan.sh [recording folder] [agent options]
set -eu
root=$(cd -P -- "$(dirname -- "$0")" && pwd -P)
"$root/.ci/install-missing" g++ make cmake pkg-config zlib1g-dev libplist-dev libcli11-dev nlohmann-json3-dev tzdata
"$root/.ci/build" release -DBUILD_TESTING=OFF | tail -n 1

recording=$root/recordings/macbook-2015-10.11.6
if [ $# -gt 0 ] && [ -d "$1" ]; then
  recording=$(cd -P -- "$1" && pwd -P)
  shift
fi
mkdir -p "$root/build/scan"
cd "$root/build/scan"
echo
if [ "$(uname -s)" = Darwin ]; then
  echo "Scanning this Mac:"
  set -- "$root/build/release/quillagent" -silent "$@"
else
  echo "Scanning the recorded Mac $recording:"
  set -- "$root/replay/replay" "$recording" -silent "$@"
fi
"$@" | tee console.txt
# with -log the marker stands behind the last phase's name
result=$(sed -n 's/^VII[.] Saving to file[.]*//; s/^>>>//p' console.txt)
[ -f "$result" ] || exit 1

echo
echo "The result is build/scan/$result"
reader=$root/build/release/quillinv
[ -x "$reader" ] || exit 0
"$reader" list "$result"
echo
"$reader" show "$result" >shown.txt
head -n 40 shown.txt
echo "... ($(wc -l <shown.txt | tr -d ' ') lines: build/release/quillinv show 'build/scan/$result')"

page=${result%.inv}.html
"$reader" report "$result" -o "$page"
echo
echo "The same as a page to look at, in any browser: build/scan/$page"
[ "$(uname -s)" != Darwin ] || echo "  open 'build/scan/$page'"

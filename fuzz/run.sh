#!/bin/sh
# fuzz/run.sh [SECONDS [FOLDER]]: builds the fuzz targets in FOLDER (build/fuzz), makes their seeds from the recordings and
# runs each target for SECONDS (60). Corpora stay in FOLDER and grow from run to run. At the first finding it shows the
# report, keeps the input in FOLDER/findings and ends with status 1.

source=$(cd -P -- "$(dirname -- "$0")/.." && pwd -P) || exit 2
seconds=${1-60}
build=${2-$source/build/fuzz}

mkdir -p "$build/findings" || exit 2
{
  cmake -S "$source" -B "$build" -DQUILL_FUZZ=ON -DBUILD_TESTING=OFF -DCMAKE_CXX_COMPILER=clang++ \
    -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS=-O1 && cmake --build "$build" -j2
} >"$build/build.log" 2>&1 || {
  cat "$build/build.log"
  exit 2
}
python3 "$source/fuzz/seeds.py" "$source" "$build" || exit 2

# Standard output and standard error of the target itself are closed: a tree with unusual properties is reported there.
for target in plist edid text inv scan; do
  case $target in
    edid | text) length=1000 ;;
    *) length=65536 ;;
  esac
  "$build/${target}_fuzz" -max_total_time="$seconds" -max_len=$length -timeout=20 -rss_limit_mb=2048 -close_fd_mask=3 \
    -dict="$build/words.dict" -artifact_prefix="$build/findings/$target-" -print_final_stats=1 \
    "$build/corpus/$target" >"$build/$target.log" 2>&1 || {
    tail -n 60 "$build/$target.log"
    printf '%s_fuzz: a finding, see %s\n' "$target" "$build/findings"
    exit 1
  }
  printf '%s_fuzz: %s runs in %s s, nothing found\n' "$target" \
    "$(sed -n 's/^stat::number_of_executed_units: *//p' "$build/$target.log")" "$seconds"
done

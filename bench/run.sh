#!/bin/sh
# run.sh [--quick] [other options of bench/measure]: builds the optimised programs and the benchmarks in build/bench and
# measures once, the agent and then the reader. Fails when something cannot be built or run, never on a figure.
set -eu
cd "$(dirname -- "$0")/.."

launcher=
command -v ccache >/dev/null && launcher=-DCMAKE_CXX_COMPILER_LAUNCHER=ccache
cmake -S . -B build/bench -DCMAKE_BUILD_TYPE=Release -DQUILL_BENCH=ON -DBUILD_TESTING=OFF \
  ${launcher:+"$launcher"} >/dev/null
cmake --build build/bench -j "$(getconf _NPROCESSORS_ONLN)" >/dev/null
bench/measure --build build/bench "$@"
case $* in
  '' | --quick) bench/fleet --build build/bench "$@" ;;  # the other options are the agent's
esac

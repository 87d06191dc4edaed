#!/bin/sh
# Builds the agent for development and runs every test.
# Usage: ./test.sh [ctest options, such as -R scan]
set -eu
cd "$(dirname -- "$0")"
.ci/install-missing g++ make cmake pkg-config zlib1g-dev libplist-dev libcli11-dev nlohmann-json3-dev libgtest-dev \
  python3 python3-jsonschema tzdata
.ci/build dev
cd build/dev
exec ctest --output-on-failure "$@"

#!/usr/bin/env bash
# Builds Quelmo and starts it in the current desktop session.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh run
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DQUELMO_BUILD_TESTS=OFF -DQUELMO_BUILD_BENCHMARKS=OFF >/dev/null
cmake --build build/release --target quelmo
exec build/release/src/app/quelmo "$@"

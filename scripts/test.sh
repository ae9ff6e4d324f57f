#!/usr/bin/env bash
# Builds Quelmo and runs every test: once in a normal build (unit, desktop and comparison tests
# against the real tools, the Debian package made from that build), then all of them again with
# AddressSanitizer and UndefinedBehaviorSanitizer, then every parser's fuzz target for a few seconds
# (QUELMO_FUZZ_SECONDS, default 5).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh test
jobs=$(nproc)

cmake -S . -B build/test -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_INSTALL_PREFIX=/usr >/dev/null
cmake --build build/test -j "$jobs"
(cd build/test && ctest --output-on-failure -j "$jobs")

cmake -S . -B build/asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DQUELMO_SANITIZE=ON \
  -DQUELMO_BUILD_BENCHMARKS=OFF >/dev/null
cmake --build build/asan -j "$jobs"
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
export LSAN_OPTIONS="suppressions=$PWD/tests/support/lsan.supp"
(cd build/asan && ctest --output-on-failure -j "$jobs")

cmake -S . -B build/fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ \
  -DQUELMO_FUZZ=ON -DQUELMO_FUZZ_SECONDS="${QUELMO_FUZZ_SECONDS:-5}" -DQUELMO_BUILD_TESTS=OFF \
  -DQUELMO_BUILD_BENCHMARKS=OFF >/dev/null
cmake --build build/fuzz --target quelmo_fuzz_targets -j "$jobs"
(cd build/fuzz && ctest --output-on-failure -L fuzz)

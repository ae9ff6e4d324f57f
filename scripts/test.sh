#!/usr/bin/env bash
# Builds Quelmo and runs every test: once in a normal build (unit, desktop and comparison tests
# against the real tools, the Debian package made from that build), then all of them again built
# by clang with AddressSanitizer and UndefinedBehaviorSanitizer, then every parser's fuzz target
# for a few seconds (QUELMO_FUZZ_SECONDS, default 5).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh test
jobs=$(nproc)

cmake -S . -B build/test -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_INSTALL_PREFIX=/usr >/dev/null
cmake --build build/test -j "$jobs"
(cd build/test && ctest --output-on-failure -j "$jobs")

# The suite again, built by clang with AddressSanitizer and UndefinedBehaviorSanitizer; the same
# build holds every parser's fuzz target, which then runs for a few seconds.
cmake -S . -B build/san -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++ \
  -DQUELMO_SANITIZE=ON -DQUELMO_FUZZ=ON -DQUELMO_FUZZ_SECONDS="${QUELMO_FUZZ_SECONDS:-5}" \
  -DQUELMO_BUILD_BENCHMARKS=OFF >/dev/null
cmake --build build/san -j "$jobs"
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
export LSAN_OPTIONS="suppressions=$PWD/tests/support/lsan.supp"
(cd build/san && ctest --output-on-failure -j "$jobs" -LE fuzz)
(cd build/san && ctest --output-on-failure -L fuzz)

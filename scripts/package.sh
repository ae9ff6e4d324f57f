#!/usr/bin/env bash
# Builds Quelmo's Debian package and leaves it in the source folder:
#   scripts/package.sh && sudo apt install ./quelmo_*.deb
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh package
cmake -S . -B build/package -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_INSTALL_PREFIX=/usr \
  -DQUELMO_BUILD_TESTS=OFF -DQUELMO_BUILD_BENCHMARKS=OFF >/dev/null
cmake --build build/package
rm -f quelmo_*.deb
(cd build/package && cpack -G DEB >/dev/null)
cp build/package/quelmo_*.deb .
ls quelmo_*.deb

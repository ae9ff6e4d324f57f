#!/usr/bin/env bash
# Installs the Debian packages Quelmo needs. Usage: install-deps.sh [run|package|test]
#   run     - what building and running the tray utility needs
#   package - additionally what making its Debian package needs
#   test    - additionally the test, benchmark, desktop-test and package-check tools
# Only missing packages are installed; nothing is asked.
set -euo pipefail

build_pkgs=(
  build-essential cmake ninja-build pkg-config
  qt6-base-dev qt6-declarative-dev qt6-svg-dev qt6-tools-dev-tools
  libqt6svg6 qt6-qpa-plugins
  qml6-module-qtquick qml6-module-qtquick-window qml6-module-qtquick-controls
  qml6-module-qtquick-layouts qml6-module-qtquick-templates qml6-module-qtquick-shapes
  qml6-module-qtqml qml6-module-qtqml-models qml6-module-qtqml-workerscript
  libxcb1-dev libxcb-ewmh-dev libxcb-res0-dev libxcb-icccm4-dev
  libwayland-dev libwayland-bin
  procps ccache
  fonts-noto-cjk
)
package_pkgs=(
  dpkg-dev file
)
test_pkgs=(
  googletest libgtest-dev libgmock-dev libbenchmark-dev clang-format
  clang libfuzzer-14-dev
  xvfb xauth openbox xfce4-panel trayer dbus dbus-x11 at-spi2-core
  xdotool wmctrl x11-utils x11-apps imagemagick mousepad desktop-file-utils
  sway foot xwayland
  python3 python3-pyatspi gir1.2-atspi-2.0
  libglib2.0-bin
  lintian appstream man-db
)

mode=${1:-run}
pkgs=("${build_pkgs[@]}")
[ "$mode" = package ] || [ "$mode" = test ] && pkgs+=("${package_pkgs[@]}")
[ "$mode" = test ] && pkgs+=("${test_pkgs[@]}")

missing=()
for p in "${pkgs[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo_cmd=()
[ "$(id -u)" -ne 0 ] && sudo_cmd=(sudo -n)
echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null

#!/usr/bin/env bash
# Installs the Debian packages Quelmo needs. Usage: install-deps.sh [run|package|test]
#   run     - what building and running the tray utility needs
#   package - additionally what making its Debian package needs
#   test    - additionally the test, benchmark, desktop-test and package-check tools
# Only missing packages are installed; nothing is asked. Works on Debian 12 and 13: where the
# releases name a package differently, the list gives the names as "new|old" and the first one
# that is installed, or else that the system's package index offers, is used.
set -euo pipefail

build_pkgs=(
  build-essential cmake ninja-build pkg-config
  qt6-base-dev qt6-declarative-dev qt6-svg-dev qt6-tools-dev-tools
  libqt6svg6 qt6-qpa-plugins
  qml6-module-qtquick qml6-module-qtquick-window
  qml6-module-qtquick-layouts qml6-module-qtquick-templates
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
  clang 'libclang-rt-dev|libclang-rt-14-dev' # the sanitizer and fuzzer runtimes clang only recommends
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

installed() { [ "$(dpkg-query -W -f='${Status}' "$1" 2>/dev/null)" = "install ok installed" ]; }
offered() { [[ $(apt-cache policy "$1" 2>/dev/null) =~ Candidate:\ [^\(] ]]; }

missing=()
for entry in "${pkgs[@]}"; do
  IFS='|' read -r -a names <<<"$entry"
  have=
  for p in "${names[@]}"; do installed "$p" && have=1 && break; done
  [ -n "$have" ] || missing+=("$entry")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo_cmd=()
[ "$(id -u)" -ne 0 ] && sudo_cmd=(sudo -n)
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
chosen=()
for entry in "${missing[@]}"; do
  IFS='|' read -r -a names <<<"$entry"
  pick=${names[0]} # when no name is offered, apt says so about the first
  for p in "${names[@]}"; do offered "$p" && pick=$p && break; done
  chosen+=("$pick")
done
echo "Installing: ${chosen[*]}"
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${chosen[@]}" >/dev/null

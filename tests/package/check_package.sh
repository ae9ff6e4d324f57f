#!/usr/bin/env bash
# Builds the Debian package from a finished build and checks it as a user's machine would see it.
# Usage: check_package.sh BUILD_DIR SOURCE_DIR BUILT_PROGRAM APP_ID VERSION
set -euo pipefail
build=$1 source=$2 program=$3 id=$4 version=$5
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

for tool in cpack lintian desktop-file-validate appstreamcli dpkg-shlibdeps; do
  command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed"; exit 77; }
done

# The package, from what this build already made.
cpack -G DEB --config "$build/CPackConfig.cmake" -B "$work/out" >"$work/cpack.log" 2>&1 ||
  { cat "$work/cpack.log"; exit 1; }
deb=$(ls "$work"/out/quelmo_"$version"-*.deb)
echo "package: $(basename "$deb")"

# Lintian: no errors; warnings are shown.
lintian --fail-on error --display-level '>=warning' "$deb" || fail "lintian reports errors"

dpkg-deb -x "$deb" "$work/root"
dpkg-deb -c "$deb" | awk '{print $NF}' | sed 's|^\./|/|' >"$work/files"
for path in /usr/bin/quelmo "/usr/share/applications/$id.desktop" "/usr/share/metainfo/$id.metainfo.xml" \
  "/usr/share/icons/hicolor/scalable/apps/$id.svg" \
  "/usr/share/icons/hicolor/symbolic/apps/$id-symbolic.svg" \
  /usr/share/man/man1/quelmo.1.gz /usr/share/doc/quelmo/copyright \
  /usr/share/doc/quelmo/changelog.Debian.gz; do
  grep -qx "$path" "$work/files" || fail "the package lacks $path"
done
unexpected=$(grep -v -e '/$' -e '^/usr/bin/quelmo$' -e '^/usr/share/' "$work/files" || true)
[ -z "$unexpected" ] || fail "files outside /usr/bin and /usr/share: $unexpected"

out=$(desktop-file-validate "$work/root/usr/share/applications/$id.desktop" 2>&1) &&
  [ -z "$out" ] || fail "desktop-file-validate: $out"
grep -qx 'NoDisplay=true' "$work/root/usr/share/applications/$id.desktop" &&
  fail "the desktop entry is hidden from the menu"
appstreamcli validate --no-net "$work/root/usr/share/metainfo/$id.metainfo.xml" >"$work/as.log" 2>&1 ||
  { cat "$work/as.log"; fail "appstreamcli validate"; }
grep -q "<id>$id</id>" "$work/root/usr/share/metainfo/$id.metainfo.xml" || fail "AppStream id is not $id"
grep -q "<launchable type=\"desktop-id\">$id.desktop</launchable>" \
  "$work/root/usr/share/metainfo/$id.metainfo.xml" || fail "AppStream launchable is not $id.desktop"
grep -qx "Icon=$id" "$work/root/usr/share/applications/$id.desktop" || fail "desktop entry icon is not $id"

# Every screenshot the metadata lists can be made again: a preview state of the same name.
for image in $(sed -n 's|.*<image[^>]*>.*/\([^/]*\)\.png</image>.*|\1|p' "$source/data/$id.metainfo.xml"); do
  [ -f "$source/data/screenshots/$image.json" ] || fail "no preview state for the screenshot $image.png"
done

# Dependencies: the libraries, the run-time loaded pieces, nothing of the tests.
depends=$(dpkg-deb -f "$deb" Depends)
echo "Depends: $depends"
for package in libqt6quick6 libqt6dbus6 libxcb1 qt6-qpa-plugins qml6-module-qtquick \
  qml6-module-qtquick-templates fonts-noto-cjk; do
  [[ ", $depends," == *", $package"[\ ,]* ]] || fail "Depends lacks $package"
done
[[ $depends == *gtest* || $depends == *benchmark* || $depends == *-dev* ]] && fail "Depends names build or test packages"

# One version everywhere: the program, the package, the manual page and the release notes.
[ "$("$program" --version)" = "quelmo $version" ] || fail "quelmo --version does not say $version"
[ "$(dpkg-deb -f "$deb" Version)" = "$version-1" ] || fail "package version is not $version-1"
grep -q "^\.TH QUELMO 1 .* \"Quelmo $version\"" "$source/data/quelmo.1" || fail "quelmo.1 is not for $version"
grep -q "<release version=\"$version\"" "$source/data/$id.metainfo.xml" || fail "no release notes for $version"

# Every option --help lists is in the manual page, with the same words.
while IFS=$'\t' read -r names text; do
  long=${names##*, }
  grep -qF -- "${long//-/\\-}" "$source/data/quelmo.1" || fail "quelmo.1 lacks $long"
  grep -qxF -- "$text" "$source/data/quelmo.1" || fail "quelmo.1 describes $long otherwise: $text"
done < <("$program" --help | sed -n '/^Options:/,$p' | sed -n 's/^  \(-.*[a-z]\)  \+\(.*\)$/\1\t\2/p')

# Installing it: only as root, on a machine that may be changed (CI runs on a throwaway one).
if [ "$(id -u)" -eq 0 ]; then
  installed_before=$(dpkg-query -W -f='${Status}' quelmo 2>/dev/null | grep -c "install ok installed" || true)
  dpkg -i "$deb" >"$work/dpkg.log" 2>&1 || { cat "$work/dpkg.log"; fail "dpkg -i"; }
  [ "$(env -u DISPLAY -u WAYLAND_DISPLAY /usr/bin/quelmo --version)" = "quelmo $version" ] ||
    fail "the installed quelmo does not answer --version"
  status=0
  /usr/bin/quelmo --no-such-option 2>/dev/null || status=$?
  [ "$status" -eq 2 ] || fail "the installed quelmo exits with $status on an unknown option"
  [ "$(command -v quelmo)" = /usr/bin/quelmo ] || fail "quelmo is not found on the PATH"
  [ "$installed_before" -eq 0 ] && dpkg -r quelmo >/dev/null
else
  echo "not root: installing the package is left out"
fi

[ "$failures" -eq 0 ] || { echo "$failures check(s) failed"; exit 1; }
echo "package checks passed"

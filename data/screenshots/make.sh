#!/usr/bin/env bash
# Renders the AppStream screenshots from the state files beside this script with the preview
# program of a build: data/screenshots/make.sh build/dev
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
preview=${1:?usage: make.sh BUILD_DIR}/src/app/preview/quelmo-preview
for state in "$here"/*.json; do
  "$preview" "$state" "${state%.json}.png" 2
  echo "${state%.json}.png"
done

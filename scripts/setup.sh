#!/usr/bin/env bash
# Installs what Mirepan needs to build and run on Debian 12, only when something is missing.
set -euo pipefail
pkgs=(clang-format-14 qt6-base-dev libqt6sql6-sqlite libqt6sql6-psql postgresql postgresql-contrib libqt6svg6 libsqlite3-dev cmake ninja-build g++ fonts-liberation2 fonts-dejavu-core poppler-utils desktop-file-utils appstream)
missing=()
for p in "${pkgs[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  SUDO=""
  [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  $SUDO apt-get update
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y --no-install-recommends "${missing[@]}"
fi

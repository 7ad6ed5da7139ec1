#!/usr/bin/env bash
# Installs the Debian packages needed to build, test and run vnxml; only those missing.
set -euo pipefail
packages=(
  build-essential cmake ninja-build pkg-config ccache
  libicu-dev libpcre2-dev libxslt1-dev libxml2-dev
  libgtest-dev libgmock-dev libbenchmark-dev
)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if ((${#missing[@]})); then
  echo "install-deps: installing ${missing[*]}"
  SUDO=""; [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

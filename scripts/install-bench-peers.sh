#!/usr/bin/env bash
# Installs the peer libraries that bench/peers compares vnxml with; only those missing.
set -euo pipefail
packages=(
  libpugixml-dev libxml2-dev libexpat1-dev libtinyxml2-dev
  rapidjson-dev nlohmann-json3-dev libsimdjson-dev libcereal-dev libboost-serialization-dev
)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if ((${#missing[@]})); then
  echo "install-bench-peers: installing ${missing[*]}"
  SUDO=""; [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

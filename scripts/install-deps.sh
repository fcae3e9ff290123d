#!/usr/bin/env bash
# Installs the Debian 12 packages that building, running and testing Kestravin need.
# Idempotent: asks apt only for what is missing, and does nothing when all is present.
set -euo pipefail

packages=(
  cmake g++ make pkg-config ninja-build
  qtbase5-dev qtbase5-private-dev qttools5-dev qttools5-dev-tools libqt5svg5-dev
  protobuf-compiler libprotobuf-dev
  libssl-dev openssl
  libcpp-httplib-dev
  libbenchmark-dev
  fio
  xvfb xauth x11-utils xdotool libx11-dev procps
  pngquant
  fonts-inter libfontconfig-dev
  smartmontools
  libudev-dev libblkid-dev
  fdisk e2fsprogs dosfstools xfsprogs btrfs-progs ntfs-3g
  rsync acl attr
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
  sudo_cmd=(sudo)
fi

echo "Installing: ${missing[*]}"
"${sudo_cmd[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -qq
"${sudo_cmd[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"

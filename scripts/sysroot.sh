#!/usr/bin/env bash
# Unpacks Debian packages of another architecture, and all they need, into a folder that a cross compiler and an
# emulator use as root. Changes nothing of the system and needs no rights; the packages come from its own sources.
#
# usage: scripts/sysroot.sh ARCHITECTURE FOLDER PACKAGE...     for example arm64 build-aarch64/sysroot zlib1g-dev
set -euo pipefail
architecture=$1
folder=$2
shift 2

[ "$(cat "$folder/.packages" 2>/dev/null)" != "$*" ] || exit 0
rm -rf "$folder"
mkdir -p "$folder"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir -p "$scratch/lists/partial" "$scratch/cache/archives/partial"
: >"$scratch/status"
private_apt() {
  apt-get -qq -o APT::Architecture="$architecture" -o APT::Architectures="$architecture" \
    -o Dir::State="$scratch" -o Dir::State::status="$scratch/status" -o Dir::Cache="$scratch/cache" \
    -o APT::Sandbox::User=root -o Debug::NoLocking=1 \
    -o APT::Update::Post-Invoke::= -o Acquire::Languages=none "$@"
}
private_apt update
private_apt install --download-only --no-install-recommends -y "$@" >/dev/null
for package in "$scratch"/cache/archives/*.deb; do dpkg-deb -x "$package" "$folder"; done
# Links from the root folder have to stay inside this one.
find "$folder" -type l -lname '/*' -printf '%p %l\n' | while read -r link target; do
  ln -sfr "$folder$target" "$link"
done
echo "$*" >"$folder/.packages"

#!/usr/bin/env bash
# Installs the Debian packages that Tumblekin builds, runs and tests with.
# Idempotent: asks apt only for what is missing, and runs `apt-get update`
# only when something is missing, so a second run costs a second.
set -eu

PACKAGES=(
  build-essential cmake pkg-config
  liballegro4-dev liballeggl4-dev libenet-dev
  libgl1-mesa-dev libglu1-mesa-dev libgl1-mesa-dri
  googletest libgtest-dev
  xvfb xdotool x11-apps imagemagick
  python3
  clang libclang-rt-14-dev
  libfreetype-dev fonts-dejavu-core
)

missing=()
for p in "${PACKAGES[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "Installing: ${missing[*]}"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
echo "Dependencies installed."

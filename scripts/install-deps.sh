#!/usr/bin/env bash
# Installs the Debian 12 packages that building kivmeta needs; with --tests
# also those of the tests, benchmarks and checks.
set -euo pipefail
packages=(
  cmake g++ pkg-config ccache
  qt6-base-dev qt6-tools-dev libqt6opengl6-dev libgl-dev
  libexempi-dev zlib1g-dev fonts-dejavu-core xdg-utils
)
case "${1:-}" in
"") ;;
--tests)
  packages+=(
    libxml2-dev libgtest-dev libgmock-dev libbenchmark-dev libimage-exiftool-perl clang-format
    # the lossless-saving corpus (tests/kivmeta): sample files and encoders, < 3 MB
    python3 golang-github-rwcarlsen-goexif-dev libopenjp2-tools libheif-examples libavif-bin
  )
  ;;
*)
  echo "usage: $0 [--tests]" >&2
  exit 2
  ;;
esac
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"

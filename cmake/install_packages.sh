#!/usr/bin/env bash
# Installs the Debian packages this project builds, tests and draws with, as far as they are missing.
#
#   cmake/install_packages.sh            what run.sh needs
#   cmake/install_packages.sh test       and what test.sh needs on top
#   cmake/install_packages.sh benchmark  or what benchmarks/run.sh needs on top
set -euo pipefail

packages=(
    g++ cmake ninja-build                               # compiler and build
    libeigen3-dev                                       # solver library and reference host
    libgmsh-dev libcli11-dev libfmt-dev                 # reference host
    libtomlplusplus-dev                                 # its case files
    python3 python3-vtk9 python3-numpy python3-matplotlib  # reading results back, pictures
)
case "${1:-}" in
    '') ;;
    test) packages+=(libgtest-dev libgmock-dev) ;;
    benchmark) packages+=(libbenchmark-dev libnanoflann-dev) ;;
    *) echo "install_packages.sh: unknown argument '$1' (known: test, benchmark)" >&2; exit 2 ;;
esac

missing=()
for package in "${packages[@]}"; do
    state=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$state" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
        echo "install_packages.sh: not root and no sudo; run as root: apt-get install ${missing[*]}" >&2
        exit 1
    fi
    as_root=(sudo)
fi
echo "Installing ${missing[*]}"
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null

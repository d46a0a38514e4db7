#!/usr/bin/env bash
# Installs those Debian packages that this project needs and that are missing.
#
#   cmake/install_packages.sh            what run.sh needs
#   cmake/install_packages.sh test       what run.sh and test.sh need
#   cmake/install_packages.sh benchmark  what run.sh and benchmarks/run.sh need
#   cmake/install_packages.sh lint       what run.sh and the checks in .ci need
set -euo pipefail

packages=(
    g++ cmake ninja-build                               # compiler and build
    libeigen3-dev                                       # solver library and reference host
    libgmsh-dev libfmt-dev                              # reference host
    libtomlplusplus-dev                                 # its case files
    python3 python3-vtk9 python3-numpy python3-matplotlib  # reading results back, pictures
)
case "${1:-}" in
    '') ;;
    test) packages+=(libgtest-dev libgmock-dev) ;;
    benchmark) packages+=(libbenchmark-dev libnanoflann-dev) ;;
    lint) packages+=(clang-format clang-tidy) ;;
    *) echo "install_packages.sh: unknown argument '$1' (known: test, benchmark, lint)" >&2; exit 2 ;;
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

#!/usr/bin/env bash
# Builds everything with warnings as errors and runs all tests, once as a release build and once
# under AddressSanitizer and UndefinedBehaviorSanitizer. Installs missing Debian packages first.
#
#   ./test.sh            the quick tests in both builds
#   ./test.sh --full     the quick tests in both builds and the long accuracy runs in the release build
set -euo pipefail
cd "$(dirname "$0")"

full=no
for argument in "$@"; do
    case "$argument" in
        --full) full=yes ;;
        *) echo "test.sh: unknown argument '$argument' (known: --full)" >&2; exit 2 ;;
    esac
done

bash cmake/install_packages.sh test
jobs=$(nproc)

# build <preset>
build() {
    cmake --preset "$1" >"build/$1.configure.log" 2>&1 ||
        { cat "build/$1.configure.log" >&2; exit 1; }
    cmake --build --preset "$1" -j "$jobs"
}

mkdir -p build
echo "== Release build"
build release
echo "== Sanitizer build"
build sanitize

echo "== Tests under AddressSanitizer and UndefinedBehaviorSanitizer"
ctest --preset sanitize -j "$jobs" --progress
echo "== Tests of the release build"
ctest --preset "$([ "$full" = yes ] && echo full || echo release)" -j "$jobs" --progress

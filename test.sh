#!/usr/bin/env bash
# Builds everything with warnings as errors and passes all tests, then once more under
# AddressSanitizer and UndefinedBehaviorSanitizer. Installs missing Debian packages first.
#
#   ./test.sh            quick suite, both builds
#   ./test.sh --full     and the long accuracy runs (release build only)
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

# build <folder> <cmake arguments...>
build() {
    local folder=$1
    shift
    cmake -S . -B "$folder" -G Ninja "$@" >"$folder.configure.log" 2>&1 ||
        { cat "$folder.configure.log" >&2; exit 1; }
    cmake --build "$folder" -j "$jobs"
}

mkdir -p build
echo "== Release build"
build build/release -DCMAKE_BUILD_TYPE=Release
echo "== Sanitizer build"
build build/sanitize -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKVX3D_SANITIZE=address,undefined \
    -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O1 -g1"  # half the compile time of -O2 -g

echo "== Tests under AddressSanitizer and UndefinedBehaviorSanitizer"
ctest --test-dir build/sanitize -j "$jobs" --output-on-failure -LE 'full|release' --progress
echo "== Tests of the release build"
if [ "$full" = yes ]; then
    ctest --test-dir build/release -j "$jobs" --output-on-failure --progress
else
    ctest --test-dir build/release -j "$jobs" --output-on-failure -LE full --progress
fi

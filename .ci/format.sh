#!/usr/bin/env bash
# Fails if clang-format 14 would change a C++ file. To apply its changes: .ci/format.sh --fix
set -euo pipefail
cd "$(dirname "$0")/.."

mode=(--dry-run -Werror)
case "${1:-}" in
    '') ;;
    --fix) mode=(-i) ;;
    *) echo "format.sh: unknown argument '$1' (known: --fix)" >&2; exit 2 ;;
esac

formatter=$(command -v clang-format-14 || command -v clang-format) ||
    { echo "format.sh: clang-format is missing; run cmake/install_packages.sh lint" >&2; exit 1; }
echo "== Format of the C++ files"
find . \( -name 'build*' -o -name .git -o -name install \) -prune -o \
    \( -name '*.h' -o -name '*.cpp' \) -print0 | xargs -0 "$formatter" "${mode[@]}"

#!/usr/bin/env bash
# Runs clang-tidy 14 with the checks of .clang-tidy. Needs the compile commands of the release build.
#
#   .ci/tidy.sh           host_checks/ and matrix_solver/, and at most 10 of those files of the
#                         reference host that changed since the main branch: a file takes eight
#                         seconds there, nearly all of them for the headers of Eigen
#   .ci/tidy.sh --all     host_checks/, matrix_solver/ and all of the reference host (ten minutes of
#                         one core)
set -euo pipefail
cd "$(dirname "$0")/.."

folders='host_checks|matrix_solver'
changed=''
case "${1:-}" in
    '') changed=$({ git diff --name-only --diff-filter=d origin/main...HEAD 2>/dev/null ||
                    git diff --name-only --diff-filter=d main...HEAD 2>/dev/null || true; } |
                  grep -E '^reference_host/.*\.cpp$' || true) ;;
    --all) folders+='|reference_host' ;;
    *) echo "tidy.sh: unknown argument '$1' (known: --all)" >&2; exit 2 ;;
esac
most=10
if [ "$(grep -c . <<<"$changed")" -gt "$most" ]; then
    echo "tidy.sh: more than $most changed files, checking the first $most; --all checks the rest"
    changed=$(head -n "$most" <<<"$changed")
fi

commands=build/release/compile_commands.json
[ -f "$commands" ] || { echo "tidy.sh: no $commands; run cmake --preset release" >&2; exit 1; }

# A file outside the build, as one for another system, has no compile command.
mapfile -t files < <({ printf '%s\n' "$changed"
                       find . -name '*.cpp' | sed 's|^\./||' | grep -E "^($folders)/"; } |
                     grep . | sort -u | while read -r file; do
                         grep -qF "/$file\"" "$commands" && echo "$file" || true
                     done)
echo "== clang-tidy on ${#files[@]} files"
printf '%s\0' "${files[@]}" | xargs -0 -n 4 -P "$(nproc)" clang-tidy -p build/release --quiet \
    2> >(grep -vE '^[0-9]+ warnings? generated|^Suppressed|^Use -' >&2)

#!/bin/sh
# lost_output.sh OUTPUT_DIR PROGRAM ARGUMENTS...
# Runs a case twice: with standard output on a full disk, and to a reader that ends after one
# line. Succeeds if each run exits with 1, prints one line of error and completes its series.
output=$1
shift
rm -rf "$output"
mkdir -p "$output"

"$@" --output "$output/full" >/dev/full 2>"$output/full.errors"
echo $? >"$output/full.code"
{
    "$@" --output "$output/closed" 2>"$output/closed.errors"
    echo $? >"$output/closed.code"
} | head -n 1 >/dev/null

for run in full closed; do
    if [ "$(cat "$output/$run.code")" != 1 ] || [ "$(wc -l <"$output/$run.errors")" -ne 1 ] ||
        ! grep -q "^reference_host: standard output" "$output/$run.errors" ||
        [ ! -s "$output/$run/VTK_Overset_Flow_Results.pvd" ]; then
        printf '%s: exit code %s\n' "$run" "$(cat "$output/$run.code")"
        cat "$output/$run.errors"
        exit 1
    fi
done

#!/bin/sh
# interrupt_run.sh SIGNAL OUTPUT_DIR PROGRAM ARGUMENTS...
# Sends the signal (INT or TERM) to a running case as soon as it reports an iteration or time step.
# Succeeds if the case reports the interruption, exits with 130 and leaves a complete series in
# OUTPUT_DIR.
signal=$1
output=$2
shift 2
rm -rf "$output"
mkdir -p "$output"
mkfifo "$output/lines"
"$@" --output "$output/results" >"$output/lines" 2>"$output/errors" &
program=$!
reported=no
while read -r line; do
    case "$line" in
        "cylinder 10:"* | "heat 2/"*) kill -"$signal" "$program" ;;
        "Interrupted a"*) reported=yes ;;
    esac
done <"$output/lines"
wait "$program"
code=$?
steps=$(grep -c '<DataSet ' "$output/results/VTK_Overset_Flow_Results.pvd")
if [ "$code" -ne 130 ] || [ "$reported" != yes ] || [ "$steps" -lt 2 ] || [ -s "$output/errors" ]; then
    printf 'exit code %s, interruption reported: %s, %s steps\n' "$code" "$reported" "$steps"
    cat "$output/errors"
    exit 1
fi

#!/bin/sh
# interrupt_run.sh SIGNAL OUTPUT_DIR PROGRAM ARGUMENTS...
# Sends the signal (INT, TERM) to a running case as soon as it reports an iteration or time step.
# Succeeds if it says so, exits with 130 and leaves a complete series in OUTPUT_DIR.
signal=$1
output=$2
shift 2
rm -rf "$output"
mkdir -p "$output"
mkfifo "$output/lines"
"$@" --output "$output/results" >"$output/lines" 2>"$output/errors" &
program=$!
said=no
while read -r line; do
    case "$line" in
        "cylinder 10:"* | "heat 2/"*) kill -"$signal" "$program" ;;
        "Interrupted a"*) said=yes ;;
    esac
done <"$output/lines"
wait "$program"
code=$?
steps=$(grep -c '<DataSet ' "$output/results/VTK_Overset_Flow_Results.pvd")
if [ "$code" -ne 130 ] || [ "$said" != yes ] || [ "$steps" -lt 2 ] || [ -s "$output/errors" ]; then
    printf 'exit code %s, said so: %s, %s steps\n' "$code" "$said" "$steps"
    cat "$output/errors"
    exit 1
fi

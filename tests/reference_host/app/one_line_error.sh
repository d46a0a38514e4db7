#!/bin/sh
# one_line_error.sh PATTERN PROGRAM ARGUMENTS...
# Succeeds if the program exits with 1 and its standard error is one line that begins with
# "reference_host: " and holds PATTERN (a basic regular expression).
pattern=$1
shift
errors=$("$@" 2>&1 >/dev/null)
code=$?
lines=$(printf '%s\n' "$errors" | wc -l)
if [ "$code" -ne 1 ] || [ "$lines" -ne 1 ]; then
    printf 'exit code %s, %s line(s): %s\n' "$code" "$lines" "$errors"
    exit 1
fi
printf '%s\n' "$errors" | grep -q "^reference_host: .*$pattern" || {
    printf 'unexpected: %s\n' "$errors"
    exit 1
}

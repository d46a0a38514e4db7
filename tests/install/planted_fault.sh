#!/bin/sh
# planted_fault.sh PROGRAM FAULT RULE
# Succeeds if "PROGRAM --fault FAULT" exits with 1 and the first line it prints begins with
# "RULE: ", followed by no other output than lines of that form: nothing was set up.
program=$1
fault=$2
rule=$3
output=$("$program" --fault "$fault" --output "$(dirname "$program")/faults")
code=$?
first=$(printf '%s\n' "$output" | head -n 1)
others=$(printf '%s\n' "$output" | grep -c -v '^[a-z ]*: ')
case "$first" in
    "$rule: "*) [ "$code" -eq 1 ] && [ "$others" -eq 0 ] && exit 0 ;;
esac
printf 'exit code %s:\n%s\n' "$code" "$output"
exit 1

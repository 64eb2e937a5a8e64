#!/usr/bin/env bash
# Runs a compiler, and writes the processor time that it took beside the object: OBJECT.seconds.
set -euo pipefail

object= previous=
for word in "$@"; do
  if [ "$previous" = -o ]; then object=$word; fi
  previous=$word
done
TIMEFORMAT='%3U %3S'
export LC_ALL=C  # a point before the decimals
exec 3>&2
{ time "$@" 2>&3; } 2>"$object.seconds"

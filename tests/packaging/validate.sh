#!/usr/bin/env bash
# validate.sh PROGRAM ARGUMENT...: runs a checker of desktop files; left out (status 77) where it is not installed.
command -v "$1" >/dev/null || { echo "left out: $1 is not installed"; exit 77; }
exec "$@"

#!/usr/bin/env bash
# CTest midi_crosscheck: builds the corpus, then checks it. 77: skipped.
set -uo pipefail
checker=$1 work=$2
"$(dirname "$0")/../../scripts/make-midi-corpus.sh" "$work/corpus" || exit $?
exec "$checker" "$work/corpus" "$work/written"

#!/usr/bin/env bash
# Two memory checkers show that no uninitialised memory is read, sent or traced: MemorySanitizer over messages of every
# type, in an instrumented build of the library, and valgrind over messages and over the tests of the codec.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

build() {  # PRESET TARGET...
    local preset=$1 log=build-$1.log
    shift
    { cmake --preset "$preset" && cmake --build --preset "$preset" -j "$(nproc)" --target "$@"; } >"$log" 2>&1 ||
        { tail -n 40 "$log" >&2; return 1; }
    rm -f "$log"
}
build default digest replay quorvaxdrc primitives_test every_type_test custom_platform_test
build msan replay
build/bin/digest --messages >build/messages.txt

status=0
run() {  # NAME COMMAND...
    local name=$1 log=build/checkers.log
    shift
    if "$@" >"$log" 2>&1; then
        echo "$name: clean ($(tail -n 1 "$log"))"
    else
        echo "$name:"
        head -n 40 "$log"
        status=1
    fi
}
# Without this synonym, valgrind would replace the allocation operators of the tests, which count and fail.
checked() { valgrind --quiet --error-exitcode=9 --leak-check=full --soname-synonyms=somalloc=none "$@"; }
# Every eleventh message, as valgrind is about fifty times slower.
awk 'NR % 11 == 1' build/messages.txt >build/some-messages.txt

run "MemorySanitizer, messages" build-msan/bin/replay build/messages.txt
run "valgrind, messages" checked build/bin/replay build/some-messages.txt
for program in primitives_test custom_platform_test; do
    run "valgrind, $program" checked "build/bin/$program" --gtest_brief=1
done
run "valgrind, every_type_test" checked build/bin/every_type_test --gtest_brief=1 --gtest_filter='-Concurrency.*'
exit "$status"

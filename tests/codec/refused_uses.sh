#!/bin/sh
# What does not compile, and the error that says why: encode and decode of a C++ type without a coder of its own, and
# headers whose layouts in memory are changed from outside.
#   refused_uses.sh CXX INCLUDE_DIR...
set -eu
cxx=$1
shift
for folder; do
    shift
    set -- "$@" -I "$folder"
done
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

compile() {
    printf '%s\n' '#include <quorvapixdr/codec.h>' '#include <quorvapixdr/types/common/event.h>' \
        "void use(char* host, int number, const quorva::Bytes& bytes) { $1; (void)host, (void)number, (void)bytes; }" \
        >"$work/use.cc"
    shift
    "$cxx" -std=c++20 -fsyntax-only "$@" "$work/use.cc" >"$work/log" 2>&1
}

while IFS= read -r statement; do
    if compile "$statement" "$@"; then
        echo "compiles: $statement"
        exit 1
    fi
    [ "$(grep -c 'error:' "$work/log")" -eq 1 ] &&
        grep 'error:' "$work/log" | grep -qF 'quorva::encode(x, quorva::coder::HostName)' ||
        { echo "expected one error that names the way out: $statement"; cat "$work/log"; exit 1; }
done <<'STATEMENTS'
quorva::encode(host)
quorva::encode(number)
quorva::encode(host, {.limit = 100})
quorva::decode<char*>(bytes)
quorva::decode<unsigned char>(bytes)
STATEMENTS

# With the coder, they compile.
while IFS= read -r statement; do
    compile "$statement" "$@" || { cat "$work/log"; exit 1; }
done <<'STATEMENTS'
quorva::encode(host, quorva::coder::HostName, {.limit = 100})
quorva::encode(number, quorva::coder::LongInteger)
quorva::decode(bytes, quorva::coder::HostName)
quorva::decode<unsigned char>(bytes, quorva::coder::Boolean)
STATEMENTS

# A pragma that an earlier header left on. Only the assertions of the layouts fail.
printf '%s\n' '#pragma pack(1)' '#include <quorvapixdr/types/common/event.h>' >"$work/packed.cc"
if "$cxx" -std=c++20 -fsyntax-only "$@" "$work/packed.cc" 2>"$work/log"; then
    echo "compiles with other layouts"
    exit 1
fi
! grep 'error:' "$work/log" | grep -qv 'static.assert' || { cat "$work/log"; exit 1; }

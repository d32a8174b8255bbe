#!/bin/sh
# The headers for C: each of the library's compiles alone, without warnings; so do those of interface files with every
# form and with unusual names. Their members have the sizes and places, and their enumerators the values, of C++.
# A changed layout, an older C, and C++ are refused with one error that says why.
#   run_c_headers.sh C_COMPILER CXX_COMPILER QUORVAXDRC SOURCE_DIR API_INCLUDE_DIR
set -eu
c=$1 source=$4 api=$5
cxx=$2 quorvaxdrc=$3
made=$(mktemp -d)
trap 'rm -rf "$made"' EXIT
fail() { echo "$@"; exit 1; }

golden=$source/tests/golden
# corners.x has a member named like a keyword of C, and an array that its own elements contain.
"$quorvaxdrc" generate --c --out "$made" -I "$golden" \
    $(find "$golden" -name '*.x' ! -name corners.x ! -path '*/expected/*')
"$quorvaxdrc" generate --c --out "$made" -I "$source/tests/compiler" "$source/tests/compiler/free_names.x"

compile() { # HEADER OPTION...
    header=$1
    shift
    echo "#include <$header>" | "$@" -fsyntax-only -I"$source/include" -I"$api" -I"$made/include" -
}
headers=$(cd "$api" && find quorvapixdr/c -name '*.h'; cd "$made/include" && find quorvapixdr/c -name '*.h')
[ "$(echo "$headers" | wc -l)" -gt 100 ] || fail "the headers are not found"
for header in $headers quorvapixdr/drivers.h quorvapixdr/c_codec.h; do
    compile "$header" "$c" -x c -std=c11 -Wall -Wextra -Wpedantic -Wconversion -Werror || fail "$header"
done

# The members, enumerations and enumerators of all these headers, found by their lines, as calls of macros.
find "$api/quorvapixdr/c" "$made/include/quorvapixdr/c" -name '*.h' -exec cat {} + | awk '
    { sub(/ *\/\/.*/, ""); last = $NF; sub(/(\[[0-9]+\])?;$/, "", last); sub(/^\*/, "", last) }
    /^struct / { type = $2; next }
    /^typedef int32_t / { type = last; print "E(" type ")"; next }
    /^}/ { type = "" }
    /^    / && / = / && type { print "V(" type ", " substr($1, length(type) + 2) ")"; next }
    /^    .*;$/ && !/^ *};$/ && type { print "M(" type ", " last ")" }' >"$made/facts"
cat >"$made/facts.c" <<'TXT'
#include <inttypes.h>
#include <stdio.h>
#ifdef __cplusplus
#define VALUE(T, name) T::name
#else
#define VALUE(T, name) T##_##name
#endif
#define M(T, name) printf("%s.%s %zu %zu %zu\n", #T, #name, sizeof(T), offsetof(T, name), sizeof(((T*)0)->name));
#define E(T) printf("%s %zu %" PRId64 "\n", #T, sizeof(T), (int64_t)(T)-1);
#define V(T, name) printf("%s %" PRId64 "\n", #name, (int64_t)VALUE(T, name));
int main(void)
{
#include "facts"
    return 0;
}
TXT
echo "$headers" | sed 's/.*/#include <&>/' >"$made/c.h"
sed 's|/c/|/types/|' "$made/c.h" >"$made/cxx.h"
folders="-I$source/include -I$api -I$made/include"
"$c" -x c -std=c11 $folders -include "$made/c.h" -o "$made/of_c" "$made/facts.c"
"$cxx" -x c++ -std=c++20 -w $folders -include "$made/cxx.h" -o "$made/of_cxx" "$made/facts.c"
"$made/of_c" >"$made/of_c.txt"
"$made/of_cxx" | diff "$made/of_c.txt" - >"$made/said" || { head "$made/said"; fail "C++ (>) and C (<) differ"; }
for kind in M E V; do
    [ "$(grep -c "^$kind" "$made/facts")" -gt 400 ] || fail "members, enumerations or enumerators are not found"
done

refuses() { # TEXT COMPILER OPTION...
    text=$1
    shift
    compile quorvapixdr/c/locker.h "$@" 2>"$made/said" && fail "accepted: $*"
    [ "$(grep -c 'error: ' "$made/said")" = "$errors" ] && grep -qF "$text" "$made/said" ||
        { cat "$made/said"; fail "not said: $text"; }
}
errors=1
refuses 'C++ includes <quorvapixdr/types/locker.h>' "$cxx" -x c++ -std=c++20
refuses 'compile with -std=c11' "$c" -x c -std=c99
errors=$(grep -c '^_Static_assert' "$made/include/quorvapixdr/c/locker.h")
refuses 'not the layout of the library' "$c" -x c -std=c11 -fpack-struct=1

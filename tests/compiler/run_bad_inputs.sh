#!/bin/sh
# Runs the compiler, given as the only argument, over each faulty file, and compares what it says with the .err beside
# it; then over good files that look faulty, and over inputs that are too long to be kept.
case $1 in /*) compiler=$1 ;; *) compiler=$PWD/$1 ;; esac
cd "$(dirname "$0")/bad" || exit 2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
failures=0

expect() {  # STATUS WORDS FILE
    said=$("$compiler" check -I parts "$3" 2>&1)
    status=$?
    [ $status -eq "$1" ] && [ "$said" = "$(cat "$2")" ] && return
    echo "$3: status $status instead of $1; '<' was expected, '>' was said"
    printf '%s\n' "$said" | diff "$2" -
    failures=$((failures + 1))
}

# An input that is too long to be kept, printed by an awk program: the compiler finds so many errors in it within 20
# seconds and 1 MiB of stack, and says WORDS.
expect_of() {  # ERRORS WORDS PROGRAM
    awk "BEGIN { $3 }" >"$folder/long.x"
    said=$(ulimit -s 1024 && timeout 20 "$compiler" check -I "$folder" "$folder/long.x" 2>&1)
    status=$?
    errors=$(printf '%s\n' "$said" | grep -c ': error: ')
    case $status:$errors:$said in
    "$(($1 > 0)):$1:"*"$2"*) return ;;
    esac
    echo "status $status and $errors errors instead of $1 with '$2' for $3: $(printf '%s' "$said" | head -1)"
    failures=$((failures + 1))
}

for file in *.x; do expect 1 "${file%.x}.err" "$file"; done
expect 0 /dev/null ../foreign.x
expect 0 /dev/null ../free_names.x

# Types in types: 256 can nest by value, any number through lists and optional values.
start='print "typedef LongNatural T0;"; n = 100000;'
types='for (i = 1; i <= n; ++i) printf'
expect_of 1 "struct 'T256' nests 257 types" "$start $types \"struct T%d { T%d a[1]; };\\n\", i, i - 1"
expect_of 1 "type 'T256' nests 257 types" "$start $types \"typedef T%d T%d;\\n\", i - 1, i"
expect_of 1 "type 'T256' nests 257 types" "$start $types \"typedef T%d *T%d;\\n\", i - 1, i"
expect_of 1 "'T1' contains itself" "n = 100000; $types \"struct T%d { T%d a; };\\n\", i, i % n + 1"
expect_of 0 '' "$start $types \"struct T%d { T%d *a; };\\n\", i, i - 1"
expect_of 0 '' "$start $types \"typedef T%d T%d<>;\\n\", i - 1, i"
expect_of 0 '' "$start n = 254; $types \"typedef T%d T%d;\\n\", i - 1, i;
    print \"union U switch (T254 a) { case 1: void; };\""
expect_of 1 'nests 257 types' "$start n = 300; $types \"typedef T%d T%d;\\n\", i - 1, i;
    print \"union U switch (T300 a) { case 1: void; };\""
expect_of 1 "union 'T15' has 98301 members" "$start n = 255;
    $types \"union T%d switch (bool a) { case 0: T%d b; case 1: T%d c; };\\n\", i, i - 1, i - 1"

# Many enumerators and cases, and the end of the list of errors.
enumerators='for (i = 0; i < 100000; ++i) printf'
cases='print "union U switch (E a) {"; for (i = 0; i < 100000; ++i) printf'
expect_of 0 '' "print \"enum E { a = 100000\"; $enumerators \", E%d = %d\", i, i; print \"};\";
    $cases \"case %d: void;\\n\", i; print \"};\""
expect_of 100 'only 100 are shown' "print \"enum E { a = 0 }; enum F { b = 0\";
    $enumerators \", a = %d\", i; print \"};\";
    $cases \"case a: void;\\n\"; print \"};\""
expect_of 100 'only 100 are shown' 'for (i = 0; i < 101; ++i) print "@"'
expect_of 100 'only 100 are shown' 'for (i = 0; i < 101; ++i) printf "struct T%d { Panel panel; };\n", i'
echo "$failures files differ"
[ $failures -eq 0 ]

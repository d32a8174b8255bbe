#!/bin/sh
# Installs the build tree into a temporary folder, checks its components, moves the folder and then uses it alone: the
# README's lines for CMake, pkg-config, C and Python, the examples that are projects, the inspector and its library.
#   run.sh BUILD_DIR SOURCE_DIR COMPILER [SANITIZERS]
set -eu
build=$1 source=$2 compiler=$(command -v "$3") sanitize=${4:+-fsanitize=$4}
here=$source/tests/install
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset PKG_CONFIG_PATH CMAKE_PREFIX_PATH

fail() { echo "$@"; exit 1; }
quietly() { "$@" >"$work/log" 2>&1 || { cat "$work/log"; fail "failed: $*"; }; }
build_with() { # GENERATOR FOLDER BUILD_FOLDER: from scratch, several files at a time
    quietly cmake -S "$2" -B "$3" -G "$1" -DCMAKE_PREFIX_PATH="$work/moved" -DCMAKE_CXX_COMPILER="$compiler" \
        -DCMAKE_CXX_FLAGS="-Wall -Wextra -Wpedantic -Wconversion -Werror $sanitize" \
        -DCMAKE_C_FLAGS="-Wall -Wextra -Wpedantic -Wconversion -Werror"
    quietly cmake --build "$3" -j 4
}
prints() { # EXPECTED_FILE COMMAND...
    expected=$1
    shift
    "$@" >"$work/printed"
    diff "$expected" "$work/printed"
}

# ---- Each file belongs to one component ------------------------------------------------------------------------------
quietly cmake --install "$build" --prefix "$work/prefix"
for component in library platform inspector development documentation; do
    quietly cmake --install "$build" --prefix "$work/$component" --component $component
    (cd "$work/$component" && find * ! -type d | LC_ALL=C sort | sed "s/^/$component /")
done >"$work/components"
(cd "$work/prefix" && find * ! -type d | LC_ALL=C sort) >"$work/whole"
sed 's/^[a-z]* //' "$work/components" | LC_ALL=C sort | diff "$work/whole" - ||
    fail "the components (>) differ from the whole installation (<)"
sed -E 's/\.so\.0\..*/.so.VERSION/; s/(Targets-).*/\1*.cmake/; s|/(c\|docs\|examples\|samples\|types)/.*|/\1/*|' \
    "$work/components" | uniq | diff "$here/components.txt" - || fail "the components have other files now"

# ---- No file names the folder of the build or the prefix -------------------------------------------------------------
# Debug information does. Sanitizers put names of source files into the code.
if [ -z "$sanitize" ]; then
    for file in "$work"/prefix/bin/* "$work"/prefix/lib/*.so "$work"/prefix/lib/*.a; do
        strip --strip-debug -o "$work/stripped" "$file"
        ! grep -qF -e "$build" -e "$source" -e "$work" "$work/stripped" || fail "$file names a folder of the build"
    done
fi
prefix=$(sed -n 's/^CMAKE_INSTALL_PREFIX:PATH=//p' "$build/CMakeCache.txt")
! grep -rIF -e "$build" -e "$source" -e "$work" "$work/prefix" || fail "these files name a folder of the build"
! grep -rF "$prefix" "$work/prefix/lib/cmake" "$work/prefix/lib/pkgconfig" || fail "these files name the prefix"

mv "$work/prefix" "$work/moved"
PREFIX=$work/moved

# ---- The README's lines ----------------------------------------------------------------------------------------------
readme() { # LANGUAGE N: the lines of the Nth block of that language in the section "Install"
    awk -v fence="\`\`\`$1" -v wanted="$2" '
        /^## / { section = $0 }
        section != "## Install" { next }
        on && $0 == "```" { on = 0 }
        on && count == wanted
        $0 == fence { on = 1; ++count }
    ' "$source/README.md" >"$work/lines"
    [ -s "$work/lines" ] || fail "README.md has no block $2 of $1 in its section Install"
    cat "$work/lines"
}
# The program of the README, and what the README says that it prints.
mkdir "$work/readme"
cp "$source/examples/encode_decode.cc" "$work/readme/main.cc"
sed '1,/^\$ encode_decode$/d; /^```$/,$d' "$source/README.md" >"$work/expected"
{ printf 'cmake_minimum_required(VERSION 3.20)\nproject(readme CXX)\n'; readme cmake 1; } >"$work/readme/CMakeLists.txt"
build_with Ninja "$work/readme" "$work/readme/build"
prints "$work/expected" "$work/readme/build/main"

# The compiler that the build has, under the name that the README calls.
mkdir "$work/bin"
printf '#!/bin/sh\nexec "%s" %s "$@"\n' "$compiler" "$sanitize" >"$work/bin/g++"
chmod +x "$work/bin/g++"
# The sanitizers of a library that is C++ come with the C++ compiler, which then compiles the README's C, too.
mkdir "$work/c"
if [ -n "$sanitize" ]; then
    printf '#!/bin/sh\nexec g++ -x c -std=c11 "$@"\n' >"$work/c/cc"
    chmod +x "$work/c/cc"
fi
PATH=$work/bin:$work/moved/bin:$PATH
export PATH PREFIX
readme sh 1 >"$work/readme/run"
(cd "$work/readme" && prints "$work/expected" sh -eu ./run)

cp "$source/examples/from_c.c" "$work/readme/main.c"
sed '1,/^\/\/ Prints:$/d; s|^// ||' "$source/examples/from_c.c" >"$work/from_c"
{ echo 'PKG_CONFIG_PATH=$PREFIX/lib/pkgconfig; export PKG_CONFIG_PATH'; readme sh 2; } >"$work/readme/run"
(cd "$work/readme" && PATH=$work/c:$PATH && prints "$work/from_c" sh -eu ./run)

PKG_CONFIG_PATH=$work/moved/lib/pkgconfig
export PKG_CONFIG_PATH
readme sh 3 >"$work/readme/run"
(cd "$work/readme" && quietly sh -eu ./run)
head -n 2 "$work/expected" | tr '\n' ' ' | sed 's/ $//' >"$work/bytes"
(cd "$work/readme" && python3 -c 'from quorvapixdr import NotifyBinding
print(NotifyBinding("fleet.example", 0x20000321, 1, 7).encode().hex(" "), end="")') | diff "$work/bytes" -

# ---- The examples that are projects ----------------------------------------------------------------------------------
cat >"$work/expected" <<'TXT'
68 bytes: door 4 "left, top" is SDSclosed, job 1207
cannot encode StationReport at /doors, byte 32 of 1024: count 7 is beyond the maximum 6
TXT
cp -r "$work/moved/share/doc/quorvapixdr/examples/own_module" "$work/own"
build_with Ninja "$work/own" "$work/own/build"
prints "$work/expected" "$work/own/build/own_module"
quietly make -C "$work/own" -j 4 CXX="$compiler" CXXFLAGS="-Wall -Wextra -Werror $sanitize"
prints "$work/expected" "$work/own/own_module"
build_with Ninja "$work/moved/share/doc/quorvapixdr/examples/rpc" "$work/rpc"

# ---- Targets of several folders; the inspector's library -------------------------------------------------------------
sed '1,/^\/\/ Prints:$/d; s|^// ||' "$source/examples/json.cc" >"$work/json"
tr -d '\n' >"$work/own_json" <<'TXT'
{"service":77,
"client":{"hostName":"desk.example","programNumber":1,"versionNumber":2,"notifyProcedureNumber":9},
"doors":[{"number":4,"state":"SDSclosed","job":{"service":4,"job":1207},"label":"left"}]}
TXT
cat >>"$work/own_json" <<'TXT'

1:35: /client: the field "hostName" of NotifyBinding is missing
TXT
cat >"$work/own_c" <<'TXT'
32 bytes: SDSclosed
byte 0: count 7 is beyond the maximum 6
TXT
for generator in Ninja "Unix Makefiles"; do
    folders="$work/folders $generator"
    build_with "$generator" "$here/folders" "$folders"
    prints "$work/expected" "$folders/own_module"
    prints "$work/json" "$folders/program/json"
    prints "$work/own_json" "$folders/program/own_json"
    prints "$work/own_c" "$folders/program/own_c"
    # The interface files are compiled again when one that they import changes, and only then.
    cmake --build "$folders" >"$work/log"
    ! grep 'Compiling the interface' "$work/log" || fail "$generator: nothing has changed since the first build"
    touch "$work/moved/share/quorvapixdr/types/common/event.x"
    cmake --build "$folders" >"$work/log"
    grep -q 'Compiling the interface files of own' "$work/log" || fail "$generator: an import has changed"
done

# ---- pkg-config: a program without a run path, as where the libraries are the system's ------------------------------
pkg-config --validate quorvapixdr quorvapixdr-c quorvapixdr-inspect
g++ -o "$work/json_program" "$source/examples/json.cc" $(pkg-config --cflags --libs quorvapixdr-inspect)
LD_LIBRARY_PATH=$(pkg-config --variable=libdir quorvapixdr) prints "$work/json" "$work/json_program"
[ -e "$(pkg-config --variable=rpc quorvapixdr)/onc_rpc.x" ] || fail "quorvapixdr.pc: there is no rpc/onc_rpc.x"

# ---- Wrong calls end with an error that says why ---------------------------------------------------------------------
mkdir -p "$work/wrong/types"
touch "$work/wrong/types/own.x"
grep -v '^#' "$here/wrong_calls.txt" | while read -r call && read -r expected; do
    cat >"$work/wrong/CMakeLists.txt" <<TXT
cmake_minimum_required(VERSION 3.20)
project(wrong LANGUAGES NONE)
find_package(quorvapixdr REQUIRED)
add_library(own OBJECT types/own.x)
add_library(headers INTERFACE)
$call
TXT
    rm -rf "$work/wrong/build"
    ! cmake -S "$work/wrong" -B "$work/wrong/build" -DCMAKE_PREFIX_PATH="$work/moved" >"$work/log" 2>&1 ||
        fail "no error: $call"
    tr -s '\n ' ' ' <"$work/log" | grep -qF -e "$expected" || { cat "$work/log"; fail "not said: $expected"; }
done

# ---- The inspector, with a module of one's own, too ------------------------------------------------------------------
own="--interface $source/examples/own_module/types/station/locker.x"
quorvaxdr --version | grep -q '^quorvaxdr [0-9]'
echo '{"number":4,"state":"SDSclosed","job":{"service":1,"job":1207},"label":"left"}' >"$work/door"
quorvaxdr encode StationDoor "$work/door" --to raw $own >"$work/message"
quorvaxdr decode StationDoor "$work/message" --from raw --to json $own | tr -d ' \n' >"$work/printed"
tr -d '\n' <"$work/door" | diff - "$work/printed"

# ---- Its library exports the functions of its headers, and no others -------------------------------------------------
[ -n "$sanitize" ] && exit
cat >"$work/expected" <<'TXT'
quorva::JsonError::Entry::text
quorva::JsonError::JsonError
quorva::JsonError::remainder
quorva::JsonError::~JsonError
quorva::addModules
quorva::builtinTypes
quorva::fromJson
quorva::modules
quorva::removeModules
quorva::toJson
TXT
nm -DC --defined-only "$work/moved/lib/libquorvainspect.so.0" |
    sed -n 's/\[abi:cxx11\]//; s/^[0-9a-f]* T \([^(]*\).*/\1/p' | LC_ALL=C sort -u | diff "$work/expected" -

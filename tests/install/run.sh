#!/bin/sh
# Installs the build tree into a temporary folder, first the codec, then the inspector, and builds programs against that
# folder alone. Moves the folder before it runs the inspector.
#   run.sh BUILD_DIR SOURCE_DIR COMPILER [SANITIZERS]
set -eu
build=$1 source=$2 compiler=$3 sanitize=${4:+-fsanitize=$4}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

quietly() { "$@" >"$work/log" 2>&1 || { cat "$work/log"; echo "failed: $*"; exit 1; }; }
configure() { # FOLDER BUILD_FOLDER PREFIX
    quietly cmake -S "$1" -B "$2" -G Ninja -DCMAKE_PREFIX_PATH="$3" -DCMAKE_CXX_COMPILER="$compiler" \
        -DCMAKE_CXX_FLAGS="-Wall -Wextra -Wpedantic -Wconversion -Werror $sanitize"
    quietly cmake --build "$2"
}

# The codec without the inspector.
quietly cmake --install "$build" --prefix "$work/prefix" --component Unspecified
if find "$work/prefix" | grep -e 'bin/quorvaxdr$' -e libquorvainspect -e 'quorvapixdr/json.h'; then
    echo "files of the inspector are installed with the codec"
    exit 1
fi
configure "$source/examples/own_module" "$work/own" "$work/prefix"
configure "$source/examples/rpc" "$work/rpc" "$work/prefix"
cat >"$work/expected" <<'TXT'
68 bytes: door 4 "left, top" is SDSclosed, job 1207
cannot encode StationReport at /doors, byte 32 of 1024: count 7 is beyond the maximum 6
TXT
"$work/own/own_module" >"$work/printed"
diff "$work/expected" "$work/printed"

# The inspector, for a module of one's own, too.
quietly cmake --install "$build" --prefix "$work/prefix" --component inspector
mv "$work/prefix" "$work/moved"
quorvaxdr="$work/moved/bin/quorvaxdr" own="--interface $source/examples/own_module/types/station/locker.x"
"$quorvaxdr" --version | grep -q '^quorvaxdr [0-9]'
echo '{"number":4,"state":"SDSclosed","job":{"service":1,"job":1207},"label":"left"}' >"$work/door"
"$quorvaxdr" encode StationDoor "$work/door" --to raw $own >"$work/message"
"$quorvaxdr" decode StationDoor "$work/message" --from raw --to json $own | tr -d ' \n' >"$work/printed"
tr -d '\n' <"$work/door" | diff - "$work/printed"

# The inspector's library.
mkdir "$work/json"
cat >"$work/json/CMakeLists.txt" <<TXT
cmake_minimum_required(VERSION 3.25)
project(json LANGUAGES CXX)
find_package(quorvapixdr REQUIRED COMPONENTS inspect)
add_executable(json "$source/examples/json.cc")
target_link_libraries(json PRIVATE quorvapixdr::inspect)
add_executable(own_json "$source/tests/install/own_json.cc")
quorvapixdr_generate(station ROOT "$source/examples/own_module/types" TARGET own_json IMPORTS "\${QUORVAPIXDR_TYPES}"
    FILES "$source/examples/own_module/types/station/locker.x")
target_link_libraries(own_json PRIVATE quorvapixdr::inspect)
TXT
configure "$work/json" "$work/json/build" "$work/moved"
sed '1,/^\/\/ Prints:$/d; s|^// ||' "$source/examples/json.cc" >"$work/expected"
"$work/json/build/json" >"$work/printed"
diff "$work/expected" "$work/printed"
tr -d '\n' >"$work/expected" <<'TXT'
{"service":77,
"client":{"hostName":"desk.example","programNumber":1,"versionNumber":2,"notifyProcedureNumber":9},
"doors":[{"number":4,"state":"SDSclosed","job":{"service":4,"job":1207},"label":"left"}]}
TXT
cat >>"$work/expected" <<'TXT'

1:35: /client: the field "hostName" of NotifyBinding is missing
TXT
"$work/json/build/own_json" >"$work/printed"
diff "$work/expected" "$work/printed"

# It exports the functions of its headers, and no others.
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
library=$(find "$work/moved" -name libquorvainspect.so.0)
nm -DC --defined-only "$library" | sed -n 's/\[abi:cxx11\]//; s/^[0-9a-f]* T \([^(]*\).*/\1/p' | LC_ALL=C sort -u |
    diff "$work/expected" -

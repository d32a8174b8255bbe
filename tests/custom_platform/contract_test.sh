#!/usr/bin/env bash
# A platform class that lacks an operation gets one error, which names the operation: contract_test.sh CXX SOURCE_DIR
set -u
cxx=$1
source=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
failures=0

lacking() {  # SED-COMMAND EXPECTED: changes Xdr.h, and expects one error that contains EXPECTED
    sed -e "$1" "$source/tests/custom_platform/platform/Xdr.h" >"$folder/Xdr.h"
    if cmp -s "$folder/Xdr.h" "$source/tests/custom_platform/platform/Xdr.h"; then
        echo "no change by $1"
        failures=$((failures + 1))
        return
    fi
    "$cxx" -std=c++20 -fsyntax-only -I "$folder" "$source/runtime/contract.cc" >"$folder/log" 2>&1
    errors=$(grep -c 'error:' "$folder/log")
    if [ "$errors" -ne 1 ] || ! grep 'error:' "$folder/log" | grep -qF "$2"; then
        echo "without \"$1\": expected one error with \"$2\", got $errors:"
        cat "$folder/log"
        failures=$((failures + 1))
    fi
}

for operation in Program Transfer TransferWithoutSwap addOpenTag addCloseTag addString addString2 addString3 \
    addHexDump addTab delTab addLine setLineFeed; do
    lacking "/ $operation(/d" " $operation("
done
lacking '/void\* rootAllocationSlot/d' 'rootAllocationSlot'
lacking '/unsigned short codedLength/d' 'codedLength'
lacking 's/unsigned short codedLength/unsigned codedLength/' 'codedLength'
lacking '/Request streamMode/d' 'streamMode'
lacking 's/Request streamMode/long long streamMode/' 'streamMode'
lacking 's/bool Transfer(/void Transfer(/' ' Transfer('
lacking 's/^    Xdr();/    explicit Xdr(int);/' 'Xdr()'
lacking 's/^    ~Xdr();/    ~Xdr() = delete;/' '~Xdr()'

[ "$failures" -eq 0 ]

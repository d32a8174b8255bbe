#!/bin/sh
# Copies the sources to two folders whose names differ in length, builds and installs both as packages do, and compares
# every installed file byte by byte. A compiler cache would copy the files of the first build.
set -eu
source=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
CCACHE_DISABLE=1
export CCACHE_DISABLE

for folder in one a_second_longer_one; do
    mkdir "$work/$folder"
    (cd "$source" && git ls-files -z --cached | tar --create --null --files-from=-) | tar --extract -C "$work/$folder"
    (cd "$work/$folder" &&
        { cmake --preset release -DQUORVA_INSPECTOR=ON -DCMAKE_INSTALL_PREFIX=/usr && cmake --build --preset release &&
            DESTDIR="$work/$folder.installed" cmake --install build-release; } >"$work/log" 2>&1) ||
        { tail -n 30 "$work/log"; exit 1; }
done
diff -r "$work/one.installed" "$work/a_second_longer_one.installed"
echo "$(find "$work/one.installed" -type f | wc -l) files are the same in both builds"

#!/usr/bin/env bash
# Installs the packages of a folder in a Debian system without anything else of this project: over an older version, and
# each alone. After a removal nothing is left. Then runs debian/tests there. Needs root, or sudo.
#   run.sh PACKAGES_DIR [SYSTEM_DIR]    SYSTEM_DIR: an existing system, which is changed; otherwise a new one is made
set -euo pipefail
[ "$(id -u)" -eq 0 ] || exec sudo "$0" "$@"
packages=$(realpath "$1")
work=$(mktemp -d)
trap 'umount "$work/system/proc" 2>/dev/null || true; rm -rf --one-file-system "$work"' EXIT

fail() { printf 'tests/packages: %s\n' "$*" >&2; exit 1; }
quietly() { "$@" >"$work/log" 2>&1 || { tail -n 40 "$work/log" >&2; fail "failed: $*"; }; }
inside() {
    chroot "$work/system" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"
}
apt() { quietly inside apt-get -y -q --no-install-recommends "$@"; }

# ---- A Debian system, and an archive with these packages and the same with a lower version ---------------------------
mkdir "$work/system"
if [ -n "${2:-}" ]; then
    cp -a "$2/." "$work/system"
else
    quietly mmdebstrap --variant=apt bookworm "$work/system"
fi
mount -t proc proc "$work/system/proc"
names=()
mkdir "$work/system/new" "$work/system/old"
for package in "$packages"/*.deb; do
    case $package in *-dbgsym_*) continue ;; esac
    name=$(dpkg-deb --field "$package" Package) version=$(dpkg-deb --field "$package" Version)
    names+=("$name")
    cp "$package" "$work/system/new"
    dpkg-deb --raw-extract "$package" "$work/extracted"
    sed -i "s/^Version: .*/Version: $version~old/; s/(= $version)/(= $version~old)/g" "$work/extracted/DEBIAN/control"
    quietly dpkg-deb --root-owner-group -Zgzip -z1 --build "$work/extracted" "$work/system/old/$name.deb"
    rm -r "$work/extracted"
done
[ ${#names[@]} -gt 0 ] || fail "no packages in $packages"
archive() {  # FOLDER: the packages that apt knows, beside Debian's
    (cd "$work/system/$1" && dpkg-scanpackages . >Packages) 2>"$work/log" || { cat "$work/log"; exit 1; }
    echo "deb [trusted=yes] file:/$1 ./" >"$work/system/etc/apt/sources.list.d/quorvapixdr.list"
    apt update
}
installed() {  # the names and versions of this project's packages
    inside dpkg-query -W -f '${Package} ${Version} ${db:Status-Status}\n' | awk -v names=" ${names[*]} " \
        'index(names, " " $1 " ")'
}
state() {  # all files and what links lead to, but for the notes that apt and dpkg keep
    (cd "$work/system" && find . -xdev \( -path ./proc -o -path ./tmp -o -path ./new -o -path ./old \
        -o -path ./var/cache -o -path ./var/log -o -path ./var/lib/apt -o -path './var/lib/dpkg/*-old' \) -prune \
        -o -printf '%p %y %l\n' | LC_ALL=C sort)
}
removed() {
    apt purge --autoremove "${names[@]}"
    state | diff "$work/before" - || fail "this differs after the removal of $1"
}

# ---- Over the older version ------------------------------------------------------------------------------------------
archive old
state >"$work/before"
apt install "${names[@]}"
[ "$(installed | grep -c "~old installed$")" -eq ${#names[@]} ] || fail "the older version: $(installed)"
archive new
apt upgrade
printf "%s $version installed\n" "${names[@]}" | LC_ALL=C sort | diff - <(installed) || fail "the upgrade left others"
removed "an upgrade"

# ---- Each alone, with what it depends on -----------------------------------------------------------------------------
for name in "${names[@]}"; do
    apt install "$name"
    case $name in
    lib*[0-9])
        library=$(inside dpkg -L "$name" | grep '\.so\.0$')
        inside ldd -r "$library" >"$work/log"
        ! grep -E 'not found|undefined' "$work/log" || fail "$name lacks a library" ;;
    *-dev) quietly inside quorvaxdrc --version ;;
    quorvaxdr) quietly inside quorvaxdr sample JobId ;;
    python3-*) quietly inside python3 -c 'from quorvapixdr import JobId; JobId(1, 2).encode()' ;;
    *-doc) [ -s "$work/system/usr/share/doc/quorvapixdr/html/index.html" ] || fail "$name has no pages" ;;
    esac
    removed "$name"
done
printf 'installed, upgraded and removed: %s\n' "${names[*]}"

# ---- The tests of the packages ---------------------------------------------------------------------------------------
rm "$work/system/etc/apt/sources.list.d/quorvapixdr.list"
status=0
# A compiler cache that the caller's environment names is not in that system.
unset CMAKE_C_COMPILER_LAUNCHER CMAKE_CXX_COMPILER_LAUNCHER
autopkgtest --no-built-binaries --apt-upgrade "$packages"/*.deb "$packages"/*.dsc -- chroot "$work/system" \
    >"$packages/autopkgtest.log" 2>&1 || status=$?
sed -n '/@@@@ summary/,$p' "$packages/autopkgtest.log"
[ $status -eq 0 ] || { tail -n 60 "$packages/autopkgtest.log" >&2; fail "autopkgtest: $packages/autopkgtest.log"; }

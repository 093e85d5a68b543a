#!/usr/bin/env bash
# Installs a build into a temporary prefix and checks what lands there: the programs, the
# desktop entry and icons, the examples and the guide, the copyright file and changelog, and
# manual pages that render without warnings, carry the project's version and name every
# option of their program's --help.
#   check_install.sh BUILD_DIR SOURCE_DIR VERSION
set -euo pipefail
build=$1 source=$2 version=$3

prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$build" --prefix "$prefix" >/dev/null

failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

for program in larkspur larkspur-run larkspur-pbxsim larkspur-tap; do
    [ -x "$prefix/bin/$program" ] || fail "bin/$program is missing or not executable"
done
for file in share/applications/larkspur.desktop \
            share/icons/hicolor/scalable/apps/larkspur.svg \
            share/icons/hicolor/64x64/apps/larkspur.png \
            share/doc/larkspur/guide.md \
            share/doc/larkspur/examples/hotel.txt share/doc/larkspur/examples/vmail.txt; do
    [ -s "$prefix/$file" ] || fail "$file is missing or empty"
done
for example in hotel.txt vmail.txt; do
    cmp -s "$source/examples/$example" "$prefix/share/doc/larkspur/examples/$example" ||
        fail "examples/$example is not installed byte for byte"
done
# Every picture the guide shows is installed beside it.
if [ -s "$prefix/share/doc/larkspur/guide.md" ]; then
    for image in $(grep -o '(images/[^)]*)' "$prefix/share/doc/larkspur/guide.md" | tr -d '()'); do
        [ -s "$prefix/share/doc/larkspur/$image" ] || fail "the guide's $image is not installed"
    done
fi
file -b "$prefix/share/icons/hicolor/64x64/apps/larkspur.png" | grep -q '64 x 64' ||
    fail "the PNG icon is not 64x64"

# The licence notice, and a release history whose latest entry is this version.
grep -q '^License: Apache-2.0$' "$prefix/share/doc/larkspur/copyright" 2>/dev/null ||
    fail "share/doc/larkspur/copyright is missing or names no Apache-2.0 licence"
changelog="$prefix/share/doc/larkspur/changelog.gz"
if [ -s "$changelog" ]; then
    zcat "$changelog" | head -1 | grep -q "^larkspur ($version) " ||
        fail "changelog.gz does not begin with an entry for $version"
else
    fail "share/doc/larkspur/changelog.gz is missing"
fi

for page in larkspur larkspur-run larkspur-pbxsim larkspur-tap; do
    gz="$prefix/share/man/man1/$page.1.gz"
    if [ ! -s "$gz" ]; then
        fail "share/man/man1/$page.1.gz is missing"
        continue
    fi
    warnings=$(zcat "$gz" | groff -man -ww -z -Tutf8 2>&1) || fail "$page.1 does not render"
    [ -z "$warnings" ] || fail "$page.1 renders with warnings: $warnings"
    zcat "$gz" | grep -q "^\.TH .*\"Larkspur $version\"" ||
        fail "$page.1 does not carry the version $version"
done

# Each option of a program's usage is described in its manual page.
for program in larkspur-run larkspur-pbxsim larkspur-tap; do
    gz="$prefix/share/man/man1/$program.1.gz"
    [ -s "$gz" ] || continue
    usage=$("$prefix/bin/$program" --help) || fail "$program --help exits with $?"
    text=$(zcat "$gz" | groff -man -Tascii -P-cbou 2>/dev/null)
    for option in $(grep -o -- '--[a-z-]*' <<<"$usage" | sort -u); do
        grep -q -- "^ *$option\b" <<<"$text" || fail "$program.1 does not describe $option"
    done
done

if [ "$failures" -ne 0 ]; then
    echo "$failures failure(s)"
    exit 1
fi
echo "install tree, manual pages, copyright and changelog are complete"

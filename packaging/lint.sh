#!/usr/bin/env bash
# Runs the checkers a Debian packager runs and fails, with their report, when any finds something.
#   lint.sh man PAGE...      mandoc at warning level on each manual page
#   lint.sh desktop ENTRY    desktop-file-validate on the desktop entry
#   lint.sh deb PACKAGE      lintian on the .deb, failing on any error or warning
set -euo pipefail

need() {
    command -v "$1" >/dev/null ||
        { echo "lint.sh: $1 is not installed (scripts/setup installs it)" >&2; exit 2; }
}

kind=${1:?"usage: lint.sh man|desktop|deb FILE..."}
shift
[ $# -gt 0 ] || { echo "lint.sh $kind: no file given" >&2; exit 2; }

# Runs a checker on FILE; anything it prints, or a failing exit, counts as a finding.
failures=0
check() {
    local file=$1 out status=0
    shift
    out=$("$@" "$file" 2>&1) || status=$?
    if [ -n "$out" ] || [ "$status" -ne 0 ]; then
        echo "$file ($1, exit $status):"
        echo "$out"
        failures=$((failures + 1))
    fi
}

case $kind in
man)
    need mandoc
    for page in "$@"; do
        check "$page" mandoc -T lint -W warning
    done
    ;;
desktop)
    need desktop-file-validate
    for entry in "$@"; do
        check "$entry" desktop-file-validate
    done
    ;;
deb)
    need lintian
    # Every tag at warning level or above, none left out. Run as root (as in a container),
    # lintian also says it would rather not be; that is no finding about the package.
    lintian_deb() {
        lintian --fail-on error,warning --tag-display-limit 0 "$1" 2>&1 |
            grep -v '^running with root privileges is not recommended!$'
        return "${PIPESTATUS[0]}"
    }
    for deb in "$@"; do
        check "$deb" lintian_deb
    done
    ;;
*)
    echo "lint.sh: unknown kind '$kind' (man, desktop or deb)" >&2
    exit 2
    ;;
esac

[ "$failures" -eq 0 ] || exit 1

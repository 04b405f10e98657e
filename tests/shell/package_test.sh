#!/usr/bin/env bash
# Makes the Debian packages, unpacks them and works with what is in them; checks what the desktop
# reads of them.
#   package_test.sh BUILD SOURCES
set -u
build=$1 sources=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset DISPLAY VESK_HOME
export HOME=$work LANG=C.UTF-8
failures=0

check() { # WHAT COMMAND...
    local what=$1
    shift
    if "$@" >"$work/log" 2>&1; then
        echo "ok   $what"
    else
        echo "FAIL $what"
        cat "$work/log"
        failures=$((failures + 1))
    fi
}
holds() { grep -qF -- "$2" "$work/$1"; } # FILE TEXT

check "the packages are made" cpack --config "$build/CPackConfig.cmake" -G DEB -B "$work/packages"
for package in "$work"/packages/*.deb; do
    check "$(basename "$package") unpacks" dpkg-deb -x "$package" "$work/root"
    dpkg-deb -f "$package" Package Depends >>"$work/control"
done
check "both are there" holds control "Package: vesk-dev"
check "the toolkit's libraries are asked for" holds control "libtk8.6"
# A user's file would be overwritten, or kept for ever, if something lay outside.
find "$work/root" -mindepth 1 -not -path "$work/root/usr*" >"$work/strays"
check "all lies under /usr" test ! -s "$work/strays"

cat >"$work/use.tcl" <<'END'
vesk create box 0 0 0 0 1 1 1
vesk file_save [lindex $argv 0]
END
vesk=$work/root/usr/bin/vesk
check "the program works from there" "$vesk" -batch "$work/use.tcl" "$work/box.vesk"
check "and saves" holds box.vesk "OBJECT poly"
check "its settings go where the user's lie" test -d "$work/.config/vesk"
strings "$work/root/usr/lib/vesk/vesk" | grep -F "$sources/" >"$work/paths"
check "it names no path of the machine that built it" test ! -s "$work/paths"

share=$work/root/usr/share
check "the desktop entry is valid" desktop-file-validate "$share/applications/vesk.desktop"
check "the description for software centres is valid" appstreamcli validate --no-net \
    "$share/metainfo/io.github.vesk.vesk.metainfo.xml"
check "the page of the manual is there" gzip -t "$share/man/man1/vesk.1.gz"
check "the file type is known" holds root/usr/share/mime/packages/vesk.xml 'pattern="*.vesk"'
check "Help has its pages" test -f "$work/root/usr/lib/vesk/docs/manual.html"
exit $((failures != 0))

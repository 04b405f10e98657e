#!/usr/bin/env bash
# Conversion without a display: exit statuses, standard input and output, reports.
#   convert_test.sh PROGRAM
set -u
program=$1
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset DISPLAY VESK_HOME
export USERPROFILE=$work LANG=C.UTF-8
failures=0
cd "$work" || exit 1

# check WHAT EXPECTED_STATUS -- arguments of -convert: standard output stays in out.
check() {
    local what=$1 status=$2
    shift 3
    "$program" -convert "$@" >out 2>err </dev/stdin
    local got=$?
    if [ "$got" = "$status" ]; then
        echo "ok   $what"
    else
        echo "FAIL $what: status $got instead of $status"
        cat err
        failures=$((failures + 1))
    fi
}
# holds WHAT COMMAND...: the command succeeds.
holds() {
    local what=$1
    shift
    if "$@" >/dev/null 2>&1; then
        echo "ok   $what"
    else
        echo "FAIL $what: $*"
        failures=$((failures + 1))
    fi
}

printf 'mtllib %s\no %s\nv 0 0 0\nv 2 0 0\nv 2 1 0\nv 0 1 0\nusemtl p\nf 1 2 3 4\n' \
    paint.mtl 'bl<&>ue "x"' >"a model.obj"
printf 'newmtl p\nKd 0 0 1\nmap_Kd none.png\n' >paint.mtl
sed '/mtllib/d; /usemtl/d' "a model.obj" >plain.obj
printf 'o line\nv 0 0 0\nv 1 0 0\nl 1 2\nf 1 2 1\n' >line.obj

check "one file" 0 -- plain.obj plain.glb </dev/null
holds "is a glTF file" grep -q ^glTF plain.glb
check "missing texture is a complaint" 2 -- -report r.json "a model.obj" "to <here>.dae" </dev/null
holds "named in the report" grep -q '{"name": "none.png", "found": null}' r.json
holds "and with the file" grep -q '"file": "a model.obj"' r.json
holds "COLLADA is XML" xmllint --noout "to <here>.dae"
holds "names are whole" xmllint --xpath "//*[@name='bl<&>ue \"x\"']" "to <here>.dae"
check "losses" 2 -- -report r.json line.obj line.stl </dev/null
holds "are counted" grep -q '{"count": 1, "what": "lines"}' r.json
check "from standard input to standard output" 0 -- -from obj -to stl - - <plain.obj
holds "nothing but the file goes there" test "$(stat -c %s out)" = $((84 + 2 * 50))
mv out given
check "in and out again" 0 -- -from stl -to .vesk - - <given
holds "as text" grep -q ^OBJECT out
holds "grey where the file has no materials" grep -q '^MATERIAL .* rgb 0.8 0.8 0.8 ' out
rm -f r.json
check "options behind the files" 0 -- plain.obj behind.ply -report r.json </dev/null
holds "are options" test -s r.json
check "what lies beside is missed" 2 -- -to obj plain.obj - </dev/null
check "a script in between" 0 -- -do 'vesk select_all' -do 'vesk move 5 0 0' plain.obj moved.obj </dev/null
holds "moves" grep -q '^v 7 1 0' moved.obj
mkdir made
check "several files" 0 -- -to ply -into made -report r.json plain.obj moved.obj </dev/null
holds "two files" test -s made/plain.ply -a -s made/moved.ply
holds "two reports" test "$(grep -c '"written"' r.json)" = 2
check "one of several fails" 1 -- -to ply -into made none.obj plain.obj </dev/null
holds "the other is there" grep -q "can't read none.obj" err
check "an unknown format" 1 -- plain.obj plain.xyz </dev/null
check "a script that fails" 1 -- -do 'error boom' plain.obj other.obj </dev/null
holds "writes nothing" test ! -e other.obj
check "into itself" 1 -- -to obj plain.obj </dev/null
check "two into one" 1 -- -to glb -into made plain.obj made/plain.ply </dev/null
check "no folder" 1 -- plain.obj none/x.obj </dev/null
check "no words" 1 -- -to obj </dev/null
check "an unknown option" 1 -- -wat x plain.obj y.obj </dev/null
# A fuller model through every format, read by other programs where they are there.
for suffix in obj ply stl gltf glb dae fbx 3mf; do
    "$program" -convert "$here/shapes.vesk" "shapes.$suffix" >/dev/null 2>&1
    holds "shapes.$suffix" test -s "shapes.$suffix"
    if command -v assimp >/dev/null; then
        holds "shapes.$suffix by another reader" assimp info "shapes.$suffix"
    fi
done
xmllint --noout shapes.dae || failures=$((failures + 1))
if command -v unzip >/dev/null; then
    unzip -q shapes.3mf
    holds "3MF is whole" xmllint --noout 3D/3dmodel.model '[Content_Types].xml' _rels/.rels
fi
exit $((failures > 0))

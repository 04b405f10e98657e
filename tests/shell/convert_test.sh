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
check "a report into the model" 1 -- -from stl -to .vesk -report - - - <given
check "in and out again" 0 -- -from stl -to .vesk -report r.json - - <given
holds "reported as such" grep -q '"file": "-"' r.json
holds "both" grep -q '"written": "-"' r.json
holds "as text" grep -q ^OBJECT out
holds "grey where the file has no materials" grep -q '^MATERIAL .* rgb 0.8 0.8 0.8 ' out
rm -f r.json
check "options behind the files" 0 -- plain.obj behind.ply -report r.json </dev/null
holds "are options" test -s r.json
check "what lies beside is missed" 2 -- -to obj plain.obj - </dev/null
check "a script in between" 0 -- -do 'vesk select_all' -do 'vesk move 5 0 0' plain.obj moved.obj </dev/null
holds "moves" grep -q '^v 7 1 0' moved.obj
# Materials that equal entries of the palette, or each other, in files after each other.
for name in iron "old steel"; do
    printf 'newmtl %s\nKd 0 0 1\nnewmtl same\nKd 0 0 1\n' "$name" >"$name.mtl"
    sed "s/^v 0 0 0/mtllib $name.mtl\nusemtl $name\n&/" plain.obj >"$name.obj"
done
mkdir named
check "names of materials" 0 -- -to vesk -into named -report r.json iron.obj "old steel.obj" </dev/null
holds "of the first file" grep -q '^MATERIAL "iron"' named/iron.vesk
holds "of the second" grep -q '^MATERIAL "old steel"' "named/old steel.vesk"
holds "but for what is merged" grep -q '"same = old steel"' r.json
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
check "a report that cannot be written" 1 -- -report none/r.json plain.obj other.ply </dev/null
check "standard input that is empty" 1 -- -from obj -to ply - - </dev/null
# Absurd files cost neither time nor memory.
printf 'mtllib /dev/zero\nmtllib ../../../../../../dev/zero\n' | cat - plain.obj >device.obj
check "a device for materials" 2 -- device.obj device.ply </dev/null
printf 'ply\nformat ascii 1.0\nelement vertex 4000000000\nproperty float x\nelement face 4000000000\n%s\n' \
    'property list uchar int vertex_indices
end_header
1' >huge.ply
check "huge counts" 1 -- huge.ply out.obj </dev/null
printf 'f 1 2 99999999999999999999\nf -1 -2 -9223372036854775808\nf 4294967297 2 3\n' |
    cat plain.obj - >indices.obj
check "huge indices" 2 -- -report r.json indices.obj indices.ply </dev/null
holds "are counted" grep -q '"warnings_in_all": 3' r.json
holds "by their lines" grep -q '{"line": 7, "text": "a face has corners' r.json
head -c 20000 /dev/urandom >noise.obj
check "noise" 1 -- -report r.json noise.obj out.ply </dev/null
holds "is reported in JSON" tclsh8.6 "$here/json_check.tcl" r.json
mkdir "all of them"
for i in $(seq 300); do cp plain.obj "all of them/n \$i [$i] \"{$i.obj"; done
check "hundreds of files" 0 -- -to glb -into made -report r.json "all of them"/* </dev/null
holds "all of them" test "$(find made -name 'n *.glb' | wc -l)" = 300
holds "their report is JSON" tclsh8.6 "$here/json_check.tcl" r.json

# Lists, parts of them, several processes; a crash and a file that takes too long cost one file each.
mkdir batch
for i in 1 2 3 4 5 6 7; do cp plain.obj "batch/n $i.obj"; done
{ printf '%s\r\n' batch/n*.obj; printf 'plain.obj\tbatch/other.stl\n\nbatch/none.obj\n'; } >names
check "a list" 1 -- -to glb -list names -report r.jsonl </dev/null
holds "has the names that it gives" test -s batch/other.stl -a -s "batch/n 7.glb"
holds "a line each" test "$(grep -c '^{"status": [01], .*}$' r.jsonl)" = 9
holds "with the reason" grep -q '"status": 1, .*none.obj.*"error": "No such file' r.jsonl
while read -r line; do echo "$line" >line.json; tclsh8.6 "$here/json_check.tcl" line.json || echo no; done \
    <r.jsonl >lines
holds "that is JSON" test ! -s lines
rm batch/*.glb
touch -d 'now - 1 hour' batch/*.obj plain.obj
check "one part" 0 -- -to glb -shard 2/4 batch/*.obj </dev/null
holds "is every fourth" test "$(cd batch && echo *.glb)" = "n 2.glb n 6.glb"
echo old >"batch/n 1.glb" && touch -d 'now - 2 hours' "batch/n 1.glb"
check "the others" 0 -- -to glb -skip-newer -jobs 2 -report r.json batch/n*.obj </dev/null
holds "those that are newer are left" test "$(grep -c '"read": true' r.json)" = 5
holds "the older one is not" grep -q ^glTF "batch/n 1.glb"
holds "in their order" sh -c 'grep "\"file\"" r.json | sort -c'
check "nothing to do" 0 -- -to glb -skip-newer -jobs 2 batch/n*.obj </dev/null
check "crashes" 1 -- -to ply -jobs 2 -limit-time 2 -report r.json -do '
    set name [file tail [dict get [vesk import_report] file]]
    if {$name eq "n 2.obj"} {exec kill -KILL [pid]}
    if {$name eq "n 5.obj"} {after 60000}
    puts "at $name"' batch/n*.obj </dev/null
holds "cost one file" test "$(ls batch/*.ply | wc -l)" = 5
holds "are told" grep -q 'n 2.obj: the program crashed (SIGKILL)' err
holds "also what took too long" grep -q '"error": "it took more than 2 seconds"' r.json
holds "scripts may print" grep -q '^at n 7.obj$' out
check "losses that count" 2 -- -to stl line.obj </dev/null
check "losses that do not" 0 -- -to stl -accept-losses line.obj </dev/null
check "no such part" 1 -- -to glb -shard 5/4 plain.obj </dev/null
check "no number" 1 -- -to glb -jobs two plain.obj </dev/null

# Pictures within a file, in a script without a window.
mkdir pictured
cp "$here/../data/blender/wood.png" .
sed 's/none.png/wood.png/' paint.mtl >t && mv t paint.mtl
check "a picture goes into 3MF" 0 -- -do 'vesk select_all; vesk uvmap_surfaces' "a model.obj" pictured/model.3mf </dev/null
echo 'vesk file_load [lindex $argv 0]; puts [dict get [vesk import_report] images]' >images.tcl
holds "and comes out beside the model" \
    sh -c '"$1" -batch images.tcl pictured/model.3mf 2>/dev/null | grep -q pictured/wood.png' sh "$program"
holds "as it was" cmp wood.png pictured/wood.png
# Materials with textures on lines and surfaces that have no texture coordinates.
printf 'mtllib paint.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl p\nf 1 2 3\nl 1 2\n' >bare.obj
check "textures without coordinates" 0 -- bare.obj bare.gltf </dev/null
holds "get some" test "$(grep -o '"TEXCOORD_0"' bare.gltf | wc -l)" = 2
check "colours with line breaks" 0 -- plain.obj broken.dae </dev/null
sed -i 's#<color>\([^<]*\)</color>#<color>\n  \1\n</color>#; s#<color sid="[a-z]*">\([^<]*\)</color>#<color> \n\1\n </color>#' broken.dae
check "can be read" 0 -- broken.dae mended.ply </dev/null
# A texture that stays where it is, seen from another folder.
mkdir elsewhere
check "to another folder" 0 -- -to vesk -into elsewhere "a model.obj" </dev/null
check "from where the texture is found" 0 -- "elsewhere/a model.vesk" elsewhere/again.gltf </dev/null
holds "by way of the folder above" grep -q '"uri": "../wood.png"' elsewhere/again.gltf
if [ "$(id -u)" != 0 ]; then
    rm pictured/wood.png
    chmod a-w pictured
    holds "or in the state folder" sh -c 'XDG_STATE_HOME=$PWD/state "$1" -batch images.tcl \
        pictured/model.3mf 2>/dev/null | grep -q state/vesk/pictures/wood.png' sh "$program"
    chmod u+w pictured
fi

# A fuller model through every format, read by other programs where they are there.
for suffix in obj ply stl gltf glb dae fbx 3mf; do
    "$program" -convert "$here/shapes.vesk" "shapes.$suffix" >/dev/null 2>&1
    holds "shapes.$suffix" test -s "shapes.$suffix"
    if command -v assimp >/dev/null; then
        holds "shapes.$suffix by another reader" assimp info "shapes.$suffix"
    fi
done
holds "glTF is JSON" tclsh8.6 "$here/json_check.tcl" shapes.gltf
xmllint --noout shapes.dae || failures=$((failures + 1))
if command -v unzip >/dev/null; then
    unzip -q shapes.3mf
    holds "3MF is whole" xmllint --noout 3D/3dmodel.model '[Content_Types].xml' _rels/.rels
fi
exit $((failures > 0))

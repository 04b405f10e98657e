#!/usr/bin/env bash
# What other programs read of our exports: Blender in background mode, Assimp's tool and the checker of
# glTF, where they are installed (packages blender and assimp-utils; gltf-validator of npm, NODE_PATH). Exit status 77 when neither is.
#   readers_test.sh PROGRAM
set -u
program=$(realpath "$1")
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset DISPLAY VESK_HOME
export USERPROFILE=$work LANG=C.UTF-8
failures=0
cd "$work" || exit 1

if ! command -v blender >/dev/null && ! command -v assimp >/dev/null; then
    echo "skipped: neither blender nor assimp is installed"
    exit 77
fi

# is WHAT GOT WANTED
is() {
    if [ "$2" = "$3" ]; then
        echo "ok   $1"
    else
        printf 'FAIL %s\n     is     %s\n     not    %s\n' "$1" "$2" "$3"
        failures=$((failures + 1))
    fi
}

# A box of 1 x 2 x 3 with smooth sides and a flat concave hexagon with a texture.
cp "$here/../data/blender/wood.png" .
printf 'newmtl br\303\244un\nKd 0.8 0.2 0\nnewmtl wood\nKd 1 1 1\nmap_Kd wood.png\n' >corpus.mtl
{
    printf 'mtllib corpus.mtl\no a box\nusemtl br\303\244un\n'
    printf 'v %s\n' '0 0 0' '1 0 0' '1 2 0' '0 2 0' '0 0 3' '1 0 3' '1 2 3' '0 2 3'
    printf 's off\nf 4 3 2 1\nf 5 6 7 8\ns 1\nf 1 2 6 5\nf 2 3 7 6\nf 3 4 8 7\nf 4 1 5 8\n'
    printf 'o Gr\303\266\303\237e "L"\nusemtl wood\ns off\n'
    printf 'v %s\n' '5 0 2' '7 0 2' '7 1 2' '6 1 2' '6 2 2' '5 2 2'
    printf 'vt %s\n' '0 0' '1 0' '1 0.5' '0.5 0.5' '0.5 1' '0 1'
    printf 'f 9/1 10/2 11/3 12/4 13/5 14/6\n'
} >corpus.obj
formats="obj ply stl gltf glb dae fbx 3mf 3ds"
for suffix in $formats wrl; do
    "$program" -convert corpus.obj "out.$suffix" >/dev/null 2>&1
    [ -s "out.$suffix" ] || is "out.$suffix is written" no yes
done

if command -v blender >/dev/null; then
    blender --background --factory-startup --python "$here/readers_blender.py" -- \
        out.obj out.ply out.stl out.gltf out.glb out.dae out.fbx out.wrl >blender.log 2>&1
    # read SUFFIX WANTED: objects, polygons, corners, materials, smooth ones, size, names
    read_by_blender() {
        local got
        got=$(sed -n "s/^READ \.$1 //p" blender.log)
        is "Blender reads $1" "${got:-$(tail -1 blender.log)}" "$2"
    }
    names=$(printf 'Gr\303\266\303\237e "L"|a box')
    size="2.00 3.00 7.00"
    read_by_blender obj "2 7 30 2 4 $size $names"
    read_by_blender ply "1 7 30 0 0 $size out"
    read_by_blender stl "1 16 48 0 0 $size out"
    read_by_blender gltf "2 16 48 2 8 $size $names"
    read_by_blender glb "2 16 48 2 8 $size $names"
    read_by_blender dae "2 7 30 2 4 $size $names"
    read_by_blender wrl "3 7 30 3 0 $size Shape_IndexedFaceSet|Shape_IndexedFaceSet.001|Shape_IndexedFaceSet.002"
    read_by_blender fbx "2 7 30 2 4 $size $names"
else
    echo "left out: blender is not installed"
fi

if command -v assimp >/dev/null; then
    # Meshes, triangles, materials, and the box's corners.
    for suffix in $formats; do
        got=$( (ulimit -v 6000000; timeout 60 assimp info "out.$suffix") 2>&1 | awk '
            /^Meshes: +[0-9]/ || /^Faces:/ || /^Materials: +[0-9]/ { printf "%s ", $2 }
            /^M(in|ax)imum point/ { gsub(/[^-0-9. ]/, ""); printf "%g %g %g ", $1, $2, $3 }')
        wanted="2 2 16 0 0 0 7 2 3"
        case $suffix in
        ply | stl) wanted="1 1 16 0 0 0 7 2 3" ;;
        3mf) wanted="2 2 16 0 -3 0 7 0 2" ;; # as it is stored, Z upwards
        esac
        is "Assimp reads $suffix" "${got% }" "$wanted"
    done
else
    echo "left out: assimp is not installed"
fi
# The format's own checker, an npm package: no errors, no warnings.
if command -v node >/dev/null && node -e 'require("gltf-validator")' 2>/dev/null; then
    for file in out.gltf out.glb; do
        got=$(node -e '
            const fs = require("fs"), file = process.argv[1];
            require("gltf-validator").validateBytes(new Uint8Array(fs.readFileSync(file)), {
                externalResourceFunction: uri => fs.promises.readFile(decodeURIComponent(uri))
                    .then(bytes => new Uint8Array(bytes))
            }).then(found => console.log(found.issues.numErrors, found.issues.numWarnings));
            ' "$file" 2>&1)
        is "the checker of glTF reads $file" "$got" "0 0"
    done
else
    echo "left out: gltf-validator is not installed"
fi
exit $((failures > 0))

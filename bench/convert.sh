#!/usr/bin/env bash
# Conversion of a terrain of 1,000,000 vertices in whole processes: seconds, processor time (user and
# system, all threads) and megabytes of each, with Assimp's own tool and Blender on the same file where
# they are installed.
#   bench/convert.sh [build folder] [rows]
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
program=$(cd "${1:-$here/../build}/home" && pwd)/vesk
rows=${2:-999}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export USERPROFILE=$work LANG=C.UTF-8
cd "$work"

# timed RUNS WHAT COMMAND...: the least of each over so many runs, whatever its status.
timed() {
    local runs=$1 what=$2
    shift 2
    for _ in $(seq "$runs"); do
        /usr/bin/time -q -o "$work/time" -f '%e %U %S %M' "$@" >/dev/null 2>&1 || true
        tail -1 "$work/time"
    done | awk -v what="$what" '
        { cpu = $2 + $3 }
        NR == 1 || $1 < least { least = $1 }
        NR == 1 || cpu < least_cpu { least_cpu = cpu; size = $4 }
        END { printf "%-28s %6.2f s %6.2f s cpu %6.0f MB\n", what, least, least_cpu, size / 1024 }'
}

tclsh8.6 "$here/terrain.tcl" "$rows" >terrain.vesk
"$program" -convert terrain.vesk terrain.obj 2>/dev/null
ls -l terrain.vesk terrain.obj | awk '{ printf "%s: %.0f MB\n", $NF, $5 / 1e6 }'
timed 3 ".obj to .vesk" "$program" -convert terrain.obj out.vesk
timed 3 ".vesk to .obj" "$program" -convert terrain.vesk out.obj
for suffix in ply stl glb dae fbx 3mf; do
    timed 3 ".vesk to .$suffix" "$program" -convert terrain.vesk "out.$suffix"
done
for suffix in ply stl glb; do
    timed 3 ".$suffix to .vesk" "$program" -convert "out.$suffix" "back.vesk"
done
if command -v assimp >/dev/null; then
    timed 1 "assimp: .obj to .obj" assimp export terrain.obj theirs.obj
    timed 1 "assimp: .obj read only" assimp info terrain.obj --raw
fi
if command -v blender >/dev/null; then
    in_blender() { # WHAT SCRIPT
        timed 1 "$1" blender --background --factory-startup --python-expr "import bpy; $2"
    }
    read="bpy.ops.wm.obj_import(filepath='terrain.obj')"
    in_blender "blender: starts" "pass"
    in_blender "blender: .obj to .blend" "$read; bpy.ops.wm.save_as_mainfile(filepath='out.blend')"
    in_blender "blender: .obj to .obj" "$read; bpy.ops.wm.obj_export(filepath='theirs.obj')"
fi

#!/usr/bin/env bash
# Conversion of a terrain of 1,000,000 vertices in whole processes: seconds, processor time (user and
# system, all threads) and megabytes of each, with Assimp's own tool and Blender on the same file where
# they are installed. Then many small models by two processes, and a run of them that is killed and goes
# on.
#   bench/convert.sh [build folder] [rows] [small models]
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
program=$(cd "${1:-$here/../build}/home" && pwd)/vesk
rows=${2:-999}
many=${3:-10000}
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
for suffix in ply stl glb dae fbx 3mf wrl 3ds; do
    timed 3 ".vesk to .$suffix" "$program" -convert terrain.vesk "out.$suffix"
done
for suffix in ply stl glb wrl 3ds; do
    timed 3 ".$suffix to .vesk" "$program" -convert "out.$suffix" "back.vesk"
done
# Boxes and grids of 8 to 400 vertices.
small_models() {
    mkdir -p many
    awk -v many="$many" 'BEGIN {
        for (i = 1; i <= many; ++i) {
            file = sprintf("many/part %05d.obj", i)
            side = 2 + i % 19
            printf "o part %d\n", i >file
            for (k = 0; k < side * side; ++k)
                printf "v %d %g %d\n", k % side, (k * i % 97) / 97, int(k / side) >file
            for (k = 0; k < side * (side - 1) - 1; ++k)
                if (k % side != side - 1)
                    printf "f %d %d %d %d\n", k + 1, k + side + 1, k + side + 2, k + 2 >file
            close(file)
        }
    }'
    find many -name '*.obj' | sort >names
}
if [ "$many" -gt 0 ]; then
    small_models
    du -sk many | awk -v many="$many" '{ printf "%d models: %.0f MB on the disk\n", many, $1 / 1024 }'
    for jobs in 1 2; do
        rm -f many/*.glb
        timed 1 "$many .obj to .glb, -jobs $jobs" "$program" -convert -to glb -list names -jobs "$jobs"
    done
    rm -f many/*.glb
    timeout -s KILL 2 "$program" -convert -to glb -list names -jobs 2 -skip-newer >/dev/null 2>&1 || true
    sleep 1 # its processes see that it is gone
    echo "killed after 2 s: $(find many -name '*.glb' | wc -l) of them are there"
    timed 1 "the rest, -skip-newer" "$program" -convert -to glb -list names -jobs 2 -skip-newer
    echo "then: $(find many -name '*.glb' | wc -l), other files: $(find many -type f | grep -vc '\(obj\|glb\)$')"
    timed 1 "nothing to do, -skip-newer" "$program" -convert -to glb -list names -jobs 2 -skip-newer
    rm -rf many
fi
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

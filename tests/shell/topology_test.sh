#!/usr/bin/env bash
# Counts of vertices, edges and faces after the same jobs here and in Blender (package blender); skipped
# (77) where that is not installed.
#   topology_test.sh PROGRAM
set -u
program=$(realpath "$1")
here=$(cd "$(dirname "$0")" && pwd)
command -v blender >/dev/null || { echo "skipped: blender is not installed"; exit 77; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset DISPLAY VESK_HOME
export USERPROFILE=$work LANG=C.UTF-8
cd "$work" || exit 1

# A grid of 4 x 4 quads; two cubes that face each other; a triangle, a quad and a pentagon in a row.
{
    for i in 0 1 2 3 4; do for j in 0 1 2 3 4; do echo "v $j $i 0"; done; done
    for i in 0 1 2 3; do
        for j in 1 2 3 4; do
            a=$((5 * i + j))
            echo "f $a $((a + 1)) $((a + 6)) $((a + 5))"
        done
    done
} >grid.obj
cube() { # X FIRST
    for x in $1 $(($1 + 1)); do echo "v $x 0 0"; echo "v $x 1 0"; echo "v $x 1 1"; echo "v $x 0 1"; done
    for face in '4 3 2 1' '5 6 7 8' '1 2 6 5' '2 3 7 6' '3 4 8 7' '4 1 5 8'; do
        echo "f $(for corner in $face; do echo $((corner + $2)); done | paste -sd ' ')"
    done
}
{ cube 0 0; cube 3 8; } >cubes.obj
printf 'v %s\n' '0 0 0' '1 0 0' '0.5 1 0' '1.5 1 0' '2 0 0' '2.5 0.5 0' '2 1.5 0' >mixed.obj
printf 'f 1 2 3\nf 2 4 3\nf 2 5 6 7 4\n' >>mixed.obj

# With the vertices as they are numbered here: in the order in which faces use them.
for model in grid cubes mixed; do
    "$program" -convert $model.obj numbered.obj >/dev/null 2>&1
    mv numbered.obj $model.obj
done

cat >jobs.tcl <<'END'
proc begin {file mode elements} {
    vesk clear_all
    vesk file_load $file
    set id [lindex [vesk object_get_children [vesk get_world]] 0]
    while {[vesk object_get_children $id] ne ""} {set id [lindex [vesk object_get_children $id] 0]}
    vesk set_select_mode object
    vesk select_all
    vesk set_select_mode $mode
    vesk clear_selection
    if {$mode eq "edge"} {
        foreach {a b} $elements {vesk edge_select $id $a $b}
    } elseif {$elements ne ""} {
        vesk select_elements set $id:[join $elements ,]
    }
}
proc told {what} {
    vesk set_select_mode edge
    vesk select_all
    set counts [vesk get_counts]
    puts "counts $what [lindex $counts 5] [vesk selection_get_num_edges] [lindex $counts 3]"
}
begin grid.obj edge {1 2}
vesk loop_cut 2 0
told loop_cut
begin cubes.obj surface {1 6}
vesk bridge 1 0 0
told bridge
begin grid.obj surface {5 6 10}
vesk inset 0.1 0 region
told inset_region
begin grid.obj surface {5 6 10}
vesk inset 0.1 0 each
told inset_each
begin mixed.obj surface {0 1 2}
vesk catmull_clark 1
told catmull_clark
begin grid.obj edge {1 2 2 3}
vesk dissolve
told dissolve_edges
begin grid.obj surface {5 6 9 10}
vesk dissolve
told dissolve_faces

# Solids that cut each other at an angle, and the results of booleans, for their volumes.
proc make_first {} {
    vesk set_select_mode object
    vesk create box 0 -1 -1 -1 1 1 1
    vesk object_set_name [vesk get_selected_objects] first
}
proc make_second {} {
    vesk set_select_mode object
    vesk create box 0 -0.7 -0.6 -0.8 0.9 0.8 0.7
    vesk object_set_name [vesk get_selected_objects] second
    vesk rotate 30 20 0
    vesk move 0.6 0.5 0.4
}
foreach name {first second} {
    vesk clear_all
    make_$name
    vesk write_obj $name.obj
}
foreach operation {union difference intersection} {
    vesk clear_all
    make_first
    make_second
    vesk clear_selection
    foreach name {first second} {vesk select_by_name $name}
    vesk boolean $operation
    vesk write_obj $operation.obj
    puts "counts $operation agrees"
}
END
"$program" -batch jobs.tcl 2>/dev/null | grep ^counts >ours
blender -b -P "$here/topology_blender.py" -- grid.obj cubes.obj mixed.obj 2>python.log | grep ^counts >theirs
if [ "$(wc -l <ours)" = 10 ] && diff ours theirs; then
    echo "ok   $(wc -l <ours) jobs"
    exit 0
fi
echo "FAIL ours (<) and Blender's (>) differ"
cat ours python.log
exit 1

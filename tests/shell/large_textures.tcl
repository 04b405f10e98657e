# large_textures.tcl --
#   The window of texture coordinates with more than can be drawn, read and measured at once: its parts make
#   the whole picture, and a drag ends where it should.

source [file join [file dirname [info script]] support.tcl]

set ::test::limit 60000
set togl .uv.view.togl
proc uv {key} {return [dict get [vesk uv_info] $key]}

proc at_rest {} {
    settle
    wait_until {[pause 200] eq "" && [vesk uv_view_waits] eq ""}
}

proc compare_with_whole {when {away 1}} {
    at_rest
    set shown [on_screen $::togl $away]
    settle
    vesk uv_view_save_picture [work uv.ppm]
    check "$when the parts make the whole picture" {
        [pixels_that_differ $shown [read_ppm [work uv.ppm]]] == 0
    }
}

run {
    set terrain [file join [file dirname [info script]] ../../bench/terrain.tcl]
    exec tclsh8.6 $terrain 260 > [work terrain.vesk]
    vesk load_file [work terrain.vesk]
    vesk set_select_mode object
    vesk select_all
    vesk uv_project planar_y 1
    vesk uv_scale 0.8 0.8
    set ::prefs_uveditor_antialias 1
    ::vesk::uvedit::open
    check "a worker reads the model" {[vesk uv_view_waits] ne ""}
    compare_with_whole "at first"
    check "the counts are there" {[string match "* 67,600 surfaces" [.uv.status.counts cget -text]]}

    # Chosen in part: four kinds of edges; corners with their marks.
    vesk uv_select_mode surface
    vesk uv_select_box 0 0 0.5 0.5
    compare_with_whole "with a part chosen"
    vesk uv_select_mode corner
    vesk uv_view_zoom 1
    compare_with_whole "with the marks of corners"
    shot textures-large-corners

    # While it moves some edges stand for all; the model has the change at the end, once.
    vesk uv_view_fit 0
    vesk uv_select_mode island
    vesk uv_select all
    at_rest
    set records $::undo_count
    set before [uv box]
    hold $togl 200 200 260 230
    check "a drag is a quick picture" {[vesk uv_view_waits] eq "draws"}
    check "and leaves the model as it is" {[uv box] eq $before}
    shot textures-large-drag
    compare_with_whole "in the middle of a drag" 0
    set held [read_ppm [work uv.ppm]]
    release
    compare_with_whole "at its end"
    check "it ends where it was shown, with one record" {
        ![near [uv box] $before 0.01] && $::undo_count == $records + 1
        && [pixels_that_differ $held [read_ppm [work uv.ppm]]] == 0
    }
    vesk undo
    check "undo takes it back" {[near [uv box] $before 1e-5]}
    hold $togl 200 200 260 230
    key Escape
    release
    check "Escape takes a drag back" {[near [uv box] $before 1e-6] && $::undo_count == $records}

    # Colours that a worker finds.
    vesk uv_project sphere 2
    foreach name {stretch overlaps} {
        .uv.panel.$name invoke
        check "$name waits for a worker" {[vesk uv_view_waits] ne ""}
        compare_with_whole "with the $name:"
        check "$name is told in numbers" {
            [.uv.panel.measure cget -text] ni [list "" "Measuring \u2026"]
        }
        shot textures-large-$name
    }
    .uv.panel.stretch invoke
    .uv.panel.overlaps invoke

    # What the window waits for may go.
    vesk uv_scale 0.5 0.5
    vesk select_all
    vesk delete
    settle
    check "the model goes while a worker reads it" {[uv surfaces] == 0}
    vesk undo
    vesk select_all
    destroy .uv
    settle
    ::vesk::uvedit::open
    compare_with_whole "opened again"
}

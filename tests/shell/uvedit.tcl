# uvedit.tcl --
#   The window of texture coordinates with a real mouse and real keys: choosing, dragging,
#   arranging, undoing, in step with the views.

source [file join [file dirname [info script]] support.tcl]

set ::test::tolerance 0.01
set togl .uv.view.togl
proc uv {key} {return [dict get [vesk uv_info] $key]}
proc hint {} {return [.uv.status.hint cget -text]}
proc numbers {text} {return [regexp -all -inline {[-0-9.]+} $text]}

# spot --
#   Window place of a coordinate, from what the window says of the pointer's place.
proc measure_view {} {
    point_at $::togl 100 100
    lassign [shown_place] u0 v0
    point_at $::togl 300 300
    lassign [shown_place] u1 v1
    set ::to_screen [list [expr {200.0 / ($u1 - $u0)}] $u0 [expr {200.0 / ($v1 - $v0)}] $v0]
}
proc shown_place {} {return [numbers [.uv.status.place cget -text]]}
proc spot {u v} {
    lassign $::to_screen su u0 sv v0
    return [list [expr {round(100 + ($u - $u0) * $su)}] [expr {round(100 + ($v - $v0) * $sv)}]]
}
proc begin {u0 v0 u1 v1 {button 1} {modifier ""}} {
    hold $::togl {*}[spot $u0 $v0] {*}[spot $u1 $v1] $button $modifier
}
proc from_to {u0 v0 u1 v1 {button 1} {modifier ""}} {
    begin $u0 $v0 $u1 $v1 $button $modifier
    release $button $modifier
}
proc click_at {u v} {press $::togl {*}[spot $u $v]}
proc uv_picture {} {
    vesk uv_view_save_picture [work uv.ppm]
    return [read_ppm [work uv.ppm]]
}

# rings --
#   Pixels of a picture with a form on it, in two colours.
proc rings {} {
    for {set y 0} {$y < 64} {incr y} {
        for {set x 0} {$x < 64} {incr x} {
            set ring [expr {int(hypot($x - 31.5, $y - 31.5) / 8) % 2}]
            append pixels [binary format ccc {*}[expr {$ring ? {60 120 200} : {200 200 190}}]]
        }
    }
    return $pixels
}

run {
    vesk clear_all
    check "the window is not there before it is asked for" {
        ![winfo exists .uv] && [info commands ::vesk::uvedit::build] eq ""
    }
    xdo mousemove 300 300
    key F8
    check "F8 opens it" {[winfo exists .uv] && [winfo ismapped .uv.view.togl]}
    check "empty, with its buttons off" {
        [uv surfaces] == 0 && [.uv.panel.b1 instate disabled]
        && [hint] eq "Select objects or surfaces in the views."
    }
    shot uv-empty

    # ---- a model with a picture ----
    set file [write_bmp [work rings.bmp] 64 64 [rings]]
    vesk create box 0 -1 -1 -1 1 1 1
    vesk add_new_texture $file
    vesk select_all
    vesk set_texture 0
    vesk surface_set_twosided 1
    vesk set_select_mode object
    vesk fit_all
    settle
    measure_view
    .uv.panel.b4 invoke
    settle
    check "Box makes six islands in the square" {
        [uv islands] == 6 && [uv surfaces] == 6 && [vesk uv_overlaps] == 0
    }
    check "the bar tells the picture" {[.uv.bar.picture get] eq "rings.bmp"}
    check "the picture is drawn" {
        [share [uv_picture] {200 120 60} 20] > 0.05
        && [share [uv_picture] {190 200 200} 20] > 0.05
    }

    # ---- choosing, both ways ----
    point_at $togl 20 20
    key 3
    check "3 chooses islands" {$::vesk::uvedit::mode eq "island"}
    lassign [lindex [vesk uv_islands] 0] u0 v0 u1 v1
    set mid_u [expr {($u0 + $u1) / 2}]
    set mid_v [expr {($v0 + $v1) / 2}]
    click_at $mid_u $mid_v
    check "a click takes an island, and its surface in the views" {
        [uv chosen_islands] == 1 && [count surfaces] == 1
        && [.uv.status.counts cget -text] eq "1 of 6 islands, 1 of 6 surfaces"
    }
    shot uv-island
    from_to -0.02 -0.02 1.02 1.02
    check "a band takes all" {[uv chosen_islands] == 6}
    vesk clear_selection
    vesk select_all
    check "what the views select is chosen here" {[uv chosen_surfaces] == 6}
    key Escape
    check "Escape chooses nothing, the object stays" {
        [uv chosen_surfaces] == 0 && [uv surfaces] == 6
    }

    # ---- dragging ----
    vesk uv_project planar_z 1
    vesk uv_scale 0.5 0.5
    click_at 0.5 0.5
    check "an island in the middle" {[near [uv box] {0.25 0.25 0.75 0.75}]}
    set records $::undo_count
    set before [picture xyz]
    begin 0.5 0.5 0.7 0.6
    check "the views follow at once" {[difference $before [picture xyz]] > 0.001}
    check "the status line tells how far" {
        [string match "dU *dV *" [hint]] && [near [numbers [hint]] {0.2 0.1}]
    }
    release
    check "a drag moves, with one record" {
        [near [uv box] {0.45 0.35 0.95 0.85}] && $::undo_count == $records + 1
    }
    key ctrl+z
    check "Control+Z takes it back" {[near [uv box] {0.25 0.25 0.75 0.75} 1e-5]}
    key ctrl+shift+z
    check "and redo brings it again" {[near [uv box] {0.45 0.35 0.95 0.85}]}
    key ctrl+z
    begin 0.5 0.5 0.7 0.6
    key x
    release
    check "X locks" {[near [uv box] {0.45 0.25 0.95 0.75}]}
    key ctrl+z
    begin 0.5 0.5 0.6 0.6
    key period 1 2 5
    check "digits open a field at the pointer" {
        [winfo ismapped .uv.view.number] && [near [uv box] {0.375 0.35 0.875 0.85} 0.012]
    }
    shot uv-number
    key Return
    release
    check "Return keeps the number" {
        [near [lindex [uv box] 0] 0.375 1e-5] && ![winfo exists .uv.view.number]
    }
    key ctrl+z
    set records $::undo_count
    begin 0.5 0.5 0.7 0.6
    key Escape
    release
    check "Escape takes a drag back" {
        [near [uv box] {0.25 0.25 0.75 0.75} 1e-6] && $::undo_count == $records
    }
    .uv.bar.snap invoke
    from_to 0.5 0.5 0.53 0.5
    check "snapping stops at pixels" {
        abs([lindex [uv box] 0] * 64 - round([lindex [uv box] 0] * 64)) < 1e-4
    }
    .uv.bar.snap invoke
    key ctrl+z
    key r
    from_to 0.7 0.5 0.5 0.7 1 shift
    check "R turns" {
        [vesk undo_name] eq "rotate texture coordinates"
        && [near [uv box] {0.25 0.25 0.75 0.75}]
    }
    key ctrl+z
    key m
    key Right
    check "arrows move by a pixel" {abs([lindex [uv box] 0] - 0.25 - 1 / 64.0) < 1e-4}
    key ctrl+z

    # ---- numbers and buttons ----
    set ::vesk::uvedit::number(u) 1/8
    set ::vesk::uvedit::number(v) 0
    .uv.bar.numbers.apply invoke
    check "typed numbers move" {[near [uv box] {0.375 0.25 0.875 0.75} 1e-5]}
    foreach {button label} {Fit "fit texture coordinates" "Flip U" "flip texture coordinates"
            "Rotate 90" "rotate texture coordinates" Split "split texture coordinates"
            Weld "weld texture coordinates" Pack "pack texture coordinates"
            Relax "relax texture coordinates" Sphere "project texture coordinates"} {
        if {$button eq "Split"} {
            key 2
            click_at 0.5 0.5
        }
        set state [vesk model_state]
        foreach w [winfo children .uv.panel] {
            if {[winfo class $w] eq "TButton" && [$w cget -text] eq $button} {$w invoke}
        }
        check "$button is one step, or says why not" {
            [vesk undo_name] eq $label || [vesk model_state] eq $state
        }
    }

    # ---- pan, zoom, what is shown ----
    point_at $togl 200 150
    set before [shown_place]
    xdo click 4
    point_at $togl 201 150
    point_at $togl 200 150
    check "the wheel zooms about the pointer" {[near [shown_place] $before 0.005]}
    from_to 0.4 0.4 0.5 0.5 2
    key f
    measure_view
    vesk uv_select none
    vesk uv_project sphere 2
    settle
    set plain [uv_picture]
    foreach name {checker stretch overlaps repeat} {
        .uv.panel.$name invoke
        check "$name changes the picture" {
            [difference $plain [uv_picture]] > 0.002 || $name eq "overlaps"
        }
        .uv.panel.$name invoke
    }
    .uv.panel.stretch invoke
    set pictures {}
    foreach what {"Area and shape" Area Shape} {
        set ::vesk::uvedit::measured $what
        ::vesk::uvedit::set_option stretch
        lappend pictures [uv_picture]
    }
    check "area and shape are shown apart, too" {
        [difference [lindex $pictures 1] [lindex $pictures 2]] > 0.01
    }
    .uv.panel.stretch invoke
    check "and back" {[difference $plain [uv_picture]] < 0.002}

    # ---- how it looks ----
    vesk clear_all
    vesk create sphere 0 -1 -1 -1 1 1 1
    vesk set_select_mode object
    vesk select_all
    vesk set_texture 0
    vesk uv_project box 1
    vesk uv_pack 6
    vesk set_select_mode surface
    vesk uv_select_mode island
    vesk uv_select_islands 1
    set ::prefs_uveditor_antialias 1
    settle
    foreach theme {dark light contrast} {
        use_theme $theme
        shot uv-$theme
    }
    use_theme dark
    .uv.panel.stretch invoke
    settle
    shot uv-stretch

    # ---- closing, opening again ----
    key F8
    check "F8 closes it" {![winfo exists .uv]}
    ::vesk::uvedit::open
    check "and it opens again" {
        [winfo ismapped .uv.view.togl] && [share [uv_picture] {85 85 85} 4] < 0.95
    }
}

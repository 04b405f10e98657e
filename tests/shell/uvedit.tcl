# uvedit.tcl --
#   The window of texture coordinates with a real mouse and real keys: choosing, dragging, arranging,
#   undoing, in step with the views.

source [file join [file dirname [info script]] support.tcl]

proc info_of {key} {return [dict get [vesk uv_info] $key]}

# spot --
#   Window place of a coordinate, from what the window says of the pointer's place.
proc measure_view {} {
    place_pointer 100 100
    set a [shown_place]
    place_pointer 300 300
    set b [shown_place]
    lassign $a u0 v0
    lassign $b u1 v1
    set ::to_screen [list [expr {200.0 / ($u1 - $u0)}] $u0 [expr {200.0 / ($v1 - $v0)}] $v0]
}
proc spot {u v} {
    lassign $::to_screen su u0 sv v0
    return [list [expr {round(100 + ($u - $u0) * $su)}] [expr {round(100 + ($v - $v0) * $sv)}]]
}
proc shown_place {} {
    return [regexp -all -inline {[-0-9.]+} [.uv.status.place cget -text]]
}
proc place_pointer {x y} {
    exec xdotool mousemove [expr {[winfo rootx .uv.view.togl] + $x}] \
        [expr {[winfo rooty .uv.view.togl] + $y}]
    ::test::pause 60
}
proc at {u v} {place_pointer {*}[spot $u $v]}
proc begin {u0 v0 u1 v1 {button 1} {modifier ""}} {
    at $u0 $v0
    if {$modifier ne ""} {exec xdotool keydown $modifier}
    exec xdotool mousedown $button
    ::test::pause 60
    for {set i 1} {$i <= 4} {incr i} {
        at [expr {$u0 + ($u1 - $u0) * $i / 4.0}] [expr {$v0 + ($v1 - $v0) * $i / 4.0}]
    }
    ::test::pause 100
}
proc finish {{button 1} {modifier ""}} {
    exec xdotool mouseup $button
    if {$modifier ne ""} {exec xdotool keyup $modifier}
    ::test::pause 200
}
proc drag {args} {
    begin {*}$args
    finish [expr {[llength $args] > 4 ? [lindex $args 4] : 1}] [lindex $args 5]
}
proc click {u v {modifier ""}} {
    at $u $v
    if {$modifier ne ""} {exec xdotool keydown $modifier}
    exec xdotool click 1
    if {$modifier ne ""} {exec xdotool keyup $modifier}
    ::test::pause 250
}
proc key {args} {
    exec xdotool key --delay 30 {*}$args
    ::test::pause 200
}
proc near {list wanted {tolerance 0.01}} {
    foreach a $list b $wanted {
        if {abs($a - $b) > $tolerance} {return 0}
    }
    return [expr {[llength $list] == [llength $wanted]}]
}
proc picture {} {
    set file [file join $::env(VESK_TEST_WORK) uv.ppm]
    vesk uv_view_save_picture $file
    return [::test::read_ppm $file]
}

# Writes a picture with a form on it: rings in two colours.
proc rings {name} {
    set pixels ""
    for {set y 0} {$y < 64} {incr y} {
        for {set x 0} {$x < 64} {incr x} {
            set ring [expr {int(hypot($x - 31.5, $y - 31.5) / 8) % 2}]
            append pixels [binary format ccc {*}[expr {$ring ? {60 120 200} : {200 200 190}}]]
        }
    }
    set stream [open $name wb]
    puts -nonewline $stream [binary format a2issiiiissiiiiii BM [expr {54 + [string length $pixels]}] \
        0 0 54 40 64 64 1 24 0 [string length $pixels] 2835 2835 0 0]
    puts -nonewline $stream $pixels
    close $stream
}

::test::run {
    vesk clear_all
    ::test::check "the window is not there before it is asked for" {
        ![winfo exists .uv] && [info commands ::vesk::uvedit::build] eq ""
    }
    exec xdotool mousemove 300 300
    ::test::pause 200
    key F8
    ::test::pause 600
    ::test::check "F8 opens it" {[winfo exists .uv] && [winfo ismapped .uv.view.togl]}
    ::test::check "empty, with its buttons off" {
        [info_of surfaces] == 0 && [.uv.panel.b1 instate disabled]
        && [.uv.status.hint cget -text] eq "Select objects or surfaces in the views."
    }
    ::test::shot uv-empty

    # ---- a model with a picture ----
    set file [file join $::env(VESK_TEST_WORK) rings.bmp]
    rings $file
    vesk create box 0 -1 -1 -1 1 1 1
    vesk add_new_texture $file
    vesk select_all
    vesk set_texture 0
    vesk surface_set_twosided 1
    vesk set_select_mode object
    vesk fit_all
    ::test::pause 300
    measure_view
    .uv.panel.b4 invoke
    ::test::pause 200
    ::test::check "Box makes six islands in the square" {
        [info_of islands] == 6 && [info_of surfaces] == 6 && [vesk uv_overlaps] == 0
    }
    ::test::check "the bar tells the picture" {[.uv.bar.picture get] eq "rings.bmp"}
    ::test::check "the picture is drawn" {
        [::test::share [picture] {200 120 60} 20] > 0.05
        && [::test::share [picture] {190 200 200} 20] > 0.05
    }

    # ---- choosing, both ways ----
    place_pointer 20 20
    key 3
    ::test::check "3 chooses islands" {$::vesk::uvedit::mode eq "island"}
    lassign [lindex [vesk uv_islands] 0] u0 v0 u1 v1
    set mid_u [expr {($u0 + $u1) / 2}]
    set mid_v [expr {($v0 + $v1) / 2}]
    click $mid_u $mid_v
    ::test::check "a click takes an island, and its surface in the views" {
        [info_of chosen_islands] == 1 && [vesk selection_get_num_surfaces] == 1
        && [.uv.status.counts cget -text] eq "1 of 6 islands, 1 of 6 surfaces"
    }
    ::test::shot uv-island
    drag -0.02 -0.02 1.02 1.02
    ::test::check "a band takes all" {[info_of chosen_islands] == 6}
    vesk clear_selection
    vesk select_all
    ::test::pause 200
    ::test::check "what the views select is chosen here" {[info_of chosen_surfaces] == 6}
    key Escape
    ::test::check "Escape chooses nothing, the object stays" {
        [info_of chosen_surfaces] == 0 && [info_of surfaces] == 6
    }

    # ---- dragging ----
    vesk uv_project planar_z 1
    vesk uv_scale 0.5 0.5
    click 0.5 0.5
    ::test::check "an island in the middle" {[near [info_of box] {0.25 0.25 0.75 0.75}]}
    set records $::undo_count
    set before [::test::picture xyz]
    begin 0.5 0.5 0.7 0.6
    ::test::check "the views follow at once" {
        [::test::difference $before [::test::picture xyz]] > 0.001
    }
    ::test::check "the status line tells how far" {
        [string match "dU *dV *" [.uv.status.hint cget -text]]
        && [near [regexp -all -inline {[-0-9.]+} [.uv.status.hint cget -text]] {0.2 0.1}]
    }
    finish
    ::test::check "a drag moves, with one record" {
        [near [info_of box] {0.45 0.35 0.95 0.85}] && $::undo_count == $records + 1
    }
    key ctrl+z
    ::test::check "Control+Z takes it back" {[near [info_of box] {0.25 0.25 0.75 0.75} 1e-5]}
    key ctrl+shift+z
    ::test::check "and redo brings it again" {[near [info_of box] {0.45 0.35 0.95 0.85}]}
    key ctrl+z
    begin 0.5 0.5 0.7 0.6
    key x
    finish
    ::test::check "X locks" {[near [info_of box] {0.45 0.25 0.95 0.75}]}
    key ctrl+z
    begin 0.5 0.5 0.6 0.6
    key period 1 2 5
    ::test::check "digits open a field at the pointer" {
        [winfo ismapped .uv.view.number] && [near [info_of box] {0.375 0.35 0.875 0.85} 0.012]
    }
    ::test::shot uv-number
    key Return
    finish
    ::test::check "Return keeps the number" {
        [near [lindex [info_of box] 0] 0.375 1e-5] && ![winfo exists .uv.view.number]
    }
    key ctrl+z
    set records $::undo_count
    begin 0.5 0.5 0.7 0.6
    key Escape
    finish
    ::test::check "Escape takes a drag back" {
        [near [info_of box] {0.25 0.25 0.75 0.75} 1e-6] && $::undo_count == $records
    }
    .uv.bar.snap invoke
    drag 0.5 0.5 0.53 0.5
    ::test::check "snapping stops at pixels" {
        abs([lindex [info_of box] 0] * 64 - round([lindex [info_of box] 0] * 64)) < 1e-4
    }
    .uv.bar.snap invoke
    key ctrl+z
    key r
    begin 0.7 0.5 0.5 0.7 1 shift
    finish 1 shift
    ::test::check "R turns" {
        [vesk undo_name] eq "rotate texture coordinates"
        && [near [info_of box] {0.25 0.25 0.75 0.75}]
    }
    key ctrl+z
    key m
    key Right
    ::test::check "arrows move by a pixel" {
        abs([lindex [info_of box] 0] - 0.25 - 1 / 64.0) < 1e-4
    }
    key ctrl+z

    # ---- numbers and buttons ----
    set ::vesk::uvedit::number(u) 1/8
    set ::vesk::uvedit::number(v) 0
    .uv.bar.numbers.apply invoke
    ::test::check "typed numbers move" {[near [info_of box] {0.375 0.25 0.875 0.75} 1e-5]}
    foreach {button label} {Fit "fit texture coordinates" "Flip U" "flip texture coordinates"
            "Rotate 90" "rotate texture coordinates" Split "split texture coordinates"
            Weld "weld texture coordinates" Pack "pack texture coordinates"
            Relax "relax texture coordinates" Sphere "project texture coordinates"} {
        if {$button eq "Split"} {
            key 2
            click 0.5 0.5
        }
        set state [vesk model_state]
        foreach w [winfo children .uv.panel] {
            if {[winfo class $w] eq "TButton" && [$w cget -text] eq $button} {$w invoke}
        }
        ::test::pause 60
        ::test::check "$button is one step, or says why not" {
            [vesk undo_name] eq $label || [vesk model_state] eq $state
        }
    }

    # ---- pan, zoom, what is shown ----
    place_pointer 200 150
    set before [shown_place]
    exec xdotool click 4
    ::test::pause 150
    place_pointer 201 150
    place_pointer 200 150
    ::test::check "the wheel zooms about the pointer" {[near [shown_place] $before 0.005]}
    begin 0.4 0.4 0.5 0.5 2
    finish 2
    key f
    measure_view
    vesk uv_select none
    vesk uv_project sphere 2
    ::test::pause 200
    set plain [picture]
    foreach name {checker stretch overlaps repeat} {
        .uv.panel.$name invoke
        ::test::pause 100
        ::test::check "$name changes the picture" {
            [::test::difference $plain [picture]] > 0.002 || $name eq "overlaps"
        }
        .uv.panel.$name invoke
    }
    .uv.panel.stretch invoke
    set pictures {}
    foreach what {"Area and shape" Area Shape} {
        set ::vesk::uvedit::measured $what
        ::vesk::uvedit::set_option stretch
        ::test::pause 100
        lappend pictures [picture]
    }
    ::test::check "area and shape are shown apart, too" {
        [::test::difference [lindex $pictures 1] [lindex $pictures 2]] > 0.01
    }
    .uv.panel.stretch invoke
    ::test::check "and back" {[::test::difference $plain [picture]] < 0.002}

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
    ::test::pause 400
    foreach theme {dark light contrast} {
        set ::vesk::theme_name $theme
        ::vesk::main::set_theme
        ::test::pause 400
        ::test::shot uv-$theme
    }
    set ::vesk::theme_name dark
    ::vesk::main::set_theme
    .uv.panel.stretch invoke
    ::test::pause 300
    ::test::shot uv-stretch

    # ---- closing, opening again ----
    key F8
    ::test::check "F8 closes it" {![winfo exists .uv]}
    ::vesk::uvedit::open
    ::test::pause 500
    ::test::check "and it opens again" {
        [winfo ismapped .uv.view.togl] && [::test::share [picture] {85 85 85} 4] < 0.95
    }
}

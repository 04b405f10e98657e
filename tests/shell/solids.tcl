# solids.tcl --
#   Symmetry and soft selection with a real mouse and keys: modelling one half of a box, moves that
#   fall off, the radius by the wheel.

source [file join [file dirname [info script]] support.tcl]
source [file join [file dirname [info script]] frontview.tcl]

# page_picture --
#   Keeps a picture for the manual, where they are asked for.
proc page_picture {name} {
    if {![info exists ::env(VESK_TOUR_PICTURES)]} {return}
    settle
    set window [winfo width .]x[winfo height .]+[winfo rootx .]+[winfo rooty .]
    exec import -window root -crop $window +repage -resize 75% -depth 8 -colors 200 \
        PNG8:[file join $::env(VESK_TOUR_PICTURES) manual-$name.png]
}

# width --
#   Of everything, along x.
proc width {} {
    vesk set_select_mode object
    vesk select_all
    set result [lindex [size] 0]
    vesk clear_selection
    return $result
}

run {
    # ---- symmetry ----
    fresh
    vesk surface_subdivide
    key v
    at xy {*}[spot 1.2 1.2]
    vesk clear_selection
    key ctrl+shift+y
    check "the key switches symmetry on" {$::prefs_symmetry_axis == 1}
    check "the status line says so" {
        [shown .status.symmetry] && [.status.symmetry cget -text] eq "Symmetry X"
    }
    shot solids-plane
    from_to 0.2 0.8 0.8 0.2
    check "a rubber band takes the right upper corner" {[count vertices] > 0}
    set before $::undo_count
    from_to 0.5 0.5 0.8 0.7
    check "one record" {$::undo_count == $before + 1 && [vesk undo_name] eq "move"}
    page_picture symmetry
    vesk select_all
    check "both sides moved" {[near [lindex [size] 0] 1.6 0.02]}
    check "alike" {[near [lindex [centre] 0] 0 0.001]}
    shot solids-symmetric
    vesk clear_selection
    at xy {*}[spot 1.2 1.2]
    xdo key ctrl+z
    vesk select_all
    check "Ctrl+Z takes both back" {[near [lindex [size] 0] 1 0.001]}

    # Box modelling: a surface of one side is extruded by the tool, in the plan.
    vesk set_select_mode surface
    vesk clear_selection
    vesk set_select_mode vertex
    vesk clear_selection
    from_to 0.4 0.8 0.6 -0.8
    vesk set_select_mode surface
    check "the right side is selected" {[count surfaces] == 4}
    press .main.tools.extrude
    from_to 0.5 0 1.0 0
    check "extruded on both sides" {[vesk undo_name] eq "extrude"}
    check "the side where one works stays selected" {[count surfaces] == 4}
    check "two arms" {[near [width] 2 0.02]}
    vesk set_view_tool none
    press .main.tools.move
    shot solids-arms
    press .status.symmetry
    check "the badge switches it off" {$::prefs_symmetry_axis == 0 && ![shown .status.symmetry]}

    # ---- soft selection ----
    fresh {
        set ::prefs_meshx 16
        set ::prefs_meshy 16
        vesk create mesh 0 -1 -1 0 1 1 0
    }
    at xy {*}[spot 1.4 1.2]
    vesk set_select_mode vertex
    vesk clear_selection
    key ctrl+shift+o
    check "the key switches soft selection on" {$::prefs_soft_selection == 1}
    check "the bar has the radius" {[winfo exists .opt.tool.f2]}
    set ::prefs_soft_radius 0.5
    click_at 0 0
    check "a vertex is selected" {[count vertices] == 1}
    shot solids-soft
    set before $::undo_count
    begin 0 0 0.3 0.3
    xdo click 4
    check "the wheel makes the radius larger" {$::prefs_soft_radius > 0.54}
    check "the drag goes on" {[vesk undo_name] ne "move"}
    shot solids-dragged
    page_picture soft
    release 1
    check "one record" {$::undo_count == $before + 1 && [vesk undo_name] eq "move"}
    check "the echo repeats it" {
        [string match "*vesk soft_selection 1 0.55* smooth space*vesk move_with_undo *" \
            [::vesk::console::last 6]]
    }
    vesk select_elements set $::cube:142
    check "a neighbour went part of the way" {
        [count vertices] == 1 && [lindex [centre] 1] > 0.02 && [lindex [centre] 1] < 0.28
    }
    key ctrl+shift+o
    check "off again" {$::prefs_soft_selection == 0 && ![winfo exists .opt.tool.f2]}

    # ---- copies by the menu, live ----
    fresh
    open_options copies array
    after 300
    set ::vesk::options::fields(0) 4
    check "the row is shown at once" {[llength [top_objects]] == 5}
    key Escape
    check "Escape takes it back" {[llength [top_objects]] == 1}

    # ---- a slice by the menu, live ----
    fresh {vesk create box 0 0.5 -0.3 -0.5 1.5 1.034567 0.5}
    set options [open_options surface slice]
    check "cut through its middle at once" {[info_of $::cube surfaces] == 10}
    shot solids-slice
    $options.in.f1 delete 0 end
    $options.in.f1 insert 0 5
    check "a plane beside it cuts nothing" {[info_of $::cube surfaces] == 6}
    key Escape
    check "Escape leaves no step" {![winfo exists $options] && [made] == 0}
    set options [open_options surface slice]
    $options.in.f6 set "The back"
    check "the half below stays" {[near [lindex [size] 1] [expr {1.334567 / 2}] 1e-5]}
    key Return
    check "one step" {[made] == 1 && [vesk undo_name] eq "slice"}
    ::vesk::options::again
    $options.in.f7 set "Closed by polygons"
    check "opened again it cuts at the same place" {
        [info_of $::cube surfaces] == 6 && [near [lindex [size] 1] [expr {1.334567 / 2}] 1e-5]
    }
    key Escape
    check "and takes only that back" {[info_of $::cube surfaces] == 5 && [made] == 1}

    # ---- a boolean that follows its tool ----
    fresh {
        vesk create box 0 -1 -0.5 -0.5 0.5 0.5 0.5
        vesk create box 0 0.2 -0.2 -0.2 1 0.2 0.2
    }
    vesk clear_selection
    lassign [top_objects] block drill
    vesk object_select $block
    vesk object_select $drill
    set options [open_options object boolean]
    $options.in.f0 set Difference
    press $options.in.f2
    check "the tool is selected, to be moved" {[vesk get_selected_objects] == $drill}
    check "the result is told" {[status] eq "boolean - 11 surfaces; Return keeps it"}
    check "both are still there" {[llength [top_objects]] == 2 && [made] == 0}
    shot solids-live
    press .main.tools.move
    begin 0.6 0 -0.25 0 "" xz
    check "it follows the drag" {[status] eq "boolean - 12 surfaces; Return keeps it"}
    release 1
    shot solids-live-moved
    key Return
    check "Return keeps it, as one step" {
        ![winfo exists $options] && [llength [top_objects]] == 1 && [vesk undo_name] eq "boolean"
        && [info_of $block surfaces] == 12
    }
    xdo key ctrl+z
    check "one step back: both, as they were" {
        [llength [top_objects]] == 2 && [near [info_of $drill centre] {0.6 0 0}]
    }
    set options [open_options object boolean]
    press $options.in.f2
    wait_until {[vesk get_selected_objects] == $drill}
    from_to 0.6 0 0.6 0.4
    check "moved" {[near [info_of $drill centre] {0.6 0.4 0}]}
    key Escape
    check "Escape takes the move back, too" {
        ![winfo exists $options] && [near [info_of $drill centre] {0.6 0 0}]
        && [llength [vesk get_selected_objects]] == 2
    }

    # ---- long work ----
    fresh {
        set ::prefs_num_surface_div 350
        vesk create sphere 0 -1 -1 -1 1 1 1
    }
    set ::seen {}
    trace add execution ::set_progress_bar leave {apply {{words args} {
        if {[lindex $words 1] > 0} {lappend ::seen [. cget -cursor]}
    }}}
    vesk reduce 50
    check "long work shows the watch, until it ends" {
        "" ni $::seen && [. cget -cursor] eq ""
    }
    set ::prefs_num_surface_div 10

    # ---- placing ----
    fresh {
        vesk create box 0 -1 -1 -0.5 1 -0.5 0.5
        vesk create box 0 -1.5 0.8 -0.1 -1.3 1 0.1
    }
    vesk clear_selection
    click_at -1.4 0.9
    check "the small box is selected" {[llength [vesk get_selected_objects]] == 1}
    ::vesk::tools::choose place
    check "the tool is chosen" {$::vesk::view_tool eq "place_on_surface"}
    begin -1.4 0.9 0.5 -0.7
    check "it follows the pointer" {[near [lindex [centre] 0] 0.5 0.02]}
    check "and stands on the front" {[lindex [centre] 2] > 0.5}
    shot solids-placed
    release 1
    check "one record" {[vesk undo_name] eq "place"}
    check "it is echoed" {[string match "*vesk place_on_surface *" [::vesk::console::last 4]]}
    begin 0.5 -0.7 -0.5 -0.7
    key Escape
    release 1
    check "Escape takes a drag back" {[near [lindex [centre] 0] 0.5 0.02]}
    xdo key ctrl+z
    ::vesk::tools::choose move
}

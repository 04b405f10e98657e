# edges.tcl --
#   Edge mode with a real mouse and keys: picking, loops by a double click, the menu, the loop cut's
#   tool.

source [file join [file dirname [info script]] support.tcl]
source [file join [file dirname [info script]] frontview.tcl]

proc edges {} {return [vesk selection_get_num_edges]}

run {
    fresh
    at xy {*}[spot 0.8 0.8]
    key d
    check "D is edge mode" {$::vesk::select_mode eq "edge" && [edges] == 12}
    click_at 0.8 0.8
    check "a click on the ground selects nothing" {[edges] == 0}
    click_at 0 0.5
    check "a click takes the edge in front" {[edges] == 1}
    check "its ends are the selected vertices" {[count vertices] == 2}
    check "it is echoed" {[string match "*vesk edge_select *" [::vesk::console::last 3]]}
    xdo keydown shift
    click_at 0.5 0
    xdo keyup shift
    check "Shift adds another" {[edges] == 2}
    click_at 0.5 0
    click_at 0 0.5 "" 2
    check "a double click takes the loop" {[edges] > 1}
    check "the menu of edges can be used" {
        [::vesk::menus::fits element [::vesk::menus::now]]
    }
    vesk clear_selection

    # ---- the loop cut's tool ----
    press .main.tools.loopcut
    check "the tool is chosen" {$::vesk::view_tool eq "loop_cut"}
    at xy {*}[spot 0.8 0.8]
    set plain [picture xy]
    at xy {*}[spot 0.1 0.5]
    check "the cut is shown before the click" {[difference $plain [picture xy]] > 0}
    xdo click 4
    check "the wheel makes it two" {[status] eq "loop cut - 2 loops"}
    set before [made]
    click_at 0.1 0.5
    check "a click cuts, as one step" {
        [info_of [top_objects] surfaces] == 14 && [vesk undo_name] eq "loop cut"
        && [made] == $before + 1
    }
    check "the new loops are selected" {[edges] == 8}
    check "echoed" {[string match "*vesk loop_cut_at *" [::vesk::console::last 4]]}
    xdo key ctrl+z
    check "Ctrl+Z takes it back" {[info_of [top_objects] surfaces] == 6}
    xdo key ctrl+shift+z
    check "Ctrl+Shift+Z makes it again, with its selection" {
        [info_of [top_objects] surfaces] == 14 && [edges] == 8
    }
    key Escape

    # ---- the knife ----
    xdo key ctrl+z
    vesk clear_selection
    press .main.tools.knife
    at xy {*}[spot 0.8 0.8]
    set plain [picture xy]
    click_at -0.49 0.2
    click_at 0 0
    at xy {*}[spot 0.49 -0.1]
    check "the line is shown before it cuts" {[difference $plain [picture xy]] > 0}
    shot edges-knife
    page_picture edges-knife 0
    click_at 0.49 -0.1
    check "clicks change nothing" {[info_of [top_objects] surfaces] == 6}
    key BackSpace
    key BackSpace
    click_at 0.2 0.49
    set before [made]
    key Return
    check "Return cuts, as one step" {
        [info_of [top_objects] surfaces] == 7 && [vesk undo_name] eq "knife"
        && [made] == $before + 1
    }
    check "the knife is echoed" {[string match "*vesk knife *-0.5 0.*" [::vesk::console::last 4]]}
    xdo key ctrl+z
    check "Ctrl+Z takes the knife back" {[info_of [top_objects] surfaces] == 6}
    click_at -0.49 0.2
    key Escape
    check "Escape drops the line, not the tool" {$::vesk::view_tool eq "knife"}
    key Return
    check "nothing is left of it" {[info_of [top_objects] surfaces] == 6}

    # ---- the slice ----
    vesk set_select_mode object
    vesk select_all
    press .main.tools.slice
    hold [widget xy] {*}[spot -0.8 0.1] {*}[spot 0.8 0.2]
    check "the outline of the cut is shown" {[difference $plain [picture xy]] > 0}
    shot edges-slice
    release
    check "a drag slices" {[info_of [top_objects] surfaces] == 10 && [vesk undo_name] eq "slice"}
    check "the slice is echoed" {[string match "*vesk slice *both 0*" [::vesk::console::last 4]]}
    xdo key ctrl+z
    check "Ctrl+Z takes the slice back" {[info_of [top_objects] surfaces] == 6}

    press .main.tools.slice
    check "what a slice keeps can be chosen" {[.opt.tool.f1 get] eq "Both sides"}

    # ---- operations that follow the mouse ----
    vesk set_select_mode edge
    vesk clear_selection
    press .main.tools.edgebevel
    set plain [picture xy]
    hold [widget xy] {*}[spot 0.1 0.5] {*}[spot 0.3 0.5]
    check "the bevel shows while it is dragged" {[info_of [top_objects] surfaces] == 7}
    xdo click 4
    check "the wheel adds segments" {[info_of [top_objects] surfaces] == 8}
    check "the option bar follows" {$::vesk::tools::option(bevel_segments) == 2}
    shot edges-bevel
    key Escape
    xdo mouseup 1
    check "Escape takes it back" {[info_of [top_objects] surfaces] == 6}
    set before [made]
    hold [widget xy] {*}[spot 0.1 0.5] {*}[spot 0.3 0.5]
    type 0.25
    key Return
    xdo mouseup 1
    check "a typed width, as one step" {
        [info_of [top_objects] surfaces] == 8 && [vesk undo_name] eq "bevel edges"
        && [made] == $before + 1
    }
    check "the bevel is echoed" {[string match "*vesk edge_bevel 0.25 2 0.5*" [::vesk::console::last 4]]}
    xdo key ctrl+z
    vesk set_select_mode surface
    vesk clear_selection
    press .main.tools.inset
    from_to 0 0 0.2 0
    check "the inset of what was pressed" {
        [info_of [top_objects] surfaces] == 10 && [count surfaces] == 1
    }
    xdo key ctrl+z
    check "and back" {[info_of [top_objects] surfaces] == 6}
    vesk set_tool_option bevel_segments 1

    # ---- the options of what was dragged, once more ----
    from_to 0 0 0.2 0
    check "an inset" {[info_of [top_objects] surfaces] == 10}
    set records [made]
    key ctrl+shift+r
    set options [::vesk::view::area].options
    check "its numbers stand in the options" {
        [front $options] && [$options.in.f0 get] == 0.2 && [$options.in.f2 get] eq "Each"
    }
    press $options.in.f1
    key ctrl+a
    type 0.3
    key Return
    check "another depth, as the same step" {
        ![winfo exists $options] && [near [lindex [centre] 2] 0.8] && [made] == $records
    }

    # ---- edges move as vertices do ----
    fresh
    vesk set_select_mode edge
    vesk clear_selection
    press .main.tools.move
    click_at 0 0.5
    from_to 0 0.5 0 0.8
    check "a drag moves the edge" {[edges] == 1 && [near [lindex [centre] 1] 0.8]}
    enter .opt.tool.x 0.25
    press .opt.tool.apply
    check "so do typed numbers" {[near [lindex [centre] 0] 0.25]}
    from_to 0.83 0.88 1.03 0.88
    check "a handle resizes it" {[near [lindex [size] 0] 1.2] && [edges] == 1}
    press .main.tools.rotate
    enter .opt.tool.z 90
    press .opt.tool.apply
    check "a typed angle turns it" {[near [lrange [size] 0 1] {0 1.2}] && [edges] == 1}
    foreach step {1 2 3 4} {xdo key ctrl+z}
    check "four steps back" {[near [centre] {0 0.5 0.5}] && [near [lindex [size] 0] 1]}
}

# mouse.tcl --
#   What the mouse does in the views beside the tools: cameras, the thing behind, context menus, what
#   Escape ends first; the palette and the material tab; number fields of the panels.

source [file join [file dirname [info script]] support.tcl]
source [file join [file dirname [info script]] frontview.tcl]

proc where {} {return [vesk person_get_loc_dir]}
proc moved {before} {
    foreach a $before b [where] {if {abs($a - $b) > 1e-4} {return 1}}
    return 0
}
proc nothing {} {
    return [expr {[vesk selection_get_num_objects] + [vesk selection_get_num_surfaces]
        + [vesk selection_get_num_vertices] == 0}]
}
proc menu_labels {path} {
    set result {}
    for {set i 0} {$i <= [$path index end]} {incr i} {
        if {[$path type $i] ne "separator"} {lappend result [string trim [$path entrycget $i -label]]}
    }
    return $result
}

::test::run {
    foreach {name value} {prefs_gridsnap 0 prefs_snap_near 0 prefs_grid 0.1} {set ::$name $value}
    vesk clear_all
    vesk reset_views
    vesk set_select_mode object
    set back [vesk create box 0 -0.5 -0.5 -2 0.5 0.5 -1]
    set front [vesk create box 0 -0.5 -0.5 1 0.5 0.5 2]
    vesk clear_selection
    ::test::pause 300

    # ---- picking ----
    click_at 0.2 0.1
    ::test::check "a click takes what is in front" {[vesk get_selected_objects] eq $front}
    click_at 0.2 0.1
    ::test::check "a second one at the place what is behind" {[vesk get_selected_objects] eq $back}
    click_at 0.2 0.1
    ::test::check "and a third the first again" {[vesk get_selected_objects] eq $front}
    click_at 0.2 0.1 shift
    ::test::check "Shift changes one" {[llength [vesk get_selected_objects]] in {0 2}}
    vesk clear_selection
    from_to -1 -0.8 1 0.8
    from_to -1 -0.9 1 0.9 ctrl
    ::test::check "Control and a band remove" {[vesk get_selected_objects] eq ""}
    lassign [spot -1.5 1] px py
    ::test::at xy $px $py
    exec xdotool click --repeat 2 --delay 80 1
    ::test::pause 300
    ::test::check "a double click on nothing does nothing" {
        [lindex [vesk get_app_mode] 0] eq "object" && $::viewsetting eq "all"
    }

    # ---- cameras ----
    set before [::test::picture xy]
    ::test::at xy 60 60
    exec xdotool keydown alt mousedown 1
    foreach x {70 90 110} {::test::at xy $x 60}
    exec xdotool mouseup 1 keyup alt
    ::test::pause 300
    ::test::check "Alt and the left button pan" {
        [::test::difference $before [::test::picture xy]] > 0.02 && [vesk get_selected_objects] eq ""
    }
    vesk reset_views
    set w [::test::widget xyz]
    set mx [expr {[winfo width $w] / 2}]
    set my [expr {[winfo height $w] - 30}]
    vesk keypress 3 1 0
    ::test::at xyz $mx $my
    # By one process: a hand does not wait for the next one to start.
    set steps [concat {*}[lrepeat 12 {mousemove_relative 8 0 sleep 0.012}]]
    exec xdotool mousedown 1 {*}$steps mouseup 1 &
    ::test::pause 600
    set first [::test::picture xyz]
    ::test::pause 400
    ::test::check "a flick keeps it spinning" {[::test::difference $first [::test::picture xyz]] > 0.005}
    ::test::at xyz 30 $my
    exec xdotool click 1
    ::test::pause 300
    set first [::test::picture xyz]
    ::test::pause 400
    ::test::check "a press stops it" {[::test::difference $first [::test::picture xyz]] < 0.001}
    key 2
    foreach {what button dx dy} {"the left button walks" 1 0 -40 "the middle one looks around" 2 40 0
            "the right one slides" 3 0 -40} {
        set before [where]
        ::test::at xyz $mx $my
        exec xdotool mousedown $button
        ::test::at xyz [expr {$mx + $dx / 2}] [expr {$my + $dy / 2}]
        ::test::at xyz [expr {$mx + $dx}] [expr {$my + $dy}]
        ::test::pause 300
        exec xdotool mouseup $button
        ::test::pause 200
        ::test::check "walking: $what" {[moved $before] && ![winfo exists .popup]}
    }
    set before [where]
    exec xdotool click 4
    ::test::pause 200
    set on [where]
    ::test::check "walking: the wheel goes forward" {[moved $before]}
    exec xdotool click 5
    ::test::pause 200
    ::test::check "and back" {![moved $before]}
    key 1
    key shift+space

    # ---- context menus, and what Escape ends first ----
    foreach {mode entry} {object Hide surface Extrude... vertex Insert} {
        vesk set_select_mode $mode
        vesk select_all
        ::test::at xy 60 200
        exec xdotool click 3
        ::test::pause 300
        ::test::check "the right button opens the menu of the $mode mode" {
            [winfo exists .popup] && [winfo ismapped .popup] && $entry in [menu_labels .popup]
        }
        key Escape
        ::test::check "Escape closes the menu only" {
            !([winfo exists .popup] && [winfo ismapped .popup]) && ![nothing]
        }
    }
    vesk set_select_mode object
    vesk select_all
    ::test::at xy 60 60
    ::test::drag xy 3 60 60 0 30
    ::test::check "a drag of the right button opens none" {
        !([winfo exists .popup] && [winfo ismapped .popup])
    }
    vesk reset_views
    vesk set_draw_mode polygon
    click_at -1 0.9
    click_at 1 0.9
    key Escape
    ::test::check "Escape drops the polygon first" {
        ![nothing] && $::vesk::draw_mode eq "polygon"
    }
    key Escape
    ::test::check "then the selection" {[nothing]}
    vesk set_draw_mode box
    set ids [vesk object_get_children [vesk get_world]]
    from_to -1 0.9 -0.4 0.6 shift
    ::test::check "Shift makes a box of equal sides" {
        [near [lrange [vesk get_selection_size] 0 1] {0.6 0.6}]
    }
    from_to 0 0 0.4 0.3 ctrl
    ::test::check "Control draws from the centre" {
        [near [vesk get_selection_size] {0.8 0.6 0.7}] && [near [lrange [vesk get_selection_centre] 0 1] {0 0}]
    }
    click_at -1.2 -0.9
    ::test::check "a click makes the regular one" {[near [vesk get_selection_size] {1 1 1}]}
    vesk set_draw_mode move

    # ---- the palette and the material tab ----
    vesk clear_all
    vesk new_cube
    vesk select_all
    set tabs .main.right.tabs
    $tabs select $tabs.palette
    ::test::pause 300
    focus $tabs.palette.grid
    set records $::undo_count
    key Home
    key Right Right
    key Return
    ::test::check "arrow keys choose a colour, Return applies it" {
        [lindex [vesk material_counts] $::vesk::palette::current] == 6 && $::undo_count == $records + 1
    }
    set step [::vesk::palette::swatch_step]
    ::test::press $tabs.palette.grid [expr {4 * $step + 8}] 8
    ::test::check "a click applies another" {[lindex [vesk material_counts] 4] == 6}
    ::test::press $tabs.palette.grid [expr {3 * $step + 8}] 8 1 2
    ::test::check "a double click edits it" {
        [$tabs select] eq "$tabs.material" && $::vesk::palette::current == 3
    }
    set records $::undo_count
    set scale [winfo children $tabs.material.rows]
    set scale [lindex [lsearch -all -inline $scale *.btransparency] 0]
    set other [lindex [lsearch -all -inline [winfo children $tabs.material.rows] *.bshininess] 0]
    foreach {bar from to} [list $scale 8 60 $other 10 50 $scale 60 30] {
        ::test::point_at $bar $from
        exec xdotool mousedown 1
        foreach share {0.5 1} {::test::point_at $bar [expr {round($from + ($to - $from) * $share)}]}
        exec xdotool mouseup 1
        ::test::pause 200
    }
    ::test::check "several sliders of one material are one undo step" {
        $::undo_count == $records + 1
    }

    # ---- number fields ----
    $tabs select $tabs.object
    vesk clear_all
    vesk new_cube
    vesk select_all
    ::test::pause 300
    set field $tabs.object.positionx.value
    focus -force $field
    set places 0
    foreach keys {Up shift+Up ctrl+Up Down} {
        key $keys
        lappend places [lindex [vesk get_selection_centre] 0]
    }
    set steps [lmap a [lrange $places 0 end-1] b [lrange $places 1 end] {expr {$b - $a}}]
    set unit [lindex $steps 0]
    ::test::check "Up and Down step, Shift ten times, Control a tenth: $steps" {
        $unit > 0 && [near $steps [list $unit [expr {10 * $unit}] [expr {$unit / 10}] [expr {-$unit}]] 1e-4]
    }
    foreach {text wanted} {1/3 0.333333 2*0.5 1 +=0.1 1.1} {
        focus $field
        $field selection range 0 end
        ::test::type $text
        key Return
        ::test::check "$text is understood" {abs([lindex [vesk get_selection_centre] 0] - $wanted) < 1e-4}
    }
    focus $field
    $field selection range 0 end
    ::test::type 55
    key Escape
    ::test::check "Escape restores" {abs([lindex [vesk get_selection_centre] 0] - 1.1) < 1e-4}
    ::test::check "no script failed" {$::test::errors eq {}}
}

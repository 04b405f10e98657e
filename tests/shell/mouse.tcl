# mouse.tcl --
#   What the mouse does in the views beside the tools: cameras, the thing behind, context menus,
#   what Escape ends first; the palette and the material tab; number fields of the panels.

source [file join [file dirname [info script]] support.tcl]
source [file join [file dirname [info script]] frontview.tcl]

proc where {} {return [vesk person_get_loc_dir]}
proc moved {before} {
    foreach a $before b [where] {if {abs($a - $b) > 1e-4} {return 1}}
    return 0
}
proc nothing {} {return [expr {[count objects] + [count surfaces] + [count vertices] == 0}]}
proc popped_up {} {return [expr {[winfo exists .popup] && [winfo ismapped .popup]}]}

run {
    vesk clear_all
    vesk reset_views
    vesk set_select_mode object
    set back [vesk create box 0 -0.5 -0.5 -2 0.5 0.5 -1]
    set front [vesk create box 0 -0.5 -0.5 1 0.5 0.5 2]
    vesk clear_selection

    # ---- picking ----
    click_at 0.2 0.1
    check "a click takes what is in front" {[vesk get_selected_objects] eq $front}
    click_at 0.2 0.1
    check "a second one at the place what is behind" {[vesk get_selected_objects] eq $back}
    click_at 0.2 0.1
    check "and a third the first again" {[vesk get_selected_objects] eq $front}
    click_at 0.2 0.1 shift
    check "Shift changes one" {[llength [vesk get_selected_objects]] in {0 2}}
    vesk clear_selection
    from_to -1 -0.8 1 0.8
    from_to -1 -0.9 1 0.9 ctrl
    check "Control and a band remove" {[vesk get_selected_objects] eq ""}
    click_at -1.5 1 "" 2
    check "a double click on nothing does nothing" {
        [mode] eq "object" && $::viewsetting eq "all"
    }

    # ---- cameras ----
    set before [picture xy]
    hold [widget xy] 60 60 110 60 1 alt
    release 1 alt
    check "Alt and the left button pan" {
        [difference $before [picture xy]] > 0.02 && [vesk get_selected_objects] eq ""
    }
    vesk reset_views
    set w [widget xyz]
    set mx [expr {[winfo width $w] / 2}]
    set my [expr {[winfo height $w] - 30}]
    vesk keypress 3 1 0
    at xyz $mx $my
    set still [picture xyz]
    # By one process: a hand does not wait for the next one to start.
    set steps [concat {*}[lrepeat 12 {mousemove_relative 8 0 sleep 0.012}]]
    exec xdotool mousedown 1 {*}$steps mouseup 1 &
    wait_until {[difference $still [picture xyz]] > 0.05}
    pause 400
    set first [picture xyz]
    check "a flick keeps it spinning" {[difference $first [picture xyz]] > 0.005}
    click xyz 1 30 $my
    set first [picture xyz]
    pause 400
    check "a press stops it" {[difference $first [picture xyz]] < 0.001}
    key 2
    foreach {what button dx dy} {"the left button walks" 1 0 -40 "the middle one looks around" 2 40 0
            "the right one slides" 3 0 -40} {
        set before [where]
        hold $w $mx $my [expr {$mx + $dx}] [expr {$my + $dy}] $button
        release $button
        check "walking: $what" {[moved $before] && ![winfo exists .popup]}
    }
    set before [where]
    xdo click 4
    check "walking: the wheel goes forward" {[moved $before]}
    xdo click 5
    check "and back" {![moved $before]}
    key 1
    key shift+space

    # ---- context menus, and what Escape ends first ----
    foreach {mode entry} {object Hide surface Extrude... vertex Insert} {
        vesk set_select_mode $mode
        vesk select_all
        click xy 3 60 200
        check "the right button opens the menu of the $mode mode" {
            [popped_up] && $entry in [menu_labels .popup]
        }
        key Escape
        check "Escape closes the menu only" {![popped_up] && ![nothing]}
    }
    vesk set_select_mode object
    vesk select_all
    drag xy 3 60 60 0 30
    check "a drag of the right button opens none" {![popped_up]}
    vesk reset_views
    vesk set_draw_mode polygon
    click_at -1 0.9
    click_at 1 0.9
    key Escape
    check "Escape drops the polygon first" {![nothing] && $::vesk::draw_mode eq "polygon"}
    key Escape
    check "then the selection" {[nothing]}
    vesk set_draw_mode box
    from_to -1 0.9 -0.4 0.6 shift
    check "Shift makes a box of equal sides" {[near [lrange [size] 0 1] {0.6 0.6}]}
    from_to 0 0 0.4 0.3 ctrl
    check "Control draws from the centre" {
        [near [size] {0.8 0.6 0.7}] && [near [lrange [centre] 0 1] {0 0}]
    }
    click_at -1.2 -0.9
    check "a click makes the regular one" {[near [size] {1 1 1}]}
    vesk set_draw_mode move

    # ---- the palette and the material tab ----
    fresh
    set tabs .main.right.tabs
    open_tab palette
    focus $tabs.palette.grid
    key Home
    key Right Right
    key Return
    check "arrow keys choose a colour, Return applies it" {
        [lindex [vesk material_counts] $::vesk::palette::current] == 6 && [made] == 1
    }
    set step [::vesk::palette::swatch_step]
    press $tabs.palette.grid [expr {4 * $step + 8}] 8
    check "a click applies another" {[lindex [vesk material_counts] 4] == 6}
    press $tabs.palette.grid [expr {3 * $step + 8}] 8 1 2
    check "a double click edits it" {
        [$tabs select] eq "$tabs.material" && $::vesk::palette::current == 3
    }
    set records $::undo_count
    set bars $tabs.material.rows.b
    # Generated events: changes further apart than the pause of a series are steps of their own, and a
    # busy machine takes that long to move a pointer.
    foreach {bar from to} {transparency 8 60 shininess 10 50 transparency 60 30} {
        event generate $bars$bar <Button-1> -x $from -y 8
        event generate $bars$bar <B1-Motion> -x $to -y 8
        update
        event generate $bars$bar <ButtonRelease-1> -x $to -y 8
    }
    check "several sliders of one material are one undo step" {$::undo_count == $records + 1}

    # ---- number fields ----
    open_tab object
    fresh
    set field $tabs.object.positionx.value
    focus -force $field
    set places 0
    foreach keys {Up shift+Up ctrl+Up Down} {
        key $keys
        lappend places [lindex [centre] 0]
    }
    set steps [lmap a [lrange $places 0 end-1] b [lrange $places 1 end] {expr {$b - $a}}]
    set unit [lindex $steps 0]
    check "Up and Down step, Shift ten times, Control a tenth: $steps" {
        $unit > 0 && [near $steps [list $unit [expr {10 * $unit}] [expr {$unit / 10}] [expr {-$unit}]] 1e-4]
    }
    foreach {text wanted} {1/3 0.333333 2*0.5 1 +=0.1 1.1} {
        focus $field
        $field selection range 0 end
        type $text
        key Return
        check "$text is understood" {abs([lindex [centre] 0] - $wanted) < 1e-4}
    }
    focus $field
    $field selection range 0 end
    type 55
    key Escape
    check "Escape restores" {abs([lindex [centre] 0] - 1.1) < 1e-4}
}

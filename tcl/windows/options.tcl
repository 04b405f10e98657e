# options.tcl --
#   The options of an operation at the lower left of the focused view. Most operations show their
#   result at once, and the options of the last one can be opened once more.

namespace eval ::vesk::options {
    variable fields             ;# row -> text or value of its field
    variable kept               ;# last typed values: command -> list
    # Operations whose options show their result at once, unless the selection is large.
    variable live {extrude_normal extrude_select extrude_each extrude_normals shell inset loop_cut edge_bevel vertex_bevel
        extrude_edges slide bridge fill_hole hole_select
        bevel_select surface_spike surface_spline revolve surface_loop_subdivision catmull_clark reduce
        move_with_undo move_to scale size_to rotate_with_undo rotate_about_with_undo
        rotate_axis_angle_with_undo rotate_about_axis scale_along mirror_along move_along duplicate_along weld_distance smooth_vertices quads_from_triangles
        set_texture_repeats set_texture_offsets array array_round array_path mirror_copy symmetrize
        align distribute drop bend taper twist inflate noise push_normals boolean slice}
    # Words of the kinds axis and pivot.
    variable axes {X x Y y Z z "Mean normal" normal "Last used" last Picked picked}
    variable pivots {Selection selection Origin origin "3D cursor" cursor Picked picked}
    # Of these every opening starts anew: the last numbers would move the selection at once.
    variable afresh {move_with_undo scale rotate_with_undo rotate_about_with_undo}
    variable present            ;# row -> its number before it was typed, as shown and exact
    variable live_limit 20000   ;# vertices
    variable session {}         ;# of the open options: start, now, words, timer
    variable last ""            ;# of the options kept last: title, target, help, start, now
    array set kept {}
}

# ask --
#   Opens the options of a command. A result that shows at once is kept with Return or Keep and
#   taken back with Escape; other commands run on Return or Apply.
#   target  command, then fields {label kind default ...}:
#             number, int, text   typed, an argument each
#             from KEY            a number, kept in the preference
#             centre 0|1|2, size 0|1|2   a number that starts as the selection has it: nothing is done
#                         before something is typed
#             middle 0|1|2   a number that starts at the middle of the selection
#             setting KEY number|int   a number, kept in the scripts' own settings
#             choice {text value ...}
#             axis TEXT, pivot TEXT   a choice of axes, of pivots, with that one at first
#             open_file SUFFIXES, save_file SUFFIX   a file name with a dialog
#             pref KEY number|int|bool   edits a preference, is no argument
#             follow      a check box, no argument: the result is shown while its objects are moved, by
#                         the commands COMMAND_live, COMMAND_live_keep and COMMAND_live_cancel
#   before  the operation whose options are opened again, as `last`; "" for a new one
proc ::vesk::options::ask {title target help {before ""}} {
    set items [lassign $target command]
    # A file name alone needs only the file dialog.
    if {[llength $items] == 1 && [lindex $items 0 1] in {open_file save_file}} {
        run_with_file $command [lindex $items 0] $title
        return
    }
    set w [::vesk::view::area].options
    begin_session $w $command $items
    variable session
    dict set session row [dict create title $title target $target help $help]
    if {$before ne ""} {
        # The model is the result already, made with the values in the fields.
        dict set session start [dict get $before start]
        dict set session words [dict get $before words]
        dict set session original [lindex [dict get $before words] 1]
        dict set session exact [dict get $before exact]
    }
    build $w $title
    set kinds [lmap item $items {lindex $item 1}]
    if {$before eq "" && ("centre" in $kinds || "size" in $kinds)} {
        # What starts as it is changes nothing before something is typed.
        dict set session words [typed_words [read_options 0]]
    }
    ::vesk::view::place_options $w
    if {[llength $items] > 0} {
        focus $w.in.f0
        if {[winfo class $w.in.f0] eq "TEntry"} {$w.in.f0 selection range 0 end}
    } else {
        focus $w.in.row.apply
    }
    display_message $help
    follow_fields
}

proc ::vesk::options::can_again {} {
    variable last
    return [expr {$last ne "" && [history_place] == [dict get $last now]}]
}

# again --
#   The options of the last operation once more, as long as nothing was changed since: its result is
#   taken back and made anew while the numbers change.
proc ::vesk::options::again {} {
    variable last
    if {![can_again]} {
        display_message "there is no last operation whose options could be changed"
        return
    }
    ask [dict get $last title] [dict get $last target] [dict get $last help] $last
}

# note --
#   A tool of the mouse did an operation: its options can be opened once more, too.
#   words  the command that repeats it
proc ::vesk::options::note {words} {
    variable live_limit
    variable kept
    variable last
    if {[lindex [vesk get_counts] 4] >= $live_limit} {return}
    set command [lindex $words 0]
    foreach entry [::vesk::menus::all] {
        lassign [lindex $entry 1] kind label target key needs help
        if {$kind eq "ask" && [lindex $target 0] eq $command} {break}
    }
    set texts {}
    foreach item [lrange $target 1 end] word [lrange $words 1 end] {
        lassign $item name kind choices
        if {$kind eq "choice"} {set word [dict get [lreverse $choices] $word]}
        lappend texts $word
    }
    set kept($command) $texts
    set now [history_place]
    set last [dict create title [string trimright [string map {& {}} $label] .] target $target \
        help $help start [expr {$now - 1}] now $now words [list $words $texts] exact {}]
}

proc ::vesk::options::run_with_file {command item title} {
    set name [ask_file $item $title]
    if {$name eq ""} {return}
    set run [list ::vesk::ops::run $command $name]
    if {[string match write_* $command]} {set run [list ::vesk::issues::exporting $run]}
    {*}$run
}

# build --
#   The panel of the session: title, a row for each field, two buttons.
proc ::vesk::options::build {w title} {
    variable session
    variable fields
    variable present
    array unset fields
    array unset present
    ::vesk::parts::floating $w $title
    set row -1
    foreach item [dict get $session items] {
        add_field $w.in [incr row] $item [dict get $session command]
    }
    set run ::vesk::options::run
    set close ::vesk::options::close
    ttk::frame $w.in.row -style Panel.TFrame
    ttk::button $w.in.row.apply -style Panel.Default.TButton -command $run \
        -text [expr {[is_live] ? "Keep" : "Apply"}]
    ttk::button $w.in.row.close -style Panel.TButton -command $close \
        -text [expr {[is_live] ? "Cancel" : "Close"}]
    pack $w.in.row.close $w.in.row.apply -side right -padx [::vesk::theme::pad 8 0]
    grid $w.in.row - -sticky we -pady [::vesk::theme::pad 10 0]
    foreach child [concat [winfo children $w.in] [winfo children $w.in.row]] {
        # A label with bound keys would be a stop of Tab.
        if {[winfo class $child] in {TLabel TFrame}} {continue}
        ::vesk::fields::on_keys $child \
            [list Escape $close Return [expr {$child eq "$w.in.row.close" ? $close : $run}]]
    }
}

# ---- results at once ----

# begin_session --
#   The options of a command are opened: remembers where the history stands.
proc ::vesk::options::begin_session {w command items} {
    variable session
    variable live
    variable live_limit
    set vertices [lindex [vesk get_counts] 4]
    set on [expr {$command in $live && $vertices < $live_limit && [::vesk::menus::known $command]}]
    if {[following]} {vesk [dict get $session command]_live off}
    set session [dict create window $w command $command items $items live $on words {} \
        start [history_place] now [history_place] timer "" following 0]
}
proc ::vesk::options::is_live {} {
    variable session
    return [dict get $session live]
}

# following, follow --
#   Whether the result is only shown, while its objects are moved; shows it for the words of a command
#   (its first argument says what is made), or ends that.
proc ::vesk::options::following {} {
    variable session
    return [expr {$session ne "" && [dict get $session following]}]
}
proc ::vesk::options::follow {on words} {
    variable session
    if {$on || [following]} {
        ::vesk::ops::run [lindex $words 0]_live [expr {$on ? [lindex $words 1] : "off"}]
    }
    dict set session following $on
}
proc ::vesk::options::wants_to_follow {} {
    variable session
    variable fields
    set row [lsearch -exact -index 1 [dict get $session items] follow]
    return [expr {$row >= 0 && $fields($row)}]
}

# follow_ended --
#   The executable shows the result no more: its objects or its beginning are gone.
proc ::vesk::options::follow_ended {} {
    variable session
    if {![following]} {return}
    dict set session following 0
    dict set session now -1
    close
}

# reopened --
#   Whether the options are those of an operation that was done already.
proc ::vesk::options::reopened {} {
    variable session
    return [dict exists $session original]
}

# history_place --
#   The present place in the history.
proc ::vesk::options::history_place {} {
    return [lsearch -exact -index 2 [vesk history_list] 1]
}

# follow_fields, live_later --
#   Every change of a field asks for a new result, and so does the opening.
proc ::vesk::options::follow_fields {} {
    variable fields
    if {![is_live]} {return}
    trace add variable fields write ::vesk::options::live_later
    live_later
}
proc ::vesk::options::live_later {args} {
    variable session
    after cancel [dict get $session timer]
    dict set session timer [after 150 ::vesk::options::live_update]
}

# live_update --
#   Replaces the result by that of the present fields.
proc ::vesk::options::live_update {} {
    variable session
    if {![winfo exists [dict get $session window]]} {return}
    set words [read_options 0]
    if {$words eq ""} {return}
    set typed [typed_words $words]
    if {$typed eq [dict get $session words]} {return}
    if {![following]} live_take_back
    dict set session words $typed
    follow [wants_to_follow] $words
    if {![following]} {vesk {*}$words}
    vesk redraw_all
    dict set session now [history_place]
    ::vesk::ops::request
}

# typed_words --
#   The command's words with all fields: preferences among these are no words of it.
proc ::vesk::options::typed_words {words} {
    variable kept
    variable session
    return [list $words $kept([dict get $session command])]
}

# live_take_back --
#   Restores the state at the opening of the options. Other edits since then stay.
proc ::vesk::options::live_take_back {} {
    variable session
    set place [history_place]
    set start [dict get $session start]
    if {$place == [dict get $session now] && $place > $start} {
        vesk history_goto $start
    } else {
        dict set session start $place
    }
    dict set session now [history_place]
    dict set session words {}
}

# add_field --
#   One row of the options: label left, field right.
proc ::vesk::options::add_field {w row item command} {
    variable fields
    variable kept
    variable afresh
    lassign $item label kind default
    if {$kind in {axis pivot}} {
        # The words of both are in one place; the one asked for stands first.
        set texts [choices_of $kind]
        set default [dict merge [dict create $default [dict get $texts $default]] $texts]
        set kind choice
        set item [list $label choice $default]
    }
    set fields($row) [switch -- $kind {
        centre - size - middle {present_number $row $kind $default}
        from    {::vesk::arith::shown [set ::prefs_$default]}
        setting {::vesk::settings::get $default}
        pref    {set ::prefs_$default}
        follow  {expr 0}
        number - int - text - choice {
            expr {[info exists kept($command)] && $command ni $afresh
                ? [lindex $kept($command) $row] : $default}
        }
        default {set default}
    }]
    set path $w.f$row
    set options [list -textvariable ::vesk::options::fields($row)]
    switch -- [value_kind $item] {
        follow - bool {
            if {$kind eq "follow" && (![is_live] || [reopened])} {return}
            ttk::checkbutton $path -text $label -variable ::vesk::options::fields($row) \
                -style Panel.TCheckbutton
            grid $path - -sticky w -pady [::vesk::theme::px 4]
            return
        }
        choice {
            set texts [dict keys $default]
            if {$fields($row) ni $texts} {set fields($row) [lindex $texts 0]}
            set width [tcl::mathfunc::max 9 {*}[lmap text $texts {string length $text}]]
            ttk::combobox $path -values $texts -state readonly -width $width \
                -style Panel.TCombobox {*}$options
        }
        text - open_file - save_file {ttk::entry $path -width 24 -style Panel.TEntry {*}$options}
        default {
            ttk::entry $path -width 9 -justify right -font VeskNumber -style Panel.TEntry \
                {*}$options
        }
    }
    ttk::label $w.l$row -text $label -style Panel.Dim.TLabel
    grid $w.l$row $path -sticky we -pady [::vesk::theme::px 2]
    grid configure $w.l$row -padx [::vesk::theme::pad 0 12]
}

# present_number --
#   The text of a field of kind centre, size or middle; its exact number is kept. The middle of what
#   was sliced is elsewhere afterwards: opened again the field has the number that was used.
proc ::vesk::options::present_number {row kind axis} {
    variable session
    variable present
    variable kept
    if {$kind eq "middle" && [reopened]} {
        set exact [dict get $session exact]
        if {[dict exists $exact $row]} {set present($row) [dict get $exact $row]}
        return [lindex $kept([dict get $session command]) $row]
    }
    set exact [lindex [vesk get_selection_[expr {$kind eq "size" ? "size" : "centre"}]] $axis]
    set present($row) [list [::vesk::arith::shown $exact] $exact]
    return [lindex $present($row) 0]
}

# choices_of --
#   The texts and words of the kinds axis and pivot.
proc ::vesk::options::choices_of {kind} {
    variable axes
    variable pivots
    return [expr {$kind eq "axis" ? $axes : $pivots}]
}

# ask_file --
#   The file dialog of one field.
proc ::vesk::options::ask_file {item title} {
    lassign $item label kind suffixes
    set patterns [lmap suffix $suffixes {string cat * $suffix}]
    if {$kind eq "open_file"} {
        set filters [list [list $title $patterns] {"All files" *}]
        if {".p" in $suffixes} {
            return [::vesk::filebox::ask open $title [::vesk::plugins::folder] $filters]
        }
        return [::vesk::files::pick open $title $filters texture_file_path]
    }
    if {$suffixes eq ""} {set patterns *.vesk}
    set name [::vesk::filebox::ask save $title $::prefs_export_file_path \
        [list [list $title $patterns] {"All files" *}]]
    if {$name ne ""} {set ::prefs_export_file_path [file dirname $name]}
    return $name
}

# read_options --
#   The command with the values of the fields, of which preferences and settings are set; empty when
#   a number field holds no number.
#   tell  1: marks and reports that field
proc ::vesk::options::read_options {tell} {
    variable fields
    variable kept
    variable present
    variable session
    set words [list [dict get $session command]]
    set typed {}
    set row -1
    foreach item [dict get $session items] {
        lassign $item label kind default extra
        set text $fields([incr row])
        lappend typed $text
        if {[info exists present($row)] && [lindex $present($row) 0] eq $text} {
            set text [lindex $present($row) 1]
        }
        if {[value_kind $item] in {number int from centre size middle}} {
            set field [dict get $session window].in.f$row
            set wrong [catch {::vesk::arith::value $text} text]
            if {!$wrong || $tell} {::vesk::fields::mark_invalid $field $wrong}
            if {$wrong} {
                if {$tell} {
                    display_message "$label: $text"
                    focus $field
                }
                return ""
            }
            if {[value_kind $item] eq "int"} {set text [expr {int($text)}]}
        }
        if {$kind eq "choice"} {set text [dict get $default $text]}
        if {$kind in {axis pivot}} {set text [dict get [choices_of $kind] $text]}
        if {$kind eq "pivot" && $text eq "cursor"} {set text [join [vesk get_3d_cursor] ,]}
        if {$kind in {pref from}} {set ::prefs_$default $text}
        if {$kind eq "setting"} {::vesk::settings::set_value $default $text}
        if {$kind ni {pref follow}} {lappend words $text}
    }
    set kept([dict get $session command]) $typed
    return $words
}

# value_kind --
#   The kind of a field's value; of a preference or setting it stands behind the key.
proc ::vesk::options::value_kind {item} {
    lassign $item label kind default extra
    return [expr {$kind in {pref setting} ? $extra : $kind}]
}

# run --
#   Return, Keep or Apply.
proc ::vesk::options::run {} {
    variable session
    set words [read_options 1]
    if {$words eq ""} {return}
    if {![is_live]} {
        ::vesk::ops::run {*}$words
        return
    }
    live_update
    if {[following]} {
        keep_followed $words
        return
    }
    ::vesk::ops::echo vesk {*}$words
    variable last [dict merge [dict get $session row] [dict create \
        start [dict get $session start] now [history_place] words [dict get $session words] \
        exact [array get ::vesk::options::present]]]
    dict set session now -1
    close
}

# keep_followed --
#   Makes what is shown. Refused, the options stay: the message says what is in the way.
proc ::vesk::options::keep_followed {words} {
    variable session
    if {![::vesk::ops::run [lindex $words 0]_live_keep [lindex $words 2]]} {return}
    dict set session following 0
    dict set session now -1
    variable last ""
    close
}

# restore_original --
#   Makes the result again that was there when its options were opened once more.
proc ::vesk::options::restore_original {} {
    variable session
    variable fields
    set row -1
    foreach text [dict get $session original] {set fields([incr row]) $text}
    live_update
}

# takes_key --
#   Return and Escape in the views keep and take back a result that shows. Returns whether they did.
proc ::vesk::options::takes_key {key} {
    variable session
    if {$key ni {Return KP_Enter Escape} || ![is_live]} {return 0}
    if {$key eq "Escape"} close else run
    return 1
}

# close --
#   Cancel or Close, and the end of `run`.
proc ::vesk::options::close {} {
    variable session
    after cancel [dict get $session timer]
    if {[following]} {
        ::vesk::ops::run [dict get $session command]_live_cancel
        dict set session following 0
    } elseif {[is_live] && [dict get $session now] != -1} {
        if {[reopened]} restore_original else live_take_back
        vesk redraw_all
        ::vesk::ops::request
    }
    destroy [dict get $session window]
    ::vesk::view::focus_last
}

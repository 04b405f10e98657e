# dialogs.tcl --
#   Small windows: a question with buttons, the options of an operation at the lower left of the
#   focused view, and a window that shows a text. Plus the fields that panels share.

namespace eval ::vesk::dialogs {
    variable answer ""
    variable kept               ;# last typed values: command -> list
    # Operations whose options show their result at once, unless the selection is large.
    variable live {extrude surface_make_hole surface_bevel surface_spike surface_spline revolve
        surface_loop_subdivision reduce move_with_undo move_to scale size_to rotate_with_undo
        rotate_about_with_undo rotate_axis_angle_with_undo snaptogetherdistance
        set_texture_repeats set_texture_offsets}
    variable live_limit 20000   ;# vertices
    variable session {}         ;# of the open options: start, now, words, timer
    variable last ""            ;# of the options kept last: title, target, help, start, now
    array set kept {}
}

# ---- fields ----

# axis_field --
#   A field with a bold axis letter and a right-aligned number. Returns its entry.
#   axis      x, y or z (colour and letter)
#   variable  global name of the variable that the entry shows
#   prefix    surface it lies on: "", Panel.
proc ::vesk::dialogs::axis_field {path axis variable {prefix ""} {width 8}} {
    ttk::frame $path -style ${prefix}Axis.TFrame -padding [::vesk::theme::pad 6 3 4 3]
    ttk::label $path.letter -text [string toupper $axis] -style ${axis}Field.TLabel
    entry $path.value -textvariable $variable -justify right -borderwidth 0 \
        -highlightthickness 0 -width $width -font VeskNumber
    ::vesk::theme::recolour $path.value
    pack $path.letter -side left
    pack $path.value -side left -fill x -expand 1 -padx [::vesk::theme::pad 4 0]
    bind $path.value <FocusIn> +[list $path state focus]
    bind $path.value <FocusOut> +[list $path state !focus]
    foreach part [list $path $path.letter] {
        bind $part <Button-1> [list focus $path.value]
        bind $path <Enter> [list $path state active]
        bind $path <Leave> [list $path state !active]
    }
    return $path.value
}

# number_keys --
#   Makes an entry a number field: Return and leaving apply, Escape restores, Up and Down step
#   (Shift x 10, Control x 0.1), sums are computed. `apply` is called with the new number.
#   variable  the entry's variable
#   apply     words; the number is appended
#   unit      a step; "" the grid's spacing
proc ::vesk::dialogs::number_keys {entry variable apply {unit ""}} {
    bind $entry <FocusIn> +[list ::vesk::dialogs::number_begin %W $variable]
    bind $entry <Return> [list ::vesk::dialogs::number_done %W $variable $apply]
    bind $entry <KP_Enter> [list ::vesk::dialogs::number_done %W $variable $apply]
    bind $entry <FocusOut> +[list ::vesk::dialogs::number_done %W $variable $apply]
    foreach event {Return KP_Enter} {bind $entry <$event> {+::vesk::view::done_in %W}}
    bind $entry <Button-1> {+set ::vesk::view::done ""}
    bind $entry <Escape> [list ::vesk::dialogs::number_escape %W $variable]
    foreach {key step} {Up 1 Down -1} {
        foreach {modifier factor} {{} 1 Shift- 10 Control- 0.1} {
            bind $entry <${modifier}Key-$key> [list ::vesk::dialogs::number_step %W $variable \
                $apply [expr {$step * $factor}] $unit]
        }
    }
}

# number_begin --
#   Remembers what the field showed, for Escape and to see whether anything was typed.
proc ::vesk::dialogs::number_begin {w variable} {
    variable before
    set before($w) [set $variable]
    if {[winfo class $w] in {Entry TEntry}} {$w selection range 0 end}
}

# being_typed --
#   Whether a field holds something that was not applied yet.
proc ::vesk::dialogs::being_typed {w} {
    variable before
    return [expr {![info exists before($w)] || [$w get] ne $before($w)}]
}

# shown_again --
#   A field got a new number from the model while it has the focus.
proc ::vesk::dialogs::shown_again {w} {
    variable before
    set before($w) [$w get]
    $w selection range 0 end
}

proc ::vesk::dialogs::number_done {w variable apply} {
    variable before
    set text [set $variable]
    if {[info exists before($w)] && $before($w) eq $text} {return}
    if {[string match *disabled* [$w cget -state]]} {return}
    if {[string trim $text] eq "" && [info exists before($w)]} {
        # An emptied field shows its number again.
        set $variable $before($w)
        mark_invalid $w 0
        return
    }
    set current [expr {[info exists before($w)] ? $before($w) : ""}]
    if {![string is double -strict $current]} {set current ""}
    if {[catch {::vesk::arith::value $text $current} number]} {
        mark_invalid $w 1
        display_message $number
        return
    }
    mark_invalid $w 0
    {*}$apply $number
    set before($w) [set $variable]
}

# number_escape --
#   Escape shows what was there; a second one goes back to the views.
proc ::vesk::dialogs::number_escape {w variable} {
    variable before
    if {[info exists before($w)] && $before($w) ne [set $variable]} {
        set $variable $before($w)
        mark_invalid $w 0
        $w selection range 0 end
        return -code break
    }
}

proc ::vesk::dialogs::number_step {w variable apply step {unit ""}} {
    if {[catch {::vesk::arith::value [set $variable]} number]} {return}
    if {$unit eq ""} {set unit [expr {$::prefs_grid > 0 ? $::prefs_grid : 0.1}]}
    set step [expr {$step * $unit}]
    # Whole numbers have no tenth of a step.
    if {$unit == 1 && abs($step) < 1} {set step [expr {$step < 0 ? -1 : 1}]}
    set number [expr {$number + $step}]
    set $variable [::vesk::arith::shown $number]
    {*}$apply $number
    number_begin $w $variable
    return -code break
}

# mark_invalid --
#   Shows or clears the error outline of a field, whichever kind it is.
proc ::vesk::dialogs::mark_invalid {w invalid} {
    set state [expr {$invalid ? "invalid" : "!invalid"}]
    if {[winfo class $w] eq "Entry"} {
        [winfo parent $w] state $state
    } else {
        $w state $state
    }
}

# ---- a question ----

# question --
#   Asks; returns the name of the chosen answer.
#   answers   name label pairs from left to right
#   default   answer of Return;  escape  answer of Escape and of closing the window
#   model     a model file whose picture is shown
proc ::vesk::dialogs::question {title text answers default escape {model ""}} {
    variable answer
    set w .question
    destroy $w
    toplevel $w -class Dialog
    wm withdraw $w
    wm title $w VESK
    wm transient $w .
    wm protocol $w WM_DELETE_WINDOW [list set ::vesk::dialogs::answer $escape]
    ::vesk::theme::on $w panel
    ttk::frame $w.in -style Panel.TFrame -padding [::vesk::theme::px 20]
    pack $w.in -fill both -expand 1
    ttk::label $w.in.title -text $title -style Panel.Bold.TLabel
    ttk::label $w.in.text -text $text -style Panel.Dim.TLabel \
        -wraplength [::vesk::theme::px 380] -justify left
    if {$model ne ""} {
        set side [::vesk::theme::px 160]
        ::vesk::theme::on [canvas $w.in.picture -width $side -height $side] field
        pack $w.in.picture -side left -padx [::vesk::theme::pad 0 20]
        ::vesk::thumbs::request $model $side [list ::vesk::dialogs::show_picture $w.in.picture]
    }
    pack $w.in.title $w.in.text -anchor w -pady [::vesk::theme::pad 0 8]
    ttk::frame $w.in.row -style Panel.TFrame
    pack $w.in.row -fill x -pady [::vesk::theme::pad 10 0]
    set side left
    foreach {name label} $answers {
        set style [expr {$name eq $default ? "Panel.Default.TButton" : "Panel.TButton"}]
        ttk::button $w.in.row.$name -text $label -style $style \
            -command [list set ::vesk::dialogs::answer $name]
    }
    # The answers that do not go on stand apart at the left.
    set names [dict keys $answers]
    if {[llength $names] > 2} {
        pack $w.in.row.[lindex $names 0] -side left -padx [::vesk::theme::pad 0 40]
        set names [lrange $names 1 end]
    }
    foreach name [lreverse $names] {
        pack $w.in.row.$name -side right -padx [::vesk::theme::pad 8 0]
    }
    bind $w <Return> [list ::vesk::dialogs::press_focused $w $default]
    bind $w <Escape> [list set ::vesk::dialogs::answer $escape]
    set answer ""
    show_modal $w $w.in.row.$default
    vwait ::vesk::dialogs::answer
    close_modal $w
    return $answer
}

proc ::vesk::dialogs::show_picture {canvas photo} {
    if {$photo ne "" && [winfo exists $canvas]} {
        $canvas create image 0 0 -anchor nw -image $photo
    }
}

# press_focused --
#   Return presses the focused button, else the default one.
proc ::vesk::dialogs::press_focused {w default} {
    set focus [focus]
    if {$focus ne "" && [winfo class $focus] eq "TButton"} {
        $focus invoke
    } else {
        set ::vesk::dialogs::answer $default
    }
}

# show_modal, close_modal --
#   A window over the middle of the main one, with a grab; the focus goes back afterwards.
proc ::vesk::dialogs::show_modal {w focus} {
    variable focus_before
    set focus_before($w) [focus]
    update idletasks
    place_over $w
    wm deiconify $w
    # A grab fails while the window is not yet viewable.
    tkwait visibility $w
    catch {grab set $w}
    raise $w
    focus -force $focus
}
proc ::vesk::dialogs::close_modal {w} {
    variable focus_before
    grab release $w
    destroy $w
    if {[winfo exists $focus_before($w)]} {focus $focus_before($w)}
}

# place_over --
#   Puts a window over the middle of the main one, on the screen with all of it: what does not fit
#   there gets less than it wants.
proc ::vesk::dialogs::place_over {w} {
    set room_x [winfo screenwidth $w]
    set room_y [expr {[winfo screenheight $w] - [::vesk::theme::px 30]}]
    set width [expr {min($room_x, [winfo reqwidth $w])}]
    set height [expr {min($room_y, [winfo reqheight $w])}]
    set x [expr {[winfo rootx .] + ([winfo width .] - $width) / 2}]
    set y [expr {[winfo rooty .] + ([winfo height .] - $height) / 3}]
    set geometry +[expr {max(0, min($x, $room_x - $width))}]+[expr {max(0, min($y, $room_y - $height))}]
    if {$width < [winfo reqwidth $w] || $height < [winfo reqheight $w]} {
        lassign [wm minsize $w] least_x least_y
        wm minsize $w [expr {min($least_x, $width)}] [expr {min($least_y, $height)}]
        set geometry ${width}x$height$geometry
    }
    wm geometry $w $geometry
}

# ---- a text to read ----

# show_text --
#   A window with a text; one per title.
proc ::vesk::dialogs::show_text {title text {columns 72} {lines 24}} {
    set w .text[string tolower [regsub -all {[^A-Za-z]} $title ""]]
    destroy $w
    toplevel $w -class Dialog
    wm withdraw $w
    wm title $w "$title - VESK"
    wm transient $w .
    ::vesk::theme::on $w panel
    ttk::label $w.title -text $title -style Panel.Title.TLabel
    text $w.text -width $columns -height $lines -font VeskMono -wrap word \
        -padx [::vesk::theme::px 10] -pady [::vesk::theme::px 8] \
        -yscrollcommand [list ::vesk::theme::autohide $w.bar]
    ::vesk::theme::recolour $w.text
    ttk::scrollbar $w.bar -style Panel.Vertical.TScrollbar -command [list $w.text yview]
    ttk::button $w.close -text Close -style Panel.Default.TButton -command [list destroy $w]
    grid $w.title -sticky w -padx [::vesk::theme::px 20] -pady [::vesk::theme::pad 16 8]
    grid $w.text $w.bar -sticky nswe
    grid $w.close - -sticky e -padx [::vesk::theme::px 20] -pady [::vesk::theme::px 12]
    grid columnconfigure $w 0 -weight 1
    grid rowconfigure $w 1 -weight 1
    $w.text insert end $text
    $w.text configure -state disabled
    bind $w <Escape> [list destroy $w]
    bind $w <Return> [list destroy $w]
    update idletasks
    place_over $w
    wm deiconify $w
    focus $w.close
}

# ---- the options of an operation ----

# ask --
#   Shows the options of a command at the lower left of the focused view. Most operations show their
#   result at once: Return and Keep keep it, Escape takes it back. Others run on Return or Apply.
#   target  command, then fields {label kind default ...}:
#             number, int, text   typed, an argument each
#             from KEY            a number, kept in the preference
#             setting KEY number|int   a number, kept in the scripts' own settings
#             choice {text value ...}
#             open_file SUFFIXES, save_file SUFFIX   a file name with a dialog
#             pref KEY number|int|bool   edits a preference, is no argument
#   before  of the operation whose options are opened again, as `last`; "" for a new one
proc ::vesk::dialogs::ask {title target help {before ""}} {
    variable fields
    set command [lindex $target 0]
    set items [lrange $target 1 end]
    # A lone file name needs no panel around its dialog.
    if {[llength $items] == 1 && [lindex $items 0 1] in {open_file save_file}} {
        set name [ask_file [lindex $items 0] $title]
        if {$name eq ""} {return}
        set run [list ::vesk::ops::run $command $name]
        if {[string match write_* $command]} {set run [list ::vesk::issues::exporting $run]}
        {*}$run
        return
    }
    set w [::vesk::view::area].options
    destroy $w
    array unset fields
    ttk::frame $w -style Raise.TFrame -padding 1
    ttk::frame $w.in -style Panel.TFrame -padding [::vesk::theme::px 12]
    pack $w.in -fill both -expand 1
    ttk::label $w.in.title -text $title -style Panel.Bold.TLabel
    grid $w.in.title - -sticky w -pady [::vesk::theme::pad 0 6]
    set row 0
    foreach item $items {
        add_field $w.in $row $item $command
        incr row
    }
    set run [list ::vesk::dialogs::run_options $w $command $items]
    set close [list ::vesk::dialogs::close_options $w]
    begin_session $w $command $items
    variable session
    dict set session row [dict create title $title target $target help $help]
    if {$before ne ""} {
        # What is there now is the result; what the fields say is what it was made with.
        dict set session start [dict get $before start]
        dict set session words [dict get $before words]
        dict set session original [lindex [dict get $before words] 1]
    }
    ttk::frame $w.in.row -style Panel.TFrame
    ttk::button $w.in.row.apply -style Panel.Default.TButton -command $run \
        -text [expr {[is_live] ? "Keep" : "Apply"}]
    ttk::button $w.in.row.close -text [expr {[is_live] ? "Cancel" : "Close"}] \
        -style Panel.TButton -command $close
    pack $w.in.row.close $w.in.row.apply -side right -padx [::vesk::theme::pad 8 0]
    grid $w.in.row - -sticky we -pady [::vesk::theme::pad 10 0]
    grid columnconfigure $w.in 1 -weight 1
    foreach child [concat [winfo children $w.in] [winfo children $w.in.row]] {
        # What has keys bound would be a stop of Tab.
        if {[winfo class $child] in {TLabel TFrame}} {continue}
        bind $child <Escape> "$close; break"
        if {[winfo class $child] ne "TButton"} {
            bind $child <Return> $run
            bind $child <KP_Enter> $run
        }
    }
    bind $w.in.row.apply <Return> $run
    bind $w.in.row.close <Return> $close
    ::vesk::view::place_options $w
    if {$row > 0} {
        focus $w.in.f0
        if {[winfo class $w.in.f0] eq "TEntry"} {$w.in.f0 selection range 0 end}
    } else {
        focus $w.in.row.apply
    }
    display_message $help
    if {[is_live]} {live_later}
}

# ---- results at once ----

# begin_session --
#   The options of a command were opened: remembers where the history stands.
proc ::vesk::dialogs::begin_session {w command items} {
    variable session
    variable live
    variable live_limit
    variable fields
    set vertices [lindex [vesk get_counts] 4]
    set on [expr {$command in $live && $vertices < $live_limit && [::vesk::menus::known $command]}]
    # What the first try is taken back to has the selection of now.
    if {$on} {vesk history_note}
    set session [dict create window $w command $command items $items live $on words {} \
        start [history_place] now [history_place] timer ""]
    trace remove variable fields write ::vesk::dialogs::live_later
    if {$on} {trace add variable fields write ::vesk::dialogs::live_later}
}
proc ::vesk::dialogs::is_live {} {
    variable session
    return [dict get $session live]
}

# history_place --
#   The present place in the history.
proc ::vesk::dialogs::history_place {} {
    return [lsearch -exact -index 2 [vesk history_list] 1]
}

proc ::vesk::dialogs::live_later {args} {
    variable session
    after cancel [dict get $session timer]
    dict set session timer [after 150 ::vesk::dialogs::live_update]
}

# live_update --
#   Shows what the fields say now in place of what they said before.
proc ::vesk::dialogs::live_update {} {
    variable session
    if {![winfo exists [dict get $session window]]} {return}
    set words [read_options 0]
    if {$words eq ""} {return}
    # Preferences among the fields are no words of the command.
    set typed [list $words $::vesk::dialogs::kept([dict get $session command])]
    if {$typed eq [dict get $session words]} {return}
    live_take_back
    dict set session words $typed
    vesk {*}$words
    vesk redraw_all
    dict set session now [history_place]
    ::vesk::ops::request
}

# live_take_back --
#   As it was when the options were opened. What was done elsewhere meanwhile stays.
proc ::vesk::dialogs::live_take_back {} {
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
proc ::vesk::dialogs::add_field {w row item command} {
    variable fields
    variable kept
    lassign $item label kind default extra
    set variable ::vesk::dialogs::fields($row)
    set path $w.f$row
    if {[info exists kept($command)] && $kind in {number int text choice}} {
        set fields($row) [lindex $kept($command) $row]
    } else {
        set fields($row) $default
    }
    if {$kind eq "from"} {set fields($row) [::vesk::arith::shown [set ::prefs_$default]]}
    if {$kind eq "setting"} {
        set fields($row) [::vesk::settings::get $default]
        set kind $extra
    }
    if {$kind eq "pref"} {
        set fields($row) [set ::prefs_$default]
        set kind $extra
    }
    switch -- $kind {
        bool {
            ttk::checkbutton $path -text $label -variable $variable -style Panel.TCheckbutton
            grid $path - -sticky w -pady [::vesk::theme::px 4]
            return
        }
        choice {
            set texts [dict keys $default]
            if {$fields($row) ni $texts} {set fields($row) [lindex $texts 0]}
            ttk::combobox $path -values $texts -state readonly -width 9 -textvariable $variable \
                -style Panel.TCombobox
        }
        text - open_file - save_file {
            ttk::entry $path -textvariable $variable -width 24 -style Panel.TEntry
        }
        default {
            ttk::entry $path -textvariable $variable -width 9 -justify right \
                -font VeskNumber -style Panel.TEntry
        }
    }
    ttk::label $w.l$row -text $label -style Panel.Dim.TLabel
    grid $w.l$row $path -sticky we -pady [::vesk::theme::px 2]
    grid configure $w.l$row -padx [::vesk::theme::pad 0 12]
}

# ask_file --
#   The file dialog of one field.
proc ::vesk::dialogs::ask_file {item title} {
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
#   The command with what the fields say, preferences and settings among them set; empty when a
#   field holds no number.
#   tell  1: what is wrong is told
proc ::vesk::dialogs::read_options {tell} {
    variable fields
    variable kept
    variable session
    set command [dict get $session command]
    set w [dict get $session window]
    set words [list $command]
    set typed {}
    set row -1
    foreach item [dict get $session items] {
        incr row
        lassign $item label kind default extra
        set text $fields($row)
        lappend typed $text
        set wanted [expr {$kind in {pref setting} ? $extra : $kind}]
        if {$wanted in {number int from}} {
            if {[catch {::vesk::arith::value $text} text]} {
                if {$tell} {
                    mark_invalid $w.in.f$row 1
                    display_message "$label: $text"
                    focus $w.in.f$row
                }
                return ""
            }
            mark_invalid $w.in.f$row 0
            if {$wanted eq "int"} {set text [expr {int($text)}]}
        }
        if {$kind eq "choice"} {set text [dict get $default $text]}
        if {$kind in {pref from}} {set ::prefs_$default $text}
        if {$kind eq "setting"} {::vesk::settings::set_value $default $text}
        if {$kind ne "pref"} {lappend words $text}
    }
    set kept($command) $typed
    return $words
}

# run_options --
#   Return, Keep or Apply.
proc ::vesk::dialogs::run_options {w command items} {
    variable session
    set words [read_options 1]
    if {$words eq ""} {return}
    if {![is_live]} {
        ::vesk::ops::run {*}$words
        return
    }
    live_update
    ::vesk::ops::echo vesk {*}$words
    variable last [dict merge [dict get $session row] [dict create \
        start [dict get $session start] now [history_place] words [dict get $session words]]]
    dict set session now -1
    close_options $w
}

# restore_original --
#   The result that was there before its options were opened once more.
proc ::vesk::dialogs::restore_original {} {
    variable session
    variable fields
    set row -1
    foreach text [dict get $session original] {set fields([incr row]) $text}
    live_update
}

proc ::vesk::dialogs::close_options {w} {
    variable session
    after cancel [dict get $session timer]
    if {[is_live] && [dict get $session now] != -1} {
        if {[dict exists $session original]} restore_original else live_take_back
        vesk redraw_all
        ::vesk::ops::request
    }
    destroy $w
    ::vesk::view::focus_last
}

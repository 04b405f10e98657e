# menus.tcl --
#   Builds menus from the table: the bar (real Tk menus below .mbar, so that Alt+letter and F10
#   work), context menus, accelerators. A menu of the bar gets its entries when it is first opened; an
#   entry that fits neither the selection nor this build is greyed then, never hidden.

namespace eval ::vesk::menus {
    variable bound {}       ;# accelerators bound: event -> row
    variable info           ;# cache of command_info: name -> list
    variable paths {}       ;# menu name -> widget, for menus of the bar
    variable rows_at        ;# menu widget -> its rows, in order
    # Needs of the rows, and the message when they are not met.
    variable reasons {
        some "select something first" object "select objects first"
        several "select two objects or more" group "select a group first"
        surface "select surfaces first" vertex "select vertices first" element "select edges or vertices first"
        undo "nothing to undo" redo "nothing to redo" repeat "nothing to repeat"
        again "no last operation with options" paste "the clipboard is empty" hidden "nothing is hidden"
        locked "nothing is locked" model "the scene is empty"
    }
    array set info {}
}

# rows, label --
#   A menu's rows, and its label without the mark of the underlined letter.
proc ::vesk::menus::rows {name} {
    variable table
    if {![dict exists $table $name]} {return {}}
    return [lindex [dict get $table $name] 1]
}
proc ::vesk::menus::label {name} {
    variable table
    return [string map {& {}} [lindex [dict get $table $name] 0]]
}

# build_bar --
#   Makes the bar and all its menus inside the frame `bar_frame`.
proc ::vesk::menus::build_bar {bar_frame} {
    variable bar
    variable table
    foreach name $bar {
        lassign [split_label [lindex [dict get $table $name] 0]] text underline
        set button $bar_frame.$name
        menubutton $button -text $text -underline $underline -relief flat -borderwidth 0 \
            -highlightthickness 0 -padx [::vesk::theme::px 8] -pady [::vesk::theme::px 4] \
            -menu $button.menu -takefocus 0
        pack $button -side left -fill y
        build $name $button.menu
    }
    ::vesk::parts::at_least $bar_frame 25
    ::vesk::theme::recolour $bar_frame
    bind $bar_frame <Configure> {::vesk::menus::fit_bar %W %w}
    bind_accelerators
    # Tk does not activate greyed entries: the place of the pointer is used, too.
    bind Menu <<MenuSelect>> {+::vesk::menus::tell %W active}
    bind Menu <Motion> {+::vesk::menus::tell %W @%y}
    bind Menu <Unmap> {+::vesk::status::preview ""}
}

# fit_bar --
#   In a narrow window the names stand closer.
proc ::vesk::menus::fit_bar {bar_frame width} {
    variable bar
    set buttons [lmap name $bar {string cat $bar_frame . $name}]
    set now [winfo pixels . [[lindex $buttons 0] cget -padx]]
    set texts 0
    foreach button $buttons {incr texts [expr {[winfo reqwidth $button] - 2 * $now}]}
    set room [expr {($width - $texts) / (2 * [llength $buttons])}]
    set gap [expr {max([::vesk::theme::px 2], min([::vesk::theme::px 8], $room))}]
    if {$gap != $now} {
        foreach button $buttons {$button configure -padx $gap}
    }
}

# build --
#   Makes one menu and the menus below it, without their entries.
proc ::vesk::menus::build {name path} {
    variable paths
    dict set paths $name $path
    menu $path -tearoff 0 -postcommand [list ::vesk::menus::refresh $name $path]
    ::vesk::theme::recolour $path
    foreach row [rows $name] {
        if {[lindex $row 0] eq "menu"} {build [lindex $row 2] [below $path $row]}
    }
}

# is_filled, fill --
#   Gives a menu of the bar its entries, once; what plug-ins have appended comes after them.
proc ::vesk::menus::is_filled {path} {
    variable rows_at
    return [info exists rows_at($path)]
}
proc ::vesk::menus::fill {name path} {
    variable rows_at
    if {[is_filled $path]} {return}
    set rows_at($path) {}
    foreach row [rows $name] {
        add_row $path $row [llength $rows_at($path)]
    }
    align $path
}

# align --
#   Where some rows have marks, the others begin where the texts of those do: Tk puts these some
#   pixels further, which two blanks make up.
proc ::vesk::menus::align {path} {
    variable rows_at
    set kinds [lmap row $rows_at($path) {lindex $row 0}]
    if {"check" ni $kinds && "radio" ni $kinds} {return}
    set entry -1
    foreach kind $kinds {
        incr entry
        if {$kind in {check radio line}} {continue}
        set underline [$path entrycget $entry -underline]
        $path entryconfigure $entry -label "  [$path entrycget $entry -label]" \
            -underline [expr {$underline < 0 ? $underline : $underline + 2}]
    }
}

# plain --
#   A label without its marks, as messages show it.
proc ::vesk::menus::plain {label} {return [string map {& {} ... {}} $label]}

# split_label --
#   {text underline} of a label with "&" before the underlined letter.
proc ::vesk::menus::split_label {label} {
    set underline [string first & $label]
    return [list [string map {& {}} $label] $underline]
}

# add_command, add_entry, insert_entry, accelerator --
#   Appends an entry or puts it at a place, with further options of it. Blanks round label and key make
#   the margins that Tk leaves out, and an empty picture gives the height.
proc ::vesk::menus::add_command {path label script args} {
    add_entry $path command $label -command $script {*}$args
}
proc ::vesk::menus::add_entry {path kind label args} {
    insert_entry $path end $kind $label {*}$args
}
proc ::vesk::menus::insert_entry {path place kind label args} {
    $path insert $place $kind -label "  $label" -image [::vesk::theme::menu_row_image] \
        -compound left -accelerator [accelerator ""] {*}$args
}
proc ::vesk::menus::accelerator {key} {
    return [expr {$key eq "" ? "   " : "   $key   "}]
}

# add_row --
#   Appends one row of the table, or puts it at a place.
proc ::vesk::menus::add_row {path row {place end}} {
    variable rows_at
    if {[$path index end] eq "none"} {set rows_at($path) {}}
    lappend rows_at($path) $row
    lassign $row kind label target key needs help
    if {$kind eq "line"} {
        $path insert $place separator
        return
    }
    lassign [split_label $label] text underline
    set options [list -accelerator [accelerator $key]]
    if {$underline >= 0} {lappend options -underline [expr {$underline + 2}]}
    switch -- $kind {
        menu {
            insert_entry $path $place cascade $text {*}$options -menu [below $path $row]
        }
        check {
            set words [lassign $target variable]
            insert_entry $path $place checkbutton $text {*}$options -variable $variable \
                -command [list ::vesk::menus::changed $variable $words]
        }
        radio {
            set words [lassign $target variable value]
            insert_entry $path $place radiobutton $text {*}$options -variable $variable \
                -value $value -command [list ::vesk::menus::changed $variable $words]
        }
        default {
            insert_entry $path $place command $text -command [list ::vesk::menus::invoke $row] \
                {*}$options
        }
    }
}

# below --
#   Path of the menu that a row opens; the texture list keeps the name the executable adds to.
proc ::vesk::menus::below {path row} {
    set name [lindex $row 2]
    return $path.[expr {$name eq "texture_list" ? "texture" : $name}]
}

# invoke --
#   Runs the action of a row.
proc ::vesk::menus::invoke {row} {
    lassign $row kind label target key needs help
    switch -- $kind {
        run  {::vesk::ops::run {*}$target}
        ask  {::vesk::options::ask [plain $label] $target $help}
        call {{*}$target}
        show {::vesk::help::show_result {*}$target}
        check {
            set words [lassign $target variable]
            upvar #0 $variable now
            set now [expr {!$now}]
            changed $variable $words
        }
        radio {
            set words [lassign $target variable value]
            upvar #0 $variable now
            set now $value
            changed $variable $words
        }
    }
}

# changed --
#   After a check or radio entry changed its variable: calls a procedure of these scripts, or an
#   executable command.
proc ::vesk::menus::changed {variable words} {
    if {[llength $words] == 0} {
        set variable ::[string trimleft $variable :]
        ::vesk::ops::echo set $variable [set $variable]
    } elseif {[string match ::vesk::* [lindex $words 0]]} {
        {*}$words
    } else {
        ::vesk::ops::run {*}$words
    }
}

# ---- what can be done now ----

# known --
#   Whether the executable has a command.
proc ::vesk::menus::known {command} {
    variable info
    if {![info exists info($command)]} {
        set info($command) [vesk command_info $command]
    }
    return [expr {[llength $info($command)] > 0}]
}

# forget_known --
#   Plug-ins may have added commands.
proc ::vesk::menus::forget_known {} {
    variable info
    array unset info
}

# row_command --
#   The executable command that a row depends on, or "".
proc ::vesk::menus::row_command {row} {
    lassign $row kind label target
    switch -- $kind {
        run - ask - show {return [lindex $target 0]}
        radio {
            set command [lindex $target 2]
            return [expr {[string match ::* $command] ? "" : $command}]
        }
        call {
            if {[lindex $target 0] eq "::vesk::tools::choose"} {
                return [::vesk::tools::needed [lindex $target 1]]
            }
            if {[lindex $target 0] eq "::vesk::objects::to_head"} {return objects_place}
            if {[lindex $target 0] eq "::vesk::palette::apply_current"} {return set_col}
            if {[lindex $target 0] eq "::vesk::files::new"} {return clear_all}
        }
    }
    return ""
}

# why_not --
#   Why a row cannot be chosen now, or "".
#   state  dictionary as `now` makes it
proc ::vesk::menus::why_not {row state} {
    variable reasons
    set needs [lindex $row 4]
    set command [row_command $row]
    if {$command ne "" && ![known $command]} {return "not in this build"}
    if {[fits $needs $state]} {return ""}
    return [dict get $reasons $needs]
}
proc ::vesk::menus::possible {row state} {
    return [expr {[why_not $row $state] eq ""}]
}

# fits --
#   Whether the state fulfils the needs of a row.
proc ::vesk::menus::fits {needs state} {
    switch -- $needs {
        some    {return [expr {[dict get $state selected] > 0}]}
        object  {return [expr {[dict get $state objects] > 0}]}
        several {return [expr {[dict get $state objects] > 1}]}
        group   {return [dict get $state group]}
        surface {
            # In vertex mode surfaces whose vertices are all selected count.
            return [expr {[dict get $state surfaces] > 0 || [dict get $state vertices] > 2}]
        }
        vertex - element {return [expr {[dict get $state vertices] > 0}]}
        undo    {return [expr {[vesk undo_name] ne ""}]}
        redo    {return [::vesk::history::can_redo]}
        repeat  {return [expr {[vesk can_repeat] eq "1"}]}
        again   {return [expr {[::vesk::options::can_again]}]}
        paste   {return [::vesk::menus::can_paste]}
        hidden  {return [expr {!!$::objects_are_hidden}]}
        locked  {return [expr {!!$::objects_are_locked}]}
        model   {return [expr {[dict get $state total] > 0}]}
    }
    return 1
}

# can_paste --
#   Whether there is something to paste: objects of this window, or any text of another program.
proc ::vesk::menus::can_paste {} {
    if {[vesk clipboard_holds] eq "1"} {return 1}
    if {[catch {selection get -selection CLIPBOARD -type TARGETS} targets]} {return 0}
    return [expr {"UTF8_STRING" in $targets || "STRING" in $targets}]
}

# now --
#   Counts of the selection and of the scene, as a dictionary.
proc ::vesk::menus::now {} {
    lassign [vesk get_counts] objects total surfaces all_surfaces vertices all_vertices
    set ids [vesk get_selected_objects]
    set chosen [llength $ids]
    set group 0
    foreach id [lrange $ids 0 49] {
        if {[dict get [vesk object_info $id] children] > 0} {
            set group 1
            break
        }
    }
    return [dict create objects $chosen group [expr {$group || $chosen > 50}] surfaces [expr {$chosen ? 0 : $surfaces}] \
        vertices [expr {$chosen || $::vesk::select_mode ni {vertex edge} ? 0 : $vertices}] \
        selected [expr {$objects + $surfaces + $vertices + $chosen}] total $total]
}

# tell --
#   Shows the help of the entry under the pointer or the keys in the status line, or its needs.
#   place  index of the entry, in any form that Tk knows
proc ::vesk::menus::tell {path place} {
    variable rows_at
    set entry none
    catch {set entry [$path index $place]}
    set row {}
    if {[string is integer -strict $entry] && [info exists rows_at($path)]} {
        set row [lindex $rows_at($path) $entry]
    }
    set text [lindex $row 5]
    if {$row ne "" && [$path type $entry] ne "separator"
            && [$path entrycget $entry -state] eq "disabled"} {
        append text " \u2013 [why_not $row [now]]"
    }
    ::vesk::status::preview $text
}

# refresh --
#   Greys the rows that cannot be chosen; called when a menu opens. Appended entries stay as they
#   are.
proc ::vesk::menus::refresh {name path} {
    fill $name $path
    set state [now]
    set entry 0
    if {$name eq "view3d"} ::vesk::view::read_camera
    foreach row [rows $name] {
        if {[lindex $row 0] ni {line menu}} {
            set possible [possible $row $state]
            $path entryconfigure $entry -state [expr {$possible ? "normal" : "disabled"}]
        }
        if {[lindex $row 0] eq "menu"} {
            switch -- [lindex $row 2] {
                recent  {::vesk::files::fill_recent $path.recent}
                mytools {::vesk::savedtools::fill_menu $path.mytools}
                selectionsets {::vesk::selectionsets::fill_menu $path.selectionsets}
            }
        }
        incr entry
    }
}

# ---- keys ----

# event_of --
#   The Tk event of a key text such as Ctrl+Shift+S or F12; "" for keys that belong to the views.
proc ::vesk::menus::event_of {key} {
    set parts [split $key +]
    if {[string match *++ $key]} {set parts [concat [split [string range $key 0 end-2] +] plus]}
    set last [lindex $parts end]
    set modifiers [lrange $parts 0 end-1]
    if {"Ctrl" ni $modifiers && ![regexp {^F\d+$} $last]} {return ""}
    set last [string map {, comma - minus Space space / slash [ bracketleft ] bracketright} $last]
    if {[string length $last] == 1} {
        set last [expr {"Shift" in $modifiers ? [string toupper $last] : [string tolower $last]}]
    }
    set event ""
    if {"Ctrl" in $modifiers} {append event Control-}
    if {"Alt" in $modifiers} {append event Alt-}
    if {"Shift" in $modifiers && [string length $last] > 1} {append event Shift-}
    return <${event}Key-$last>
}

# bind_accelerators --
#   Binds the keys of the table in the main window.
proc ::vesk::menus::bind_accelerators {} {
    variable table
    variable bound
    dict for {name menu} $table {
        foreach row [lindex $menu 1] {
            set event [event_of [lindex $row 3]]
            if {$event eq "" || [dict exists $bound $event]} {continue}
            dict set bound $event $row
            bind . $event [list ::vesk::menus::key %W $row]
        }
    }
    # The redo key of many other programs.
    bind . <Control-Key-y> [list ::vesk::menus::key %W [find edit redo]]
}

# bind_again --
#   Binds the keys anew after a change of the table.
proc ::vesk::menus::bind_again {} {
    variable bound
    foreach event [dict keys $bound] {bind . $event {}}
    bind . <Control-Key-y> {}
    set bound {}
    bind_accelerators
}

# takes --
#   Whether the window has a binding for a press: such a key is not the views'.
proc ::vesk::menus::takes {keysym state} {
    variable bound
    set modifiers ""
    if {$state & 4} {append modifiers Control-}
    if {$state & 8} {append modifiers Alt-}
    if {$state & 1 && [string length $keysym] > 1} {append modifiers Shift-}
    return [dict exists $bound <${modifiers}Key-$keysym>]
}

# key --
#   Runs the row of an accelerator. While text is edited the editing keys are the field's; a row
#   that cannot be chosen is refused with a message.
proc ::vesk::menus::key {w row} {
    if {![::vesk::view::in_main $w]} {return}
    if {[winfo class $w] in {Entry TEntry Text TCombobox} && [edits_text [lindex $row 3] $w]} {
        return -code break
    }
    set why [why_not $row [now]]
    if {$why ne ""} {
        display_message "[plain [lindex $row 1]] - $why"
        return -code break
    }
    invoke $row
    return -code break
}

# edits_text --
#   Whether a key belongs to the field that has the focus. Undo takes back what was typed there, and
#   is the model's again as soon as the field holds what it held before.
proc ::vesk::menus::edits_text {key w} {
    if {$key in {Ctrl+Z Ctrl+Shift+Z}} {
        return [expr {[winfo class $w] eq "Text" || [::vesk::fields::take_back $w]}]
    }
    return [expr {$key in {Ctrl+X Ctrl+C Ctrl+V Ctrl+A Ctrl+D}}]
}

# ---- context menus ----

# find --
#   The row of a menu whose target begins with some words.
proc ::vesk::menus::find {name words} {
    foreach row [rows $name] {
        if {[lrange [lindex $row 2] 0 [llength $words]-1] eq [lrange $words 0 end]} {return $row}
    }
    return ""
}

# popup --
#   Shows the context menu of a select mode at a place of the screen.
proc ::vesk::menus::popup {mode x y} {
    variable context
    if {![dict exists $context $mode]} {set mode object}
    popup_rows [lmap item [dict get $context $mode] {
        expr {$item eq "-" ? {line} : [find {*}$item]}
    }] $x $y
}

# popup_rows --
#   Shows a menu of rows, as the table has them, at a place of the screen.
proc ::vesk::menus::popup_rows {rows x y} {
    set path [new_popup]
    set state [now]
    foreach row $rows {
        add_row $path $row
        if {[lindex $row 0] ne "line" && ![possible $row $state]} {
            $path entryconfigure end -state disabled
        }
    }
    align $path
    tk_popup $path $x $y
}

# new_popup --
#   An empty menu in place of the last one; the caller fills and posts it.
proc ::vesk::menus::new_popup {{path .popup}} {
    variable rows_at
    destroy $path
    set rows_at($path) {}
    menu $path -tearoff 0
    ::vesk::theme::recolour $path
    return $path
}

# all --
#   Every row with an action, as {menu-path row menu}, for the search, the keys and their table.
proc ::vesk::menus::all {} {
    variable bar
    return [concat {*}[lmap name $bar {all_below $name [label $name]}]]
}
proc ::vesk::menus::all_below {name trail} {
    set result {}
    foreach row [rows $name] {
        switch -- [lindex $row 0] {
            line {}
            menu {
                set text [string map {& {}} [lindex $row 1]]
                lappend result {*}[all_below [lindex $row 2] "$trail > $text"]
            }
            default {lappend result [list $trail $row $name]}
        }
    }
    return $result
}

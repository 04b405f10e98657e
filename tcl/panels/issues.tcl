# issues.tcl --
#   The Issues tab: problems of the model by kind, checked anew when the model rests. A click
#   selects and fits the element of a line; the right button mends one problem or all of a kind. What
#   takes long is looked at by a worker meanwhile.

namespace eval ::vesk::issues {
    variable path ""
    variable list ""            ;# the treeview
    variable counts {}          ;# kind -> number of problems
    variable notes {}           ;# kind -> how many of these seem to be meant
    variable found {}           ;# kind -> {id element text ...}, at most 1000 each
    variable checked_at 0       ;# seconds; 0 never
    variable checked_model ""   ;# model stamp of the last check
    variable took 0             ;# milliseconds of the last check
    variable checking 0         ;# a worker is at it
    variable timer ""           ;# of the planned check; "" for none
    variable filling 0
    variable rest 700           ;# milliseconds without a change before a check
    variable open_limit 20      ;# kinds with more lines are shown folded
    # Kinds in the order of the list: name, label, singular, icon.
    variable kinds {
        missing_texture   "Missing textures"           "missing texture"       error
        crowded_edge      "Edges of too many surfaces" "crowded edge"          warning
        crossing          "Surfaces that cross"        "surface that crosses"  warning
        duplicate_surface "Duplicate surfaces"         "duplicate surface"     warning
        zero_area         "Surfaces without area"      "surface without area"  warning
        flipped           "Flipped surfaces"           "flipped surface"       warning
        non_planar        "Bent surfaces"              "bent surface"          warning
        t_vertex          "Vertices on edges"          "vertex on an edge"     warning
        duplicate_vertex  "Duplicate vertices"         "duplicate vertex"      warning
        unused_vertex     "Unused vertices"            "unused vertex"         warning
        open_edge         "Open edges"                 "open edge"             warning
    }
}

# build --
#   Fills the tab's frame; done when the tab is first shown.
proc ::vesk::issues::build {tab} {
    variable path $tab
    variable list $tab.list
    ttk::treeview $list -columns count -show tree -selectmode browse
    $list column #0 -stretch 1 -width [::vesk::theme::px 200]
    $list column count -stretch 0 -width [::vesk::theme::px 64] -anchor e
    ::vesk::parts::scrollbar $tab.bar $list Field.
    ttk::frame $tab.foot -style Panel.TFrame -padding [::vesk::theme::pad 14 6 10 6]
    ttk::label $tab.foot.age -style Panel.Dim.TLabel
    ttk::button $tab.foot.fix -style Panel.TButton -text "Fix all" -command ::vesk::issues::fix_all
    ttk::button $tab.foot.check -style Panel.TButton -text Check \
        -command ::vesk::issues::check
    ::vesk::tooltips::attach $tab.foot.fix "Fix all" "" \
        "Mends the chosen kind, or every kind when none is chosen."
    ::vesk::tooltips::attach $tab.foot.check Check F7 "Checks the model again now."
    ttk::label $tab.none -style Field.Dim.TLabel -anchor center
    pack $tab.foot.age -side left
    pack $tab.foot.fix $tab.foot.check -side right -padx [::vesk::theme::pad 6 0]
    grid $list $tab.bar -sticky nswe
    grid $tab.foot - -sticky we
    grid columnconfigure $tab 0 -weight 1
    grid rowconfigure $tab 0 -weight 1
    bind $list <<TreeviewSelect>> {::vesk::issues::name_button; ::vesk::issues::chosen}
    ::vesk::icons::follow_selection $list
    bind $list <<TreeviewOpen>> {::vesk::issues::unfold [%W focus]; ::vesk::issues::keep_open 1}
    bind $list <<TreeviewClose>> {::vesk::issues::keep_open 0}
    bind $list <Button-3> {::vesk::issues::context %x %y %X %Y}
    ::vesk::fields::on_keys $list {
        Key-Menu ::vesk::issues::context_of_focus
        Shift-F10 ::vesk::issues::context_of_focus
        Escape ::vesk::view::focus_last
    }
    bind $tab <Map> {after idle ::vesk::issues::shown}
    show
}

# shown --
#   Checks a changed model anew when the tab comes to the front.
proc ::vesk::issues::shown {} {
    variable checked_model
    if {[::vesk::ops::change_count] ne $checked_model} {check} else {show_age}
}

# ---- checking ----

# model_changed --
#   Plans a check for the time when nothing changed for a while.
proc ::vesk::issues::model_changed {} {
    variable timer
    variable rest
    variable took
    variable checking
    if {$checking} {vesk check_follow}
    after cancel $timer
    set timer [after [expr {max($rest, 4 * $took)}] {after idle ::vesk::issues::check_in_parts}]
}

proc ::vesk::issues::visible {} {
    variable path
    return [expr {$path ne "" && [winfo viewable $path]}]
}

# check --
#   Checks the model now; what takes long goes on by itself, and its end comes to check_in_parts.
proc ::vesk::issues::check {} {
    if {[begin_check]} take_check
}

# check_in_parts --
#   The same with events before the result is asked for, unless the model changes by then.
proc ::vesk::issues::check_in_parts {} {
    variable timer
    if {[begin_check]} {
        set timer [after 1 [list ::vesk::issues::take_unchanged [::vesk::ops::change_count]]]
    }
}

# take_unchanged --
#   Of a model that has changed since, a check is being planned.
proc ::vesk::issues::take_unchanged {stamp} {
    variable timer ""
    if {[::vesk::ops::change_count] eq $stamp} take_check
}

# begin_check --
#   Returns 1 when everything is known.
proc ::vesk::issues::begin_check {} {
    variable checking
    variable timer
    after cancel $timer
    set timer ""
    set checking [expr {[vesk check_begin] eq "0"}]
    if {$checking} show_checking
    return [expr {!$checking}]
}

# take_check --
#   Asks what the check has found.
proc ::vesk::issues::take_check {} {
    variable took
    variable counts
    variable found
    variable checked_at
    variable checked_model
    variable notes
    set stamp [::vesk::ops::change_count]
    set begun [clock milliseconds]
    set counts [vesk check_counts]
    set notes [vesk check_notes]
    set found {}
    # Each line: kind, object, element, text.
    foreach line [split [vesk check_model] \n] {
        if {[regexp {^(\S+) (\S+) (\S+) (.*)$} $line -> kind id element text]} {
            dict lappend found $kind $id $element $text
        }
    }
    set took [expr {[clock milliseconds] - $begun}]
    set checked_at [clock seconds]
    set checked_model $stamp
    show
}

# ended --
#   The worker has ended. A model that was changed meanwhile is checked when it rests.
proc ::vesk::issues::ended {} {
    variable checking
    variable timer
    if {$checking && $timer eq ""} {after idle ::vesk::issues::check_in_parts}
}

# total, faults --
#   Number of problems that the last check found; those among them that are no notes.
proc ::vesk::issues::total {} {
    variable counts
    return [tcl::mathop::+ {*}[dict values $counts]]
}
proc ::vesk::issues::faults {} {
    variable notes
    return [expr {[total] - [tcl::mathop::+ {*}[dict values $notes]]}]
}

# exporting --
#   Runs an export after a check and adds the number of problems to the message. A model whose check
#   takes long keeps the number of the last check.
#   script  words of the export
proc ::vesk::issues::exporting {script} {
    variable checked_model
    if {[::vesk::ops::change_count] ne $checked_model} {check}
    set sum [faults]
    {*}$script
    if {$sum > 0} {
        display_message "$::vesk::status::message - the model has\
            [::vesk::arith::counted $sum problem], see Issues"
    }
}

# ---- showing ----

proc ::vesk::issues::set_title {text} {
    set tabs .main.right.tabs
    set title [string trimright "Issues $text"]
    if {[winfo exists $tabs.issues] && [$tabs tab $tabs.issues -text] ne $title} {
        $tabs tab $tabs.issues -text $title
    }
}

# show_checking --
#   The number is not known, and the list is that of the last check.
proc ::vesk::issues::show_checking {} {
    variable path
    set_title ""
    if {$path eq ""} {return}
    $path.none configure -text "Checking..."
    show_age
}

# show --
#   Fills the list with the result of the last check; kinds are as the user has opened or folded them.
proc ::vesk::issues::show {} {
    variable path
    variable list
    variable kinds
    variable counts
    variable checked_at
    variable open_limit
    variable filling
    variable notes
    set sum [total]
    set faults [faults]
    set_title [expr {$faults == 0 ? "" : $faults > 999 ? "[expr {$faults / 1000}]k" : $faults}]
    if {$path eq ""} {return}
    set filling 1
    set known [$list children {}]
    foreach kind $known {set open($kind) [$list item $kind -open]}
    array set open [::vesk::settings::get issues_open]
    set chosen [lindex [$list selection] 0]
    $list delete $known
    foreach {kind label one icon} $kinds {
        set count [expr {[dict exists $counts $kind] ? [dict get $counts $kind] : 0}]
        if {$count == 0} {continue}
        # A kind of notes alone is folded: nothing asks to be mended.
        set meant [expr {$count == [dict get $notes $kind]}]
        if {![info exists open($kind)]} {set open($kind) [expr {!$meant && $count <= $open_limit}]}
        $list insert {} end -id $kind -open $open($kind) \
            -text " $label[expr {$meant ? " (meant)" : ""}]" \
            -image [::vesk::icons::get [expr {$meant ? "info" : $icon}]] \
            -values [list "[::vesk::arith::grouped $count] "]
        # This line makes the mark appear until the kind is unfolded.
        $list insert $kind end -id $kind,more
        if {$open($kind)} {unfold $kind}
    }
    if {$chosen ne "" && [$list exists $chosen]} {$list selection set [list $chosen]}
    after idle {set ::vesk::issues::filling 0}
    if {$sum == 0} {
        $path.none configure \
            -text [expr {$checked_at ? "No problems found" : "Not checked yet"}]
        place $path.none -in $list -relx 0.5 -rely 0.4 -anchor center
    } else {
        place forget $path.none
    }
    name_button
    show_age
}

# keep_open --
#   The user has opened or folded a kind: it is so at the next start, too.
proc ::vesk::issues::keep_open {on} {
    variable list
    set kinds [::vesk::settings::get issues_open]
    dict set kinds [$list focus] $on
    ::vesk::settings::set_value issues_open $kinds
}

# name_button --
#   The button tells what it mends.
proc ::vesk::issues::name_button {} {
    variable path
    variable list
    variable kinds
    set row [lindex [$list selection] 0]
    if {$row ne "" && [$list parent $row] ne ""} {set row [$list parent $row]}
    set place [lsearch -exact $kinds $row]
    $path.foot.fix configure -text [expr {$row eq "" || $place < 0 ? "Fix all"
        : "Fix all [string tolower [lindex $kinds $place+1]]"}]
    $path.foot.fix state [expr {$row ne "" || [faults] > 0 ? "!disabled" : "disabled"}]
}

# unfold --
#   Lists the problems of a kind.
proc ::vesk::issues::unfold {kind} {
    variable list
    variable found
    variable counts
    if {![$list exists $kind,more]} {return}
    $list delete [list $kind,more]
    if {![dict exists $found $kind]} {return}
    set listed 0
    foreach {id element text} [dict get $found $kind] {
        $list insert $kind end -id [list $kind $id $element $listed] \
            -text [short $kind $id $element $text]
        incr listed
    }
    set rest [expr {[dict get $counts $kind] - $listed}]
    if {$rest > 0} {
        $list insert $kind end -text "and [::vesk::arith::grouped $rest] more"
    }
}

# short --
#   The text of a line: "canopy, edge 3-7".
proc ::vesk::issues::short {kind id element text} {
    set name "object $id"
    if {[dict exists $::vesk::objects::rows $id]} {
        set name [string trim [::vesk::objects::shown_name \
            [lindex [dict get $::vesk::objects::rows $id] 2]]]
    }
    switch -glob -- $kind {
        missing_texture {
            regexp {^texture (.*) was not found$} $text -> file
            return "$name: [expr {[info exists file] ? [file tail $file] : $text}]"
        }
        *_edge   {return "$name, edge $element"}
        *_vertex {return "$name, vertex [lindex [split $element -] 0]"}
    }
    return "$name, surface [lindex [split $element -] 0]"
}

# show_age --
#   Shows the age of the check, again and again while the tab is visible.
proc ::vesk::issues::show_age {} {
    variable path
    variable checked_at
    variable checking
    after cancel ::vesk::issues::show_age
    if {![visible]} {return}
    set age [expr {[clock seconds] - $checked_at}]
    if {$checking} {
        set text "Checking..."
    } elseif {$checked_at == 0} {
        set text "Not checked yet"
    } elseif {$age < 2} {
        set text "Checked just now"
    } elseif {$age < 60} {
        set text "Checked $age seconds ago"
    } else {
        set text "Checked [::vesk::arith::counted [expr {$age / 60}] minute] ago"
    }
    $path.foot.age configure -text $text
    after [expr {$age < 60 ? 1000 : 20000}] ::vesk::issues::show_age
}

# ---- selecting and mending ----

# problem --
#   {kind id element text} of a row, or "".
proc ::vesk::issues::problem {row} {
    variable found
    if {[llength $row] != 4} {return ""}
    lassign $row kind id element place
    return [list $kind $id $element [lindex [dict get $found $kind] [expr {3 * $place + 2}]]]
}

# chosen --
#   Selects the element of the chosen row and fits the views to it.
proc ::vesk::issues::chosen {} {
    variable list
    variable filling
    if {$filling} {return}
    set row [lindex [$list selection] 0]
    set problem [problem $row]
    if {$problem eq ""} {return}
    lassign $problem kind id element text
    ::vesk::ops::run check_select $kind $id $element
    vesk fit_selected_all
    display_message $text
}

# context --
#   The menu of the right button on a row.
proc ::vesk::issues::context {x y root_x root_y} {
    variable list
    variable kinds
    variable filling
    set row [$list identify row $x $y]
    if {$row eq ""} {return}
    # The right button only marks the row.
    set filling 1
    $list selection set [list $row]
    $list focus $row
    after idle {set ::vesk::issues::filling 0}
    set kind [lindex $row 0]
    if {[$list parent $row] ne ""} {set kind [$list parent $row]}
    if {[lsearch -exact $kinds $kind] < 0} {return}
    lassign [lrange $kinds [lsearch -exact $kinds $kind] end] name label one
    set problem [problem $row]
    set menu [::vesk::menus::new_popup]
    if {$problem ne ""} {
        ::vesk::menus::add_command $menu Select ::vesk::issues::chosen
        ::vesk::menus::add_command $menu "Fix this $one" \
            [list ::vesk::issues::fix {*}[lrange $problem 0 2]]
    }
    ::vesk::menus::add_command $menu "Fix all of this kind" [list ::vesk::issues::fix_kind $kind]
    tk_popup $menu $root_x $root_y
}

proc ::vesk::issues::context_of_focus {} {
    variable list
    set box [$list bbox [$list focus]]
    if {$box eq ""} {return}
    lassign $box x y width height
    set y [expr {$y + $height / 2}]
    context $x $y [expr {[winfo rootx $list] + 40}] [expr {[winfo rooty $list] + $y}]
}

proc ::vesk::issues::fix {kind id element} {
    ::vesk::ops::run check_fix $kind $id $element
    check
}

proc ::vesk::issues::fix_kind {kind} {
    ::vesk::ops::run check_fix_all $kind
    check
}

# fix_all --
#   The button: mends the kind of the chosen row, else every kind, one undo step each.
proc ::vesk::issues::fix_all {} {
    variable list
    variable kinds
    variable counts
    variable notes
    set row [lindex [$list selection] 0]
    if {$row ne ""} {
        fix_kind [expr {[$list parent $row] eq "" ? $row : [$list parent $row]}]
        return
    }
    set before [faults]
    foreach {kind label one icon} $kinds {
        # Mending one kind can make or take away others.
        if {[dict get [vesk check_counts] $kind] > [dict get [vesk check_notes] $kind]} {
            ::vesk::ops::run check_fix_all $kind
        }
    }
    check
    display_message "[::vesk::arith::counted $before problem] before, [faults] left"
}

# open --
#   The menu entry and its key: shows the tab and checks the model.
proc ::vesk::issues::open {} {
    ::vesk::main::show_tab issues
    update idletasks
    check
    focus $::vesk::issues::list
}

proc model_check_ended {} {::vesk::issues::ended}

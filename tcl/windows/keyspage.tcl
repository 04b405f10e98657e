# keyspage.tcl --
#   The keys page of the preferences: a table of all actions, keys recorded by pressing them,
#   clashes, and presets.

::vesk::need lib keys

namespace eval ::vesk::keyspage {
    variable page ""            ;# the frame of the page
    variable preset_label ""
    variable filter ""
    variable recording ""       ;# id whose key is being pressed
    variable offered {}         ;# {id key} that clashes, waiting for an answer
}

# build --
#   Fills the preferences' page from a row of its grid on.
proc ::vesk::keyspage::build {body line} {
    variable page $body.keys
    variable filter ""
    destroy $page
    ttk::frame $page -style Panel.TFrame
    grid $page -row $line -column 0 -columnspan 6 -sticky nswe -pady [::vesk::theme::pad 4 0]
    build_top $page.top
    build_list $page.list
    build_edit $page.edit
    build_clash $page.clash
    grid $page.top - -sticky we -pady [::vesk::theme::pad 0 10]
    grid $page.list $page.bar -sticky nswe
    grid $page.edit - -sticky we -pady [::vesk::theme::pad 10 0]
    grid $page.clash - -sticky we -pady [::vesk::theme::pad 8 0]
    grid remove $page.clash
    grid columnconfigure $page 0 -weight 1
    fill
    show_preset
    $page.list selection set [list view.object]
    row_chosen
}

proc ::vesk::keyspage::build_top {top} {
    ttk::frame $top -style Panel.TFrame
    ttk::label $top.label -style Panel.Dim.TLabel -text "Keys as"
    ttk::combobox $top.preset -style Panel.TCombobox -state readonly -width 18 \
        -values [lmap {name label keys} $::vesk::keys::presets {set label}] \
        -textvariable ::vesk::keyspage::preset_label
    ttk::label $top.find -style Panel.Dim.TLabel -text Filter
    ttk::entry $top.filter -style Panel.TEntry -width 20 -textvariable ::vesk::keyspage::filter
    pack $top.label $top.preset -side left -padx [::vesk::theme::pad 0 10]
    pack $top.filter $top.find -side right -padx [::vesk::theme::pad 10 0]
    bind $top.preset <<ComboboxSelected>> ::vesk::keyspage::preset_chosen
    bind $top.filter <KeyRelease> ::vesk::keyspage::fill
}

proc ::vesk::keyspage::build_list {list} {
    variable page
    ttk::treeview $list -columns {key standard} -show {tree headings} -selectmode browse -height 15
    $list heading #0 -text "  Action" -anchor w
    $list column #0 -width [::vesk::theme::px 330]
    foreach {column text} {key Key standard Standard} {
        $list heading $column -text $text -anchor w
        $list column $column -width [::vesk::theme::px 120] -stretch 0
    }
    ::vesk::parts::scrollbar $page.bar $list
    bind $list <<TreeviewSelect>> ::vesk::keyspage::row_chosen
    ::vesk::fields::on_keys $list {
        Double-Button-1 ::vesk::keyspage::record
        Return ::vesk::keyspage::record
        Delete {::vesk::keyspage::give_key {}}
    }
}

# build_edit --
#   The buttons for the chosen action.
proc ::vesk::keyspage::build_edit {edit} {
    ttk::frame $edit -style Panel.TFrame
    ttk::button $edit.record -style Panel.Default.TButton -text "Press a key..." \
        -command ::vesk::keyspage::record
    ttk::button $edit.clear -style Panel.TButton -text "No key" \
        -command {::vesk::keyspage::give_key {}}
    ttk::button $edit.standard -style Panel.TButton -text Standard \
        -command ::vesk::keyspage::give_standard
    ttk::label $edit.message -style Panel.Dim.TLabel -anchor w
    pack $edit.record $edit.clear $edit.standard -side left -padx [::vesk::theme::pad 0 8]
    pack $edit.message -side left -fill x -expand 1
}

# build_clash --
#   The question about a key that another action has.
proc ::vesk::keyspage::build_clash {clash} {
    ttk::frame $clash -style Panel.TFrame
    ttk::label $clash.text -style Panel.TLabel -anchor w \
        -wraplength [::vesk::theme::px 360] -justify left
    ttk::button $clash.take -style Panel.TButton -text "Take it over" \
        -command ::vesk::keyspage::take_over
    ttk::button $clash.leave -style Panel.TButton -text Leave -command ::vesk::keyspage::leave
    pack $clash.take $clash.leave -side right -padx [::vesk::theme::pad 8 0]
    pack $clash.text -side left -fill x -expand 1
}

# fill --
#   Fills the table: groups, and below them the actions; clashing keys have a colour of their own.
proc ::vesk::keyspage::fill {} {
    variable page
    variable filter
    set list $page.list
    set chosen [lindex [$list selection] 0]
    set top [lindex [$list yview] 0]
    $list delete [$list children {}]
    $list tag configure clash -foreground [::vesk::theme::colour warn]
    set rows [::vesk::keys::rows]
    foreach row $rows {
        set key [::vesk::keys::key_of [lindex $row 0]]
        if {$key ne ""} {incr times($key)}
    }
    set wanted [string tolower [string trim $filter]]
    foreach row $rows {
        lassign $row id group label standard
        set key [::vesk::keys::key_of $id]
        if {$wanted ne "" && [string first $wanted [string tolower "$group $label $key"]] < 0} {
            continue
        }
        if {![$list exists "group $group"]} {
            $list insert {} end -id "group $group" -text " $group" -open 1
        }
        set tags [expr {$key ne "" && $times($key) > 1 ? "clash" : ""}]
        $list insert "group $group" end -id $id -text " $label" -tags $tags \
            -values [list $key [expr {$key eq $standard ? "" : $standard eq "" ? "none" : $standard}]]
    }
    if {$chosen ne "" && [$list exists $chosen]} {$list selection set [list $chosen]}
    $list yview moveto $top
}

proc ::vesk::keyspage::show_preset {} {
    variable preset_label Own
    set now [::vesk::keys::preset]
    foreach {name label keys} $::vesk::keys::presets {
        if {$name eq $now} {set preset_label $label}
    }
}
proc ::vesk::keyspage::preset_chosen {} {
    variable page
    variable preset_label
    $page.top.preset selection clear
    set wanted $preset_label
    # Own keys are dropped only when that is said.
    if {[::vesk::keys::preset] eq "" && [::vesk::dialogs::question "Drop your own keys?" \
            "The keys \"$wanted\" replace those that you set yourself." \
            {cancel Cancel drop "Drop them"} cancel cancel] ne "drop"} {
        show_preset
        return
    }
    foreach {name label keys} $::vesk::keys::presets {
        if {$label eq $wanted} {::vesk::keys::use $name}
    }
    shown_again ""
}

# chosen --
#   The id of the chosen action, or "" for a group or none.
proc ::vesk::keyspage::chosen {} {
    variable page
    set id [lindex [$page.list selection] 0]
    return [expr {[string match "group *" $id] ? "" : $id}]
}

proc ::vesk::keyspage::row_chosen {} {
    variable page
    stop_recording
    leave
    set state [expr {[chosen] eq "" ? "disabled" : "!disabled"}]
    foreach button {record clear standard} {$page.edit.$button state $state}
    $page.edit.message configure -text ""
}

# record --
#   Records the next key for the chosen action; Escape keeps the old one.
proc ::vesk::keyspage::record {} {
    variable page
    variable recording [chosen]
    if {$recording eq ""} {return}
    leave
    $page.edit.message configure -text "Press the new key; Escape leaves the old one."
    bind $page.edit.record <Key> {::vesk::keyspage::recorded %A %K %s; break}
    bind $page.edit.record <FocusOut> ::vesk::keyspage::stop_recording
    focus $page.edit.record
}

proc ::vesk::keyspage::stop_recording {} {
    variable page
    variable recording
    if {$recording eq ""} {return}
    set recording ""
    if {![winfo exists $page.edit.record]} {return}
    bind $page.edit.record <Key> {}
    bind $page.edit.record <FocusOut> {}
    $page.edit.message configure -text ""
}

proc ::vesk::keyspage::recorded {text keysym state} {
    variable page
    variable recording
    set key [::vesk::keys::text_of $text $keysym $state]
    if {$key eq "" || $recording eq ""} {return}
    stop_recording
    focus $page.list
    if {$key eq "Escape"} {return}
    give_key $key
}

# give_key --
#   Gives the chosen action a key, or asks first when another has it.
proc ::vesk::keyspage::give_key {key} {
    variable page
    variable offered
    set id [chosen]
    if {$id eq ""} {return}
    set others [lsearch -all -inline -not -exact [::vesk::keys::users $key] $id]
    if {[llength $others] == 0} {
        ::vesk::keys::set_key $id $key
        shown_again [expr {$key eq "" ? "It has no key now." : "Its key is $key now."}]
        return
    }
    set offered [list $id $key]
    set labels [lmap other $others {
        set row [lsearch -inline -exact -index 0 [::vesk::keys::rows] $other]
        string cat [lindex $row 1] " > " [lindex $row 2]
    }]
    $page.clash.text configure -text "$key belongs to [join $labels {, }]."
    grid $page.clash
    ::vesk::preferences::fit [winfo width .preferences.page]
    focus $page.clash.take
}

# take_over, leave, asks --
#   The two answers to a clash, and whether one waits for them.
proc ::vesk::keyspage::take_over {} {
    variable offered
    lassign $offered id key
    foreach other [::vesk::keys::users $key] {
        if {$other ne $id} {::vesk::keys::set_key $other ""}
    }
    ::vesk::keys::set_key $id $key
    leave
    shown_again "Its key is $key now."
}
proc ::vesk::keyspage::asks {} {
    variable page
    return [expr {[winfo exists $page.clash] && [winfo manager $page.clash] ne ""}]
}
proc ::vesk::keyspage::leave {} {
    variable page
    variable offered {}
    if {[winfo exists $page.clash]} {grid remove $page.clash}
}

proc ::vesk::keyspage::give_standard {} {
    set row [lsearch -inline -exact -index 0 [::vesk::keys::rows] [chosen]]
    if {$row ne ""} {give_key [lindex $row 3]}
}

# shown_again --
#   Fills the page anew after a change, with a message.
proc ::vesk::keyspage::shown_again {message} {
    variable page
    if {![winfo exists $page]} {return}
    fill
    show_preset
    $page.edit.message configure -text $message
}

# keyspage.tcl --
#   The keys page of the preferences: a table of every action, a key recorded by pressing it, what
#   clashes, and presets.

if {![info exists ::vesk::keys::presets]} {source [file join $::vesk::script_folder keys.tcl]}

namespace eval ::vesk::keys {
    variable page ""            ;# the frame of the page
    variable preset_label ""
    variable filter ""
    variable recording ""       ;# id whose key is being pressed
    variable offered {}         ;# {id key} that clashes, waiting for an answer
}

# build_page --
#   Fills the preferences' page from a row of its grid on.
proc ::vesk::keys::build_page {body line} {
    variable page $body.keys
    variable filter ""
    destroy $page
    ttk::frame $page -style Panel.TFrame
    grid $page -row $line -column 0 -columnspan 6 -sticky nswe -pady [::vesk::theme::pad 4 0]
    ttk::frame $page.top -style Panel.TFrame
    ttk::label $page.top.label -style Panel.Dim.TLabel -text "Keys as"
    ttk::combobox $page.top.preset -style Panel.TCombobox -state readonly -width 18 \
        -values [lmap {name label keys} $::vesk::keys::presets {set label}] \
        -textvariable ::vesk::keys::preset_label
    ttk::label $page.top.find -style Panel.Dim.TLabel -text Filter
    ttk::entry $page.top.filter -style Panel.TEntry -width 20 -textvariable ::vesk::keys::filter
    pack $page.top.label $page.top.preset -side left -padx [::vesk::theme::pad 0 10]
    pack $page.top.filter $page.top.find -side right -padx [::vesk::theme::pad 10 0]
    bind $page.top.preset <<ComboboxSelected>> ::vesk::keys::preset_chosen
    bind $page.top.filter <KeyRelease> ::vesk::keys::fill
    set list $page.list
    ttk::treeview $list -columns {key standard} -show {tree headings} -selectmode browse -height 15 \
        -yscrollcommand [list ::vesk::theme::autohide $page.bar]
    $list heading #0 -text "  Action" -anchor w
    $list heading key -text "Key" -anchor w
    $list heading standard -text "Standard" -anchor w
    $list column #0 -width [::vesk::theme::px 330]
    $list column key -width [::vesk::theme::px 120] -stretch 0
    $list column standard -width [::vesk::theme::px 120] -stretch 0
    ttk::scrollbar $page.bar -style Panel.Vertical.TScrollbar -command [list $list yview]
    ttk::frame $page.edit -style Panel.TFrame
    ttk::button $page.edit.record -style Panel.Default.TButton -text "Press a key..." \
        -command ::vesk::keys::record
    ttk::button $page.edit.clear -style Panel.TButton -text "No key" \
        -command {::vesk::keys::give_key {}}
    ttk::button $page.edit.standard -style Panel.TButton -text Standard \
        -command ::vesk::keys::give_standard
    ttk::label $page.edit.message -style Panel.Dim.TLabel -anchor w
    pack $page.edit.record $page.edit.clear $page.edit.standard -side left \
        -padx [::vesk::theme::pad 0 8]
    pack $page.edit.message -side left -fill x -expand 1
    ttk::frame $page.clash -style Panel.TFrame
    ttk::label $page.clash.text -style Panel.TLabel -anchor w \
        -wraplength [::vesk::theme::px 360] -justify left
    ttk::button $page.clash.take -style Panel.TButton -text "Take it over" \
        -command ::vesk::keys::take_over
    ttk::button $page.clash.leave -style Panel.TButton -text Leave -command ::vesk::keys::leave
    pack $page.clash.take $page.clash.leave -side right -padx [::vesk::theme::pad 8 0]
    pack $page.clash.text -side left -fill x -expand 1
    grid $page.top - -sticky we -pady [::vesk::theme::pad 0 10]
    grid $list $page.bar -sticky nswe
    grid $page.edit - -sticky we -pady [::vesk::theme::pad 10 0]
    grid $page.clash - -sticky we -pady [::vesk::theme::pad 8 0]
    grid remove $page.clash
    grid columnconfigure $page 0 -weight 1
    bind $list <<TreeviewSelect>> ::vesk::keys::row_chosen
    bind $list <Double-Button-1> {::vesk::keys::record; break}
    bind $list <Return> {::vesk::keys::record; break}
    bind $list <Delete> {::vesk::keys::give_key {}; break}
    fill
    show_preset
    $list selection set [list view.object]
    row_chosen
}

# fill --
#   The table: groups, and below them the actions; clashing keys stand out.
proc ::vesk::keys::fill {} {
    variable page
    variable filter
    set list $page.list
    set chosen [lindex [$list selection] 0]
    set top [lindex [$list yview] 0]
    $list delete [$list children {}]
    $list tag configure clash -foreground [::vesk::theme::colour warn]
    set rows [rows]
    foreach row $rows {
        set key [key_of [lindex $row 0]]
        if {$key ne ""} {incr times($key)}
    }
    set wanted [string tolower [string trim $filter]]
    foreach row $rows {
        lassign $row id group label standard
        set key [key_of $id]
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

proc ::vesk::keys::show_preset {} {
    variable presets
    variable preset_label Own
    set now [preset]
    foreach {name label keys} $presets {
        if {$name eq $now} {set preset_label $label}
    }
}
proc ::vesk::keys::preset_chosen {} {
    variable page
    variable presets
    variable preset_label
    $page.top.preset selection clear
    foreach {name label keys} $presets {
        if {$label eq $preset_label} {use $name}
    }
    shown_again ""
}

# chosen --
#   The id of the chosen action, or "" for a group or none.
proc ::vesk::keys::chosen {} {
    variable page
    set id [lindex [$page.list selection] 0]
    return [expr {[string match "group *" $id] ? "" : $id}]
}

proc ::vesk::keys::row_chosen {} {
    variable page
    stop_recording
    leave
    set state [expr {[chosen] eq "" ? "disabled" : "!disabled"}]
    foreach button {record clear standard} {$page.edit.$button state $state}
    $page.edit.message configure -text ""
}

# record --
#   The next key that is pressed becomes that of the chosen action; Escape leaves it.
proc ::vesk::keys::record {} {
    variable page
    variable recording [chosen]
    if {$recording eq ""} {return}
    leave
    $page.edit.message configure -text "Press the new key; Escape leaves the old one."
    bind $page.edit.record <Key> {::vesk::keys::recorded %A %K %s; break}
    bind $page.edit.record <FocusOut> ::vesk::keys::stop_recording
    focus $page.edit.record
}

proc ::vesk::keys::stop_recording {} {
    variable page
    variable recording
    if {$recording eq ""} {return}
    set recording ""
    if {![winfo exists $page.edit.record]} {return}
    bind $page.edit.record <Key> {}
    bind $page.edit.record <FocusOut> {}
    $page.edit.message configure -text ""
}

proc ::vesk::keys::recorded {text keysym state} {
    variable page
    variable recording
    set key [text_of $text $keysym $state]
    if {$key eq "" || $recording eq ""} {return}
    stop_recording
    focus $page.list
    if {$key eq "Escape"} {return}
    give_key $key
}

# give_key --
#   Gives the chosen action a key, or asks first when another has it.
proc ::vesk::keys::give_key {key} {
    variable page
    variable offered
    set id [chosen]
    if {$id eq ""} {return}
    set others [lsearch -all -inline -not -exact [users $key] $id]
    if {[llength $others] == 0} {
        set_key $id $key
        shown_again [expr {$key eq "" ? "It has no key now." : "Its key is $key now."}]
        return
    }
    set offered [list $id $key]
    set labels [lmap other $others {
        set row [lsearch -inline -exact -index 0 [rows] $other]
        string cat [lindex $row 1] " > " [lindex $row 2]
    }]
    $page.clash.text configure -text "$key belongs to [join $labels {, }]."
    grid $page.clash
    ::vesk::preferences::fit [winfo width .preferences.page]
    focus $page.clash.take
}

# take_over, leave --
#   The two answers to a clash.
proc ::vesk::keys::take_over {} {
    variable offered
    lassign $offered id key
    foreach other [users $key] {
        if {$other ne $id} {set_key $other ""}
    }
    set_key $id $key
    leave
    shown_again "Its key is $key now."
}
proc ::vesk::keys::leave {} {
    variable page
    variable offered {}
    if {[winfo exists $page.clash]} {grid remove $page.clash}
}

proc ::vesk::keys::give_standard {} {
    set row [lsearch -inline -exact -index 0 [rows] [chosen]]
    if {$row ne ""} {give_key [lindex $row 3]}
}

# shown_again --
#   After a change.
proc ::vesk::keys::shown_again {message} {
    variable page
    if {![winfo exists $page]} {return}
    fill
    show_preset
    $page.edit.message configure -text $message
}

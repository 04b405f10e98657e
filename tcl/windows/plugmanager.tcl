# plugmanager.tcl --
#   The plug-ins page of the preferences: the plug-ins with their texts and additions, loading one,
#   leaving one out at the next start.

namespace eval ::vesk::plugmanager {
    variable page ""
    variable all 1              ;# plug-ins are loaded at the start
    variable wanted 1           ;# the chosen one is loaded
}

# build --
#   Fills the preferences' page from a row of its grid on.
proc ::vesk::plugmanager::build {body line} {
    variable page $body.plugins
    variable all [expr {"*" ni [::vesk::settings::get plugins_off]}]
    destroy $page
    ttk::frame $page -style Panel.TFrame
    grid $page -row $line -column 0 -columnspan 6 -sticky we -pady [::vesk::theme::pad 14 0]
    set list $page.list
    ttk::treeview $list -columns state -show tree -selectmode browse -height 6
    $list column #0 -width [::vesk::theme::px 350]
    $list column state -width [::vesk::theme::px 220] -anchor e -stretch 0
    ::vesk::parts::scrollbar $page.bar $list
    text $page.text -width 20 -height 11 -wrap word -state disabled -font TkDefaultFont \
        -padx [::vesk::theme::px 10] -pady [::vesk::theme::px 8]
    ::vesk::theme::recolour $page.text
    $page.text tag configure head -font VeskBold
    ttk::frame $page.row -style Panel.TFrame
    ttk::checkbutton $page.row.wanted -style Panel.TCheckbutton -text "Load it at the start" \
        -variable ::vesk::plugmanager::wanted -command ::vesk::plugmanager::wanted_set
    ttk::button $page.row.load -style Panel.TButton -text "Load now..." \
        -command ::vesk::plugmanager::load_ask
    ttk::checkbutton $page.all -style Panel.TCheckbutton \
        -text "Load plug-ins at the start (else as with the option -noplugins)" \
        -variable ::vesk::plugmanager::all -command ::vesk::plugmanager::all_set
    pack $page.row.wanted -side left
    pack $page.row.load -side right
    grid $list $page.bar -sticky nswe
    grid $page.text - -sticky we -pady [::vesk::theme::pad 8 8]
    grid $page.row - -sticky we
    grid $page.all - -sticky w -pady [::vesk::theme::pad 12 0]
    grid columnconfigure $page 0 -weight 1
    bind $list <<TreeviewSelect>> ::vesk::plugmanager::show
    ::vesk::icons::follow_selection $list
    fill
}

# found --
#   Every plug-in: {path state}, the loaded ones first; state is loaded or not loaded.
proc ::vesk::plugmanager::found {} {
    set loaded [vesk get_plugin_list]
    if {[catch {llength $loaded}]} {set loaded {}}
    set result [lmap path $loaded {list $path loaded}]
    set names [lmap path $loaded {file tail $path}]
    foreach path [lsort [glob -nocomplain -directory [file join $::VESK_HOME plugins] -- *.p]] {
        if {[file tail $path] ni $names} {lappend result [list $path "not loaded"]}
    }
    return $result
}

proc ::vesk::plugmanager::fill {} {
    variable page
    set list $page.list
    set chosen [lindex [$list selection] 0]
    $list delete [$list children {}]
    foreach item [found] {
        lassign $item path state
        if {![is_wanted $path]} {append state ", not next time"}
        $list insert {} end -id $path -text " [file tail $path]" -values [list "$state "] \
            -image [::vesk::icons::get socket dim]
    }
    if {$chosen eq "" || ![$list exists $chosen]} {set chosen [lindex [$list children {}] 0]}
    if {$chosen ne ""} {$list selection set [list $chosen]}
    show
}

# show --
#   Shows the texts and the additions of the chosen plug-in.
proc ::vesk::plugmanager::show {} {
    variable page
    variable wanted
    set text $page.text
    set path [lindex [$page.list selection] 0]
    $text configure -state normal
    $text delete 1.0 end
    $page.row.wanted state [expr {$path eq "" ? "disabled" : "!disabled"}]
    if {$path eq ""} {
        $text insert end "There are no plug-ins in [file join $::VESK_HOME plugins]."
    } else {
        set wanted [is_wanted $path]
        set said ""
        foreach command {get_plugin_info get_plugin_about} {
            set answer [string trim [vesk $command $path]]
            if {$answer ne "" && [string first $answer $said] < 0} {append said $answer \n}
        }
        $text insert end $said {} "$path\n" {}
        foreach {what items} [::vesk::plugins::added $path] {
            if {[llength $items] == 0} {continue}
            $text insert end "\n$what\n" head "[join $items {, }]\n"
        }
    }
    $text configure -state disabled
}

proc ::vesk::plugmanager::is_wanted {path} {
    return [expr {[file tail $path] ni [::vesk::settings::get plugins_off]}]
}

# wanted_set, all_set --
#   Plug-ins that are left out are kept in the settings, for the next start.
proc ::vesk::plugmanager::wanted_set {} {
    variable page
    variable wanted
    set name [file tail [lindex [$page.list selection] 0]]
    leave_out $name [expr {!$wanted}]
    fill
}
proc ::vesk::plugmanager::all_set {} {
    variable all
    leave_out * [expr {!$all}]
}
proc ::vesk::plugmanager::leave_out {name out} {
    set names [lsearch -all -inline -not -exact [::vesk::settings::get plugins_off] $name]
    if {$out} {lappend names $name}
    ::vesk::settings::set_value plugins_off $names
}

proc ::vesk::plugmanager::load_ask {} {
    set name [::vesk::options::ask_file {File open_file .p} "Load a plug-in"]
    if {$name eq ""} {return}
    ::vesk::ops::run plugin_load $name
    fill
}

# dialogs.tcl --
#   Every window of the menus: opened by its entry and by its key, closed by Escape. Every entry of
#   every menu has something that does it. Then a session with nothing but the keyboard: open, edit,
#   save, quit.

source [file join [file dirname [info script]] support.tcl]

# choose --
#   Chooses an entry of a menu of the bar by the words of its target.
proc choose {menu words} {
    lassign [entry_of $menu $words] path place
    $path invoke $place
}

run {
    at xy 300 150
    vesk new_cube
    foreach {w menu words key} {
        .preferences  edit    ::vesk::preferences::open ctrl+comma
        .history      edit    ::vesk::history::open     ctrl+h
        .search       tools   ::vesk::search::open      F3
        .operations   tools   ::vesk::operations::open  ctrl+e
        .textkeys     help    ::vesk::help::keys        F1
        .textcommands help    ::vesk::help::commands    {}
        .tips         help    ::vesk::tips::open        {}
        .about        help    ::vesk::help::about       {}
        .report       help    ::vesk::report::open      {}
        .textmodelinformation tools get_info            {}
        .preferences  plugins ::vesk::preferences::open {}
    } {
        foreach way {menu key} {
            if {$way eq "key" && $key eq ""} {continue}
            if {$way eq "menu"} {choose $menu $words} else {key $key}
            check "$w opens by its $way" {[shown $w]}
            if {![winfo exists $w]} {continue}
            point_at $w
            key Escape
            check "and Escape closes it" {![winfo exists $w]}
            destroy $w
            at xy 300 150
        }
    }
    # File dialogs and the question about changes.
    foreach {menu words key w} {
        file ::vesk::files::import_ask ctrl+i       .filebox
        file ::vesk::files::save_as    ctrl+shift+s .filebox
        file ::vesk::files::open_ask   ctrl+o       .question
        file ::vesk::files::new        ctrl+n       .question
        texture file_select_texture    {}           .filebox
    } {
        foreach way {menu key} {
            if {$way eq "key" && $key eq ""} {continue}
            set ::seen 0
            set ::w $w
            when {[front $::w]} {
                set ::seen 1
                point_at $::w
                key Escape
            }
            if {$words eq "file_select_texture"} {vesk select_all}
            if {$way eq "menu"} {choose $menu $words} else {key $key}
            check "$words asks, by its $way, and Escape leaves it" {
                $::seen && ![winfo exists $w] && [llength [vesk object_tree]] == 7
            }
            at xy 300 150
        }
    }

    # What every entry needs is there.
    set lacking {}
    set unshown {}
    foreach pair [::vesk::menus::all] {
        lassign $pair trail row
        lassign $row kind label target key
        set command [lindex $target 0]
        set there [switch $kind {
            run - ask - show {expr {[llength [vesk command_info $command]] > 0}}
            call {expr {[info commands $command] ne ""}}
            check - radio {
                set words [lrange $target [expr {$kind eq "check" ? 1 : 2}] end]
                expr {[info exists ::[string trimleft $command :]] && ([llength $words] == 0
                    || [info commands [lindex $words 0]] ne ""
                    || [llength [vesk command_info [lindex $words 0]]] > 0)}
            }
            default {expr 0}
        }]
        if {!$there} {lappend lacking "$trail > $label"}
    }
    dict for {name path} $::vesk::menus::paths {
        ::vesk::menus::fill $name $path
        set entry -1
        foreach row [::vesk::menus::rows $name] {
            incr entry
            if {[lindex $row 0] in {line menu}} {continue}
            if {[string trim [$path entrycget $entry -accelerator]] ne [lindex $row 3]} {
                lappend unshown [lindex $row 1]
            }
        }
    }
    check "every entry of the menus has something that does it" {$lacking eq {}}
    check "and shows its key" {$unshown eq {}}
    puts "$lacking $unshown"

    # The keyboard alone.
    set first [work first.vesk]
    set second [work second.vesk]
    vesk file_save $first
    ::vesk::files::mark_saved
    vesk clear_all
    ::vesk::files::mark_saved
    answer_file $first
    key ctrl+o
    check "opened" {[llength [vesk object_tree]] == 7 && $::vesk::files::target eq $first}
    key ctrl+a
    search "size to" "Size to..."
    wait_until {[front [::vesk::view::area].options]}
    key ctrl+a
    type 3
    key Tab ctrl+a
    type 4
    key Return
    check "edited" {[lrange [vesk get_selection_size] 0 1] eq "3 4"}
    check "there is no console yet" {![winfo ismapped .main.console]}
    key alt+w
    key c
    check "a letter with Alt and one of an entry show it" {[winfo ismapped .main.console]}
    key F12
    key F6
    set region [focus]
    key shift+F6
    check "F6 goes on and Shift+F6 back" {
        $region ne [focus] && [winfo class [focus]] eq "Togl"
    }
    key ctrl+s
    check "saved" {!$::unsaved_changes}
    # Another program writes to the file meanwhile.
    set own [contents $first]
    key ctrl+d
    write $first "$own "
    when {[front .question]} {key Escape}
    key ctrl+s
    check "a file that was changed is not saved over" {
        [contents $first] eq "$own " && $::unsaved_changes
    }
    when {[front .question]} {key shift+Tab shift+Tab space}
    key ctrl+s
    check "unless that is wanted" {[contents $first] ne "$own " && !$::unsaved_changes}
    key ctrl+z
    key ctrl+s
    check "and then it is the program's own again" {
        ![winfo exists .question] && !$::unsaved_changes
    }
    answer_file $second
    key ctrl+shift+s
    check "saved under another name" {
        [file exists $second] && $::vesk::files::target eq $second
    }
    vesk clear_all
    vesk load_vesk $first
    vesk set_select_mode object
    vesk select_all
    check "the file holds what was edited" {[lrange [vesk get_selection_size] 0 1] eq "3 4"}
    ::vesk::files::note_changes
    key ctrl+d
    rename ::exit ::really_exit
    set ended ""
    proc ::exit {{status 0}} {set ::ended $status}
    when {[front .question]} {key Escape}
    key ctrl+q
    check "Quit asks, Escape stays" {$ended eq ""}
    when {[front .question]} {key shift+Tab shift+Tab space}
    key ctrl+q
    rename ::exit {}
    rename ::really_exit ::exit
    check "and an answer reached with Tab ends the session" {$ended eq "0"}

    # Rendering as delivered, and the manual where there is no browser.
    fresh
    when {[front .question]} {
        set ::asked [.question.in.text cget -text]
        key Escape
    }
    set ::asked ""
    ::vesk::menus::invoke [::vesk::menus::find tools ::vesk::ops::render]
    check "rendering names the program that is missing" {
        [string match "*pvengine.exe*not on this computer*" $::asked]
    }
    check "and one that is there runs" {
        [::vesk::ops::missing_program "vesk execute {[auto_execok sh] -c true}"] eq ""
    }
    set path $::env(PATH)
    set ::env(PATH) [work nowhere]
    unset -nocomplain ::auto_execs
    ::vesk::menus::invoke [::vesk::menus::find help {::vesk::help::page manual}]
    check "the manual without a browser is shown as text" {
        [shown .textmanual] && [string match "*No browser was found*" [.textmanual.text get 1.0 end]]
    }
    set ::env(PATH) $path
    shot dialogs-manual
    destroy .textmanual

    # A new folder, hidden files, filters that say what they let through.
    file mkdir [work .hidden] [work seen]
    set ::rows {}
    when {[front .filebox]} {
        press .filebox.bottom.hidden
        set ::rows [lmap row [.filebox.list children {}] {string trim [.filebox.list item $row -text]}]
        press .filebox.top.make
        type "a folder"
        key Return
        shot dialogs-filebox
        type "in it"
        key Return
    }
    set name [::vesk::filebox::ask save Save [work .] {{Models *.vesk} {"All files" *}}]
    check "the hidden ones are shown" {".hidden" in $::rows && "seen" in $::rows}
    check "a new folder is gone to" {
        $name eq [file normalize [work "a folder/in it.vesk"]] && [file isdirectory [work "a folder"]]
    }
    check "the filter tells its patterns" {$::vesk::filebox::filter eq "Models (*.vesk)"}
    display_message "copy - 1 objects, 21 surfaces, 1 vertices, 1 holes, 1 copies"
    check "one thing is told in the singular" {
        [status] eq "copy - 1 object, 21 surfaces, 1 vertex, 1 hole, 1 copy"
    }
}

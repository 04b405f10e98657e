# dialogs.tcl --
#   Every window of the menus: opened by its entry and by its key, closed by Escape. Every entry of
#   every menu has something that does it. Then a session with nothing but the keyboard: open, edit,
#   save, quit.

source [file join [file dirname [info script]] support.tcl]

# choose --
#   Chooses an entry of a menu of the bar by the words of its target.
proc choose {menu words} {
    set rows [::vesk::menus::rows $menu]
    set path [dict get $::vesk::menus::paths $menu]
    ::vesk::menus::refresh $menu $path
    $path invoke [lsearch -exact $rows [::vesk::menus::find $menu $words]]
}
# later --
#   A dialog that waits for an answer stops what called it: what answers comes from a timer.
proc later {msecs script} {after $msecs [list uplevel #0 $script]}

::test::run {
    ::test::at xy 300 150
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
            if {$way eq "menu"} {choose $menu $words} else {::test::key $key}
            ::test::wait_until {[winfo exists $w] && [winfo viewable $w]} 3000
            ::test::check "$w opens by its $way" {[winfo exists $w] && [winfo viewable $w]}
            if {![winfo exists $w]} {continue}
            ::test::point_at $w
            ::test::key Escape
            ::test::wait_until {![winfo exists $w]} 2000
            ::test::check "and Escape closes it" {![winfo exists $w]}
            destroy $w
            ::test::at xy 300 150
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
            later 700 {
                set ::seen [expr {[winfo exists $::w] && [winfo viewable $::w]}]
                if {$::seen} {::test::point_at $::w}
                ::test::key Escape
            }
            if {$words eq "file_select_texture"} {vesk select_all}
            if {$way eq "menu"} {choose $menu $words} else {::test::key $key}
            ::test::pause 300
            ::test::check "$words asks, by its $way, and Escape leaves it" {
                $::seen && ![winfo exists $w] && [llength [vesk object_tree]] == 7
            }
            ::test::at xy 300 150
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
        set entry -1
        foreach row [::vesk::menus::rows $name] {
            incr entry
            if {[lindex $row 0] in {line menu}} {continue}
            if {[string trim [$path entrycget $entry -accelerator]] ne [lindex $row 3]} {
                lappend unshown [lindex $row 1]
            }
        }
    }
    ::test::check "every entry of the menus has something that does it" {$lacking eq {}}
    ::test::check "and shows its key" {$unshown eq {}}
    puts "$lacking $unshown"

    # The keyboard alone.
    set folder $::env(VESK_TEST_WORK)
    set first [file join $folder first.vesk]
    set second [file join $folder second.vesk]
    vesk file_save $first
    ::vesk::files::mark_saved
    vesk clear_all
    ::vesk::files::mark_saved
    later 800 {
        ::test::key ctrl+a
        ::test::type $first
        ::test::key Return
    }
    ::test::key ctrl+o
    ::test::pause 300
    ::test::check "opened" {[llength [vesk object_tree]] == 7 && $::vesk::files::target eq $first}
    ::test::key ctrl+a
    ::test::key F3
    ::test::type "size to"
    ::test::pause 300
    ::test::key Return
    ::test::pause 300
    ::test::key ctrl+a
    ::test::type 3
    ::test::key Tab ctrl+a
    ::test::type 4
    ::test::key Return
    ::test::check "edited" {[lrange [vesk get_selection_size] 0 1] eq "3 4"}
    ::test::check "by a menu too: Alt+letter and the entry's letter" {
        [winfo exists .main.console] && ![winfo ismapped .main.console]
    }
    ::test::key alt+w
    ::test::key c
    ::test::pause 300
    ::test::check "Window > Console" {[winfo ismapped .main.console]}
    ::test::key F12
    ::test::key F6
    set region [focus]
    ::test::key shift+F6
    ::test::check "F6 goes on and Shift+F6 back" {
        $region ne [focus] && [winfo class [focus]] eq "Togl"
    }
    ::test::key ctrl+s
    ::test::check "saved" {!$::unsaved_changes}
    later 800 {
        ::test::key ctrl+a
        ::test::type $second
        ::test::key Return
    }
    ::test::key ctrl+shift+s
    ::test::pause 300
    ::test::check "saved under another name" {
        [file exists $second] && $::vesk::files::target eq $second
    }
    vesk clear_all
    vesk load_vesk $first
    vesk set_select_mode object
    vesk select_all
    ::test::check "the file holds what was edited" {[lrange [vesk get_selection_size] 0 1] eq "3 4"}
    ::vesk::files::note_changes
    ::test::key ctrl+d
    rename ::exit ::really_exit
    set ended ""
    proc ::exit {{status 0}} {set ::ended $status}
    later 700 {::test::key Escape}
    ::test::key ctrl+q
    ::test::pause 700
    ::test::check "Quit asks, Escape stays" {$ended eq ""}
    later 700 {::test::key shift+Tab shift+Tab space}
    ::test::key ctrl+q
    ::test::pause 500
    rename ::exit {}
    rename ::really_exit ::exit
    ::test::check "and an answer reached with Tab ends the session" {$ended eq "0"}
    ::test::check "no script failed" {$::test::errors eq {}}
}

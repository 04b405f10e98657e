# preferences.tcl --
#   The preferences window with real mouse and keys: every row has a widget that shows and writes
#   it, changes count at once, presets, the keys page, the plug-ins page.

source [file join [file dirname [info script]] support.tcl]

set w .preferences
proc page {name} {
    press_row .preferences.left.list $name
    wait_until {[.preferences.head.title cget -text] eq $name}
}
# field, arrow --
#   The widget of a row that takes the keyboard, found by the label of its key; what puts it back.
proc number_of {key} {
    foreach label [winfo children $::vesk::preferences::body] {
        if {[winfo class $label] eq "TLabel" && [$label cget -text] eq $key} {
            return [string range [winfo name $label] 1 end]
        }
    }
}
proc field {key} {
    if {[set number [number_of $key]] eq ""} {return ""}
    set field $::vesk::preferences::body.f$number
    return [expr {[winfo class $field] eq "TCheckbutton" ? $field : "$field.value"}]
}
proc arrow {key} {return $::vesk::preferences::body.r[number_of $key]}
proc show_field {key} {
    ::vesk::preferences::see [field $key]
    update
    return [field $key]
}

run {
    at xy 200 200
    key ctrl+comma
    check "Control+comma opens the window" {[winfo ismapped $w]}
    key Escape
    check "Escape closes it" {![winfo exists $w] && [winfo class [focus]] eq "Togl"}
    key ctrl+comma

    # Every preference of the executable that is a choice has a row, whose widget follows it.
    set kinds {}
    foreach {key kind value} [vesk prefs_rows] {dict set kinds $key $kind}
    set missing {}
    set deaf {}
    dict for {name groups} $::vesk::prefs::pages {
        ::vesk::preferences::choose $name
        foreach {title rows} $groups {
            foreach row $rows {
                set key [lindex $row 0]
                if {![dict exists $kinds $key]} {continue}
                set field [field $key]
                if {$field eq ""} {continue}
                dict set seen $key 1
                set before [set ::prefs_$key]
                switch [dict get $kinds $key] {
                    boolean {
                        $field invoke
                        set heard [expr {[set ::prefs_$key] != $before}]
                        $field invoke
                    }
                    int - double {
                        set ::prefs_$key 1
                        set heard [expr {[winfo class $field] eq "TCombobox" || [$field get] == 1}]
                    }
                    hex {
                        set ::prefs_$key 0x123456
                        set heard [expr {[$field get] eq "#123456"}]
                    }
                    string {
                        if {[lindex $row 3] eq "font"} {
                            set ::prefs_$key [list [font actual TkFixedFont -family] 14]
                            set heard [expr {[[winfo parent $field].size get] == 14}]
                            set ::prefs_$key $before
                            continue
                        }
                        set ::prefs_$key "a text"
                        set text [expr {[winfo class $field] eq "Text" ? [$field get 1.0 end-1c]
                            : [$field get]}]
                        set heard [expr {$text eq "a text"}]
                    }
                }
                set ::prefs_$key $before
                if {!$heard} {lappend deaf $key}
            }
        }
    }
    foreach key [dict keys $kinds] {
        if {[dict exists $seen $key] == [regexp $::vesk::prefs::records $key]} {lappend missing $key}
    }
    check "every preference has a row, but no record has" {$missing eq {}}
    check "whose widget shows and writes it" {$deaf eq {}}
    if {$missing ne "" || $deaf ne ""} {puts "missing: $missing  deaf: $deaf"}

    # The window keeps its width.
    set widths {}
    dict for {name groups} $::vesk::prefs::pages {
        page $name
        settle
        lappend widths [winfo width $w]
    }
    check "every page is as wide" {[llength [lsort -unique $widths]] == 1}
    check "and has room for its rows" {
        [winfo reqwidth $::vesk::preferences::body] <= [winfo width $w.page]
    }

    # By hand.
    page Views
    enter [show_field vert_size] "3+4"
    check "a typed number counts at once" {$::prefs_vert_size == 7}
    key Up
    check "Up steps by one" {$::prefs_vert_size == 8}
    type x
    key Escape
    check "Escape takes the typing back" {$::prefs_vert_size == 8 && [winfo exists $w]}
    shot preferences-views
    set reset [arrow vert_size]
    check "a changed row has an arrow" {[winfo ismapped $reset]}
    press $reset
    check "which puts the default back" {$::prefs_vert_size == 3 && ![winfo ismapped $reset]}
    press [show_field filled_orth] 8
    check "a check box counts at once" {$::prefs_filled_orth == 0}
    press $w.foot.reset
    check "the page is reset" {$::prefs_filled_orth == 1}
    page Colours
    enter [show_field col_line] "00ff7f"
    check "a typed colour counts" {$::prefs_col_line == 0x00ff7f}
    enter [field col_line] "red?"
    check "what is none is refused" {
        $::prefs_col_line == 0x00ff7f && [[field col_line] instate invalid]
    }
    press $w.foot.reset

    # Search.
    press $w.left.search.value
    type "hole per"
    check "the search finds by words, in any order" {
        [field hole_percent] ne "" && [field bevel_size] eq ""
    }
    shot preferences-search
    key Escape
    check "Escape empties it first" {$::vesk::preferences::query eq "" && [winfo exists $w]}

    foreach {typed key} {"background color" col_background "dark mode" theme "undo steps" undo_levels
            "font size" font_main "keyboard shortcuts" "" "addons" plugin_dir "grid snapping" gridsnap
            "backup copies" "" tips show_startup_tips "autosave interval" ""} {
        key ctrl+a
        type $typed
        wait_until {[$w.head.title cget -text] eq "Search" && $::vesk::preferences::query eq $typed}
        if {$key ne ""} {check "\"$typed\" finds its row" {[field $key] ne ""}}
        if {$typed eq "keyboard shortcuts"} {
            check "and the page of the keys" {[winfo exists $::vesk::preferences::body.page1]}
            shot preferences-plain
        }
    }
    key ctrl+a BackSpace

    # Presets.
    foreach {name background vertices axis} {
        contrast 0x000000 0xFF8080 #FF8A84
        safe     0x555555 0xFFB000 #E69F00
        light    0x555555 0xFF4444 #C0322B
        dark     0x555555 0xFF4444 #F07F76
    } {
        ::vesk::preferences::use_preset $name
        settle
        shot preferences-$name
        check "preset $name" {
            $::prefs_col_background == $background && $::prefs_col_vert == $vertices
            && [::vesk::theme::colour axis_x] eq $axis
            && $::vesk::preferences::preset eq [dict get $::vesk::palettes::names $name]
        }
    }

    # Keys: record one, a clash, presets.
    page Keys
    set list $::vesk::keyspage::page.list
    press_row $list view.rotate
    press $::vesk::keyspage::page.edit.record
    key y
    check "a pressed key is recorded" {[::vesk::keys::key_of view.rotate] eq "Y"}
    press_row $list tool.scale
    press $::vesk::keyspage::page.edit.record
    key m
    check "a key that another has asks first" {
        [winfo ismapped $::vesk::keyspage::page.clash] && [::vesk::keys::key_of view.move] eq "M"
    }
    shot preferences-keys
    key Escape
    check "Escape leaves the key where it is, and the window open" {
        [winfo exists $w] && ![::vesk::keyspage::asks] && [::vesk::keys::key_of view.move] eq "M"
    }
    press $::vesk::keyspage::page.edit.record
    key m
    wait_until {[winfo ismapped $::vesk::keyspage::page.clash]}
    press $::vesk::keyspage::page.clash.take
    check "and is taken over" {
        [::vesk::keys::key_of tool.scale] eq "M" && [::vesk::keys::key_of view.move] eq ""
    }
    when {[front .question]} {key Escape}
    set ::vesk::keyspage::preset_label Laptop
    ::vesk::keyspage::preset_chosen
    check "a preset asks before it drops own keys" {
        [::vesk::keys::key_of tool.scale] eq "M" && $::vesk::keyspage::preset_label eq "Own"
    }
    focus -force $::vesk::keyspage::page.list
    key Escape
    at xy 150 150
    key y
    check "the new key turns" {$::vesk::draw_mode eq "rotate"}
    key m
    check "and the other one scales" {$::vesk::tools::current eq "scale"}
    key r
    check "the old one does nothing any more" {$::vesk::tools::current eq "scale"}
    ::vesk::keys::use grs
    vesk set_select_mode object
    vesk new_cube
    vesk select_all
    key g
    check "G moves with the keys of the G R S style" {$::vesk::tools::current eq "move"}
    key shift+d
    check "Shift+D duplicates" {[llength [vesk object_tree]] == 14}
    key x
    check "X deletes" {[llength [vesk object_tree]] == 7}
    lassign [entry_of edit duplicate] edit entry
    check "the menus show these keys" {
        [lindex [::vesk::menus::find edit duplicate] 3] eq "Shift+D"
        && [string trim [$edit entrycget $entry -accelerator]] eq "Shift+D"
    }
    ::vesk::keys::use laptop
    key ctrl+t
    check "Control+T opens the console of the laptop keys" {[winfo ismapped .main.console]}
    key ctrl+t
    ::vesk::keys::use standard
    at xy 150 150
    key r
    check "the standard keys are back" {
        $::vesk::tools::current eq "rotate" && [::vesk::settings::get keys] eq ""
        && [lindex [::vesk::menus::find edit duplicate] 3] eq "Ctrl+D"
    }

    # Every action of a preset exists, and no preset gives a key twice.
    set wrong {}
    foreach {name label keys} $::vesk::keys::presets {
        set ids [lmap row [::vesk::keys::rows] {lindex $row 0}]
        ::vesk::keys::use $name
        foreach {id key} $keys {
            if {$id ni $ids} {lappend wrong $name $id}
        }
        foreach id $ids {
            set key [::vesk::keys::key_of $id]
            if {[llength [::vesk::keys::users $key]] > 1} {lappend wrong $name $key}
        }
    }
    ::vesk::keys::use standard
    check "presets are sound" {$wrong eq {}}
    if {$wrong ne ""} {puts $wrong}

    # Settings survive.
    ::vesk::keys::set_key view.move Q
    ::vesk::settings::save
    ::vesk::keys::use standard
    ::vesk::settings::read
    ::vesk::keys::restore
    check "changed keys are kept" {[::vesk::keys::key_of view.move] eq "Q"}
    ::vesk::keys::use standard

    vesk plugin_load [file join $::VESK_HOME plugins images.p]
    key ctrl+comma
    page Plug-ins
    set list $::vesk::plugmanager::page.list
    $list selection set [list [lindex [vesk get_plugin_list] 0]]
    check "what a plug-in added is told: texture files" {
        [string match "*Texture files\n*.png (PNG files)*.tga (Targa files)*" \
            [$::vesk::plugmanager::page.text get 1.0 end]]
    }
    check "the plug-ins of the home folder are listed" {
        [llength [$list children {}]] >= 1
    }
    check "the dialog for another begins in the home folder" {
        [::vesk::plugins::folder] eq [file join $::VESK_HOME plugins]
    }
    set ::prefs_plugin_dir $::env(VESK_TEST_WORK)
    check "or where the preference says" {[::vesk::plugins::folder] eq $::env(VESK_TEST_WORK)}
    press $::vesk::plugmanager::page.row.wanted 8
    check "one can be left out at the next start" {
        [::vesk::settings::get plugins_off] eq
            [file tail [lindex [$list children {}] 0]]
    }
    shot preferences-plugins
    press $::vesk::plugmanager::page.row.wanted 8
    key Escape

    # Once for each plug-in.
    when {[front .question]} {shot plugin-fault; key Return}
    plugin_faulted broken.p
    check "a plug-in with a fault can be left out" {
        "broken.p" in [::vesk::settings::get plugins_off]
    }
    plugin_faulted broken.p
    pause 400
    check "it is asked about once" {![winfo exists .question]}
}

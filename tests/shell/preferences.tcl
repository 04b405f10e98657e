# preferences.tcl --
#   The preferences window with real mouse and keys: every row has a widget that shows and writes
#   it, changes count at once, presets, the keys page, the plug-ins page.

source [file join [file dirname [info script]] support.tcl]

set w .preferences
proc page {name} {
    ::test::press_row .preferences.left.list $name
    ::test::wait_until {[.preferences.head.title cget -text] eq $name}
}
# widget --
#   The widget of a row that takes the keyboard, found by the label of its key.
proc field {key} {
    set rows $::vesk::preferences::body
    foreach label [winfo children $rows] {
        if {[winfo class $label] eq "TLabel" && [$label cget -text] eq $key} {
            set field $rows.f[string range [winfo name $label] 1 end]
            if {[winfo class $field] eq "TCheckbutton"} {return $field}
            return $field.value
        }
    }
    return ""
}
proc show_field {key} {
    ::vesk::preferences::see [field $key]
    update
    return [field $key]
}

::test::run {
    ::test::at xy 200 200
    ::test::key ctrl+comma
    ::test::check "Control+comma opens the window" {[winfo ismapped $w]}
    ::test::key Escape
    ::test::check "Escape closes it" {![winfo exists $w] && [winfo class [focus]] eq "Togl"}
    ::test::key ctrl+comma

    # Every preference of the executable has one row and a widget that follows it.
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
        if {![dict exists $seen $key]} {lappend missing $key}
    }
    ::test::check "every preference has a row" {$missing eq {}}
    ::test::check "whose widget shows and writes it" {$deaf eq {}}
    if {$missing ne "" || $deaf ne ""} {puts "missing: $missing  deaf: $deaf"}

    # By hand.
    page Views
    ::test::press [show_field vert_size]
    ::test::key ctrl+a
    ::test::type "3+4"
    ::test::key Return
    ::test::check "a typed number counts at once" {$::prefs_vert_size == 7}
    ::test::key Up
    ::test::check "Up steps by one" {$::prefs_vert_size == 8}
    ::test::type x
    ::test::key Escape
    ::test::check "Escape takes the typing back" {$::prefs_vert_size == 8 && [winfo exists $w]}
    ::test::shot preferences-views
    foreach child [winfo children $::vesk::preferences::body] {
        if {[winfo class $child] eq "TLabel" && [$child cget -text] eq "vert_size"} {
            set reset $::vesk::preferences::body.r[string range [winfo name $child] 1 end]
        }
    }
    ::test::check "a changed row has an arrow" {[winfo ismapped $reset]}
    ::test::press $reset
    ::test::check "which puts the default back" {$::prefs_vert_size == 3 && ![winfo ismapped $reset]}
    ::test::press [show_field filled_orth] 8
    ::test::check "a check box counts at once" {$::prefs_filled_orth == 0}
    ::test::press $w.foot.reset
    ::test::check "the page is reset" {$::prefs_filled_orth == 1}
    page Colours
    ::test::press [show_field col_line]
    ::test::key ctrl+a
    ::test::type "00ff7f"
    ::test::key Return
    ::test::check "a typed colour counts" {$::prefs_col_line == 0x00ff7f}
    ::test::key ctrl+a
    ::test::type "red?"
    ::test::key Return
    ::test::check "what is none is refused" {
        $::prefs_col_line == 0x00ff7f && [[field col_line] instate invalid]
    }
    ::test::press $w.foot.reset

    # Search.
    ::test::press $w.left.search.value
    ::test::type "hole per"
    ::test::wait_until {[field hole_percent] ne ""}
    ::test::check "the search finds by words, in any order" {
        [field hole_percent] ne "" && [field bevel_size] eq ""
    }
    ::test::shot preferences-search
    ::test::key Escape
    ::test::check "Escape empties it first" {$::vesk::preferences::query eq "" && [winfo exists $w]}

    # Presets.
    foreach {name background vertices axis} {
        contrast 0x000000 0xFF8080 #FF8A84
        safe     0x555555 0xFFB000 #E69F00
        light    0x555555 0xFF4444 #C0322B
        dark     0x555555 0xFF4444 #F07F76
    } {
        ::vesk::preferences::use_preset $name
        ::test::pause 300
        ::test::shot preferences-$name
        ::test::check "preset $name" {
            $::prefs_col_background == $background && $::prefs_col_vert == $vertices
            && [::vesk::theme::colour axis_x] eq $axis
            && $::vesk::preferences::preset eq [dict get $::vesk::palettes::names $name]
        }
    }

    # Keys: record one, a clash, presets.
    page Keys
    set list $::vesk::keyspage::page.list
    ::test::press_row $list view.rotate
    ::test::press $::vesk::keyspage::page.edit.record
    ::test::key y
    ::test::check "a pressed key is recorded" {[::vesk::keys::key_of view.rotate] eq "Y"}
    ::test::press_row $list tool.scale
    ::test::press $::vesk::keyspage::page.edit.record
    ::test::key m
    ::test::check "a key that another has asks first" {
        [winfo ismapped $::vesk::keyspage::page.clash] && [::vesk::keys::key_of view.move] eq "M"
    }
    ::test::shot preferences-keys
    ::test::press $::vesk::keyspage::page.clash.take
    ::test::check "and is taken over" {
        [::vesk::keys::key_of tool.scale] eq "M" && [::vesk::keys::key_of view.move] eq ""
    }
    ::test::key Escape
    ::test::at xy 150 150
    ::test::key y
    ::test::check "the new key turns" {$::vesk::draw_mode eq "rotate"}
    ::test::key m
    ::test::check "and the other one scales" {$::vesk::tools::current eq "scale"}
    ::test::key r
    ::test::check "the old one does nothing any more" {$::vesk::tools::current eq "scale"}
    ::vesk::keys::use grs
    vesk set_select_mode object
    vesk new_cube
    vesk select_all
    ::test::key g
    ::test::check "G moves with the keys of the G R S style" {$::vesk::tools::current eq "move"}
    ::test::key shift+d
    ::test::check "Shift+D duplicates" {[llength [vesk object_tree]] == 14}
    ::test::key x
    ::test::check "X deletes" {[llength [vesk object_tree]] == 7}
    set edit [dict get $::vesk::menus::paths edit]
    set rows [::vesk::menus::rows edit]
    set entry [lsearch -exact $rows [::vesk::menus::find edit duplicate]]
    ::test::check "the menus show these keys" {
        [lindex [::vesk::menus::find edit duplicate] 3] eq "Shift+D"
        && [string trim [$edit entrycget $entry -accelerator]] eq "Shift+D"
    }
    ::vesk::keys::use laptop
    ::test::key ctrl+t
    ::test::check "Control+T opens the console of the laptop keys" {[winfo ismapped .main.console]}
    ::test::key ctrl+t
    ::vesk::keys::use standard
    ::test::at xy 150 150
    ::test::key r
    ::test::check "the standard keys are back" {
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
    ::test::check "presets are sound" {$wrong eq {}}
    if {$wrong ne ""} {puts $wrong}

    # Settings survive.
    ::vesk::keys::set_key view.move Q
    ::vesk::settings::save
    ::vesk::keys::use standard
    ::vesk::settings::read
    ::vesk::keys::restore
    ::test::check "changed keys are kept" {[::vesk::keys::key_of view.move] eq "Q"}
    ::vesk::keys::use standard

    vesk plugin_load [file join $::VESK_HOME plugins images.p]
    ::test::key ctrl+comma
    page Plug-ins
    set list $::vesk::plugmanager::page.list
    $list selection set [list [lindex [vesk get_plugin_list] 0]]
    ::test::pause 200
    set told [$::vesk::plugmanager::page.text get 1.0 end]
    ::test::check "what a plug-in added is told: texture files" {
        [string match "*Texture files\n*.png (PNG files)*.tga (Targa files)*" $told]
    }
    ::test::check "the plug-ins of the home folder are listed" {
        [llength [$::vesk::plugmanager::page.list children {}]] >= 1
    }
    ::test::check "the dialog for another begins in the home folder" {
        [::vesk::plugins::folder] eq [file join $::VESK_HOME plugins]
    }
    set ::prefs_plugin_dir $::env(VESK_TEST_WORK)
    ::test::check "or where the preference says" {
        [::vesk::plugins::folder] eq $::env(VESK_TEST_WORK)
    }
    ::test::press $::vesk::plugmanager::page.row.wanted 8
    ::test::check "one can be left out at the next start" {
        [::vesk::settings::get plugins_off] eq
            [file tail [lindex [$::vesk::plugmanager::page.list children {}] 0]]
    }
    ::test::shot preferences-plugins
    ::test::press $::vesk::plugmanager::page.row.wanted 8
    ::test::key Escape
    ::test::check "no script failed" {$::test::errors eq {}}
}

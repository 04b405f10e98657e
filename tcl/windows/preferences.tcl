# preferences.tcl --
#   The preferences window (Control+comma): pages at the left, a search over names, keys and help
#   texts, a widget by kind for each row of prefs_table.tcl. Changes take effect at once; a row that
#   differs from its default has a mark and an arrow that resets it.

::vesk::need lib prefs_table

namespace eval ::vesk::preferences {
    variable w .preferences
    variable body ""            ;# the frame that holds the rows
    variable page Interface
    variable query ""
    variable kinds {}           ;# key -> kind, of preferences
    variable defaults {}        ;# key -> default, of preferences
    variable shown              ;# key -> text of its field
    variable marks              ;# key -> {mark reset-button}
    variable preset ""
    array set shown {}
    array set marks {}
}
::vesk::theme::follow ::vesk::preferences::theme_changed

# ---- values ----

# is_ui --
#   Whether a key is one of the scripts' own settings.
proc ::vesk::preferences::is_ui {key} {
    return [dict exists $::vesk::settings::defaults $key]
}

proc ::vesk::preferences::get {key} {
    return [expr {[is_ui $key] ? [::vesk::settings::get $key] : [set ::prefs_$key]}]
}

proc ::vesk::preferences::default {key} {
    variable defaults
    return [expr {[is_ui $key] ? [dict get $::vesk::settings::defaults $key]
        : [dict get $defaults $key]}]
}

# put --
#   Sets a preference or setting and puts it into effect.
proc ::vesk::preferences::put {key value} {
    if {[is_ui $key]} {
        ::vesk::settings::set_value $key $value
        ::vesk::prefs::apply_ui $key
    } else {
        set ::prefs_$key $value
        ::vesk::ops::echo set ::prefs_$key $value
    }
    took_effect $key
}

# took_effect --
#   Puts a change into effect and marks its row.
proc ::vesk::preferences::took_effect {key args} {
    if {![is_ui $key]} {::vesk::prefs::apply $key}
    mark $key
    show_count
}

proc ::vesk::preferences::changed {key} {
    return [expr {[get $key] ne [default $key] && ![same_number [get $key] [default $key]]}]
}
proc ::vesk::preferences::same_number {a b} {
    return [expr {[string is double -strict $a] && [string is double -strict $b] && $a == $b}]
}

# left_out --
#   Whether a row is no choice of the user but the last folder of a dialog: such rows are neither
#   counted nor reset with a page.
proc ::vesk::preferences::left_out {key} {
    return [regexp {_file_path$} $key]
}

# ---- the window ----

proc ::vesk::preferences::open {{wanted ""}} {
    variable w
    variable kinds {}
    variable defaults {}
    variable page
    foreach {key kind value} [vesk prefs_rows] {
        dict set kinds $key $kind
        dict set defaults $key $value
    }
    if {$wanted ne ""} {set page $wanted}
    if {![winfo exists $w]} {build}
    choose $page
    wm deiconify $w
    raise $w
    focus $w.left.search.value
}

# seek --
#   Searches for a text in the open window.
proc ::vesk::preferences::seek {text} {
    variable query $text
}

proc ::vesk::preferences::close {} {
    variable w
    # The field that loses the focus applies its text.
    focus $w
    update idletasks
    destroy $w
    ::vesk::view::focus_last
}

# escape --
#   Escape answers an open question of the keys page first.
proc ::vesk::preferences::escape {} {
    variable page
    if {$page eq "Keys" && [::vesk::keyspage::asks]} {
        ::vesk::keyspage::leave
        focus $::vesk::keyspage::page.list
        return
    }
    close
}

proc ::vesk::preferences::build {} {
    variable w
    ::vesk::dialogs::window $w "Preferences - VESK"
    wm protocol $w WM_DELETE_WINDOW ::vesk::preferences::close
    build_left $w.left
    ::vesk::theme::on [frame $w.line -width [::vesk::theme::px 1]] gap
    build_head $w.head
    build_page_area
    ::vesk::theme::on [frame $w.foot_line -height [::vesk::theme::px 1]] line
    build_foot $w.foot
    grid $w.left -row 0 -column 0 -rowspan 4 -sticky nswe
    grid $w.line -row 0 -column 1 -rowspan 4 -sticky ns
    grid $w.head -row 0 -column 2 -columnspan 2 -sticky we
    grid $w.page -row 1 -column 2 -sticky nswe
    grid $w.bar -row 1 -column 3 -sticky ns
    grid $w.foot_line -row 2 -column 2 -columnspan 2 -sticky we
    grid $w.foot -row 3 -column 2 -columnspan 2 -sticky we
    grid columnconfigure $w 2 -weight 1
    grid columnconfigure $w 3 -minsize [::vesk::theme::px 10]
    grid rowconfigure $w 1 -weight 1
    bind $w <Escape> ::vesk::preferences::escape
    bind $w <Control-comma> ::vesk::preferences::close
    bind $w <Control-f> [list focus $w.left.search.value]
    bind $w <FocusIn> {+::vesk::preferences::see %W}
    wm minsize $w [::vesk::theme::px 700] [::vesk::theme::px 400]
    update idletasks
    ::vesk::dialogs::place_over $w
}

proc ::vesk::preferences::build_head {head} {
    ttk::frame $head -style Panel.TFrame -padding [::vesk::theme::pad 22 14 16 6]
    ttk::label $head.title -style Panel.Title.TLabel
    ttk::combobox $head.preset -style Panel.TCombobox -state readonly -width 18 \
        -textvariable ::vesk::preferences::preset -values [dict values $::vesk::palettes::names]
    ttk::label $head.label -style Panel.Dim.TLabel -text Preset
    bind $head.preset <<ComboboxSelected>> ::vesk::preferences::preset_chosen
    pack $head.title -side left
    pack $head.preset $head.label -side right -padx [::vesk::theme::pad 10 0]
}

# build_page_area --
#   The canvas that the rows of a page scroll in.
proc ::vesk::preferences::build_page_area {} {
    variable w
    variable body $w.page.rows
    # As wide as the widest page, where the screen has room for it.
    set width [expr {min([::vesk::theme::px 752], [winfo screenwidth .] - [::vesk::theme::px 220])}]
    ::vesk::theme::on [canvas $w.page -width $width -height [::vesk::theme::px 520] -yscrollincrement [::vesk::theme::px 10]] panel
    ::vesk::parts::scrollbar $w.bar $w.page
    bind $w <Button-4> [list ::vesk::preferences::wheel %W -4]
    bind $w <Button-5> [list ::vesk::preferences::wheel %W 4]
    bind $w <Key-Prior> [list $w.page yview scroll -1 pages]
    bind $w <Key-Next> [list $w.page yview scroll 1 pages]
    bind $w.page <Configure> [list ::vesk::preferences::fit %w]
}

proc ::vesk::preferences::build_foot {foot} {
    ttk::frame $foot -style Panel.TFrame -padding [::vesk::theme::pad 22 10 16 10]
    ttk::label $foot.count -style Panel.Dim.TLabel
    ttk::button $foot.reset -style Panel.TButton -text "Reset this page" \
        -command ::vesk::preferences::reset_page
    ttk::button $foot.close -style Panel.TButton -text Close -command ::vesk::preferences::close
    pack $foot.count -side left
    pack $foot.close $foot.reset -side right -padx [::vesk::theme::pad 8 0]
}

# build_left --
#   The search field and the list of pages.
proc ::vesk::preferences::build_left {path} {
    variable query ""
    ttk::frame $path -style Chrome.TFrame
    set search $path.search
    set typed ::vesk::preferences::query
    ::vesk::fields::filter_field $search search "Search all settings" $typed $path.list 18 3
    trace add variable $typed write ::vesk::preferences::typed_query
    bind $path <Destroy> [list trace remove variable $typed write ::vesk::preferences::typed_query]
    ttk::treeview $path.list -style Category.Treeview -show tree -selectmode browse \
        -height [dict size $::vesk::prefs::pages]
    $path.list column #0 -width [::vesk::theme::px 190]
    foreach name [dict keys $::vesk::prefs::pages] {
        $path.list insert {} end -id $name -text "  $name"
    }
    bind $path.list <<TreeviewSelect>> ::vesk::preferences::page_chosen
    pack $search -fill x -padx [::vesk::theme::px 10] -pady [::vesk::theme::pad 12 10]
    pack $path.list -fill both -expand 1
}

proc ::vesk::preferences::theme_changed {} {
    variable w
    variable page
    if {[winfo exists $w]} {
        after idle {::vesk::preferences::show_preset; ::vesk::preferences::show_page}
    }
}

# ---- moving about ----

proc ::vesk::preferences::choose {name} {
    variable w
    variable page $name
    $w.left.list selection set [list $name]
    $w.left.list focus $name
    show_page
}

proc ::vesk::preferences::page_chosen {} {
    variable w
    variable page
    variable query
    set name [lindex [$w.left.list selection] 0]
    if {$name eq "" || ($name eq $page && $query eq "")} {return}
    set page $name
    if {$query ne ""} {set query ""} else {show_page}
}

proc ::vesk::preferences::typed_query {args} {
    after cancel ::vesk::preferences::show_page
    after 120 ::vesk::preferences::show_page
}

proc ::vesk::preferences::wheel {widget lines} {
    variable w
    if {[winfo class $widget] in {Listbox Text Treeview}} {return}
    $w.page yview scroll $lines units
}

# see --
#   Scrolls to the widget that has the keyboard focus.
proc ::vesk::preferences::see {widget} {
    variable w
    variable body
    if {![string match $body.* $widget]} {return}
    set top [expr {[winfo rooty $widget] - [winfo rooty $body]}]
    set bottom [expr {$top + [winfo height $widget]}]
    set from [$w.page canvasy 0]
    set height [winfo height $w.page]
    set all [expr {double(max(1, [winfo height $body]))}]
    if {$top < $from} {
        $w.page yview moveto [expr {($top - [::vesk::theme::px 8]) / $all}]
    } elseif {$bottom > $from + $height} {
        $w.page yview moveto [expr {($bottom - $height + [::vesk::theme::px 8]) / $all}]
    }
}

proc ::vesk::preferences::fit {width} {
    variable w
    variable body
    $w.page itemconfigure rows -width $width
    if {[winfo exists $body]} {
        update idletasks
        $w.page configure -scrollregion [list 0 0 $width [winfo reqheight $body]]
    }
}

# ---- a page ----

# groups --
#   The groups of the page or of the search: title, rows, title, rows ...
proc ::vesk::preferences::groups {} {
    variable page
    variable query
    if {[string trim $query] eq ""} {return [dict get $::vesk::prefs::pages $page]}
    set result {}
    dict for {name groups} $::vesk::prefs::pages {
        set rows {}
        foreach {title group} $groups {
            foreach row $group {
                set text [string tolower "$name $title [lrange $row 0 3]"]
                if {[matches $text $query]} {lappend rows $row}
            }
        }
        if {[llength $rows] > 0} {lappend result $name $rows}
    }
    return $result
}

# matches --
#   Whether a text in lower case holds every typed word, without the "s" of a plural, or what the
#   program says for it.
proc ::vesk::preferences::matches {text typed} {
    foreach word [regexp -all -inline {\S+} [string tolower $typed]] {
        set ways [list $word [string trimright $word s]]
        foreach way $ways {
            if {[dict exists $::vesk::prefs::words $way]} {
                lappend ways [dict get $::vesk::prefs::words $way]
            }
        }
        if {1 ni [lmap way $ways {expr {$way ne "" && [string first $way $text] >= 0}}]} {return 0}
    }
    return 1
}

# add_page_links --
#   Pages without rows of their own, such as the keys, are found by their names. Returns how many.
proc ::vesk::preferences::add_page_links {line} {
    variable body
    variable query
    set count 0
    dict for {name groups} $::vesk::prefs::pages {
        if {$name ni {Keys Plug-ins} || ![matches [string tolower $name] $query]} {continue}
        ttk::button $body.page[incr count] -style Panel.TButton -text "Open the page $name" \
            -command [list ::vesk::preferences::choose_found $name]
        grid $body.page$count -row [incr line] -column 1 -columnspan 3 -sticky w \
            -pady [::vesk::theme::px 6]
    }
    return $count
}
proc ::vesk::preferences::choose_found {name} {
    variable query ""
    choose $name
}

# show_page --
#   Shows the rows of the page or of the search.
proc ::vesk::preferences::show_page {} {
    variable w
    variable body
    variable page
    variable query
    variable marks
    if {![winfo exists $w]} {return}
    destroy $body
    array unset marks
    ttk::frame $body -style Panel.TFrame -padding [::vesk::theme::pad 20 0 14 14]
    $w.page delete rows
    $w.page create window 0 0 -anchor nw -window $body -tags rows -width [winfo width $w.page]
    grid columnconfigure $body 0 -minsize [::vesk::theme::px 12]
    grid columnconfigure $body 1 -minsize [::vesk::theme::px 168]
    # In a narrow window the names of the keys are cut off, not the fields.
    grid columnconfigure $body 4 -weight 1
    grid columnconfigure $body 5 -minsize [::vesk::theme::px 30]
    set searching [expr {[string trim $query] ne ""}]
    $w.head.title configure -text [expr {$searching ? "Search" : $page}]
    set line 0
    set number 0
    foreach {title rows} [groups] {
        set line [add_heading $title $line]
        foreach row $rows {
            add_row [incr number] $line {*}$row
            incr line
        }
    }
    if {!$searching && $page eq "Keys"} {::vesk::keyspage::build $body $line}
    if {!$searching && $page eq "Plug-ins"} {::vesk::plugmanager::build $body $line}
    if {$searching} {incr number [add_page_links $line]}
    if {$searching && $number == 0} {
        ttk::label $body.none -style Panel.Dim.TLabel -text "Nothing found."
        grid $body.none -row 0 -column 1 -columnspan 4 -sticky w
    }
    $w.page yview moveto 0
    fit [winfo width $w.page]
    show_preset
    show_count
}

proc ::vesk::preferences::add_heading {title line} {
    variable body
    set name $body.h$line
    ttk::label $name -style Panel.Bold.TLabel -text $title
    ttk::frame ${name}line -style Line.TFrame -height [::vesk::theme::px 1]
    grid $name -row $line -column 0 -columnspan 6 -sticky w \
        -pady [::vesk::theme::pad [expr {$line == 0 ? 4 : 18}] 6]
    grid ${name}line -row [incr line] -column 0 -columnspan 6 -sticky we \
        -pady [::vesk::theme::pad 0 4]
    return [expr {$line + 1}]
}

# add_row --
#   Mark, label, widget, key, reset arrow.
proc ::vesk::preferences::add_row {number line key label help {widget ""}} {
    variable body
    variable kinds
    variable marks
    if {$widget eq ""} {set widget [dict get $kinds $key]}
    set field $body.f$number
    set pad [::vesk::theme::px 2]
    ::vesk::theme::on [frame $body.m$number -width [::vesk::theme::px 3] \
        -height [::vesk::theme::px 16]] panel
    grid $body.m$number -row $line -column 0 -sticky w
    if {$widget in {boolean {ui bool}}} {
        ttk::checkbutton $field -style Panel.TCheckbutton -text $label \
            -command [list ::vesk::preferences::checked $key]
        if {$widget eq "boolean"} {
            $field configure -variable ::prefs_$key
        } else {
            set ::vesk::preferences::shown($key) [get $key]
            $field configure -variable ::vesk::preferences::shown($key)
        }
        grid $field -row $line -column 1 -columnspan 3 -sticky w -pady [::vesk::theme::px 6]
        set label_of $field
    } else {
        ttk::label $body.l$number -style Panel.TLabel -text $label
        grid $body.l$number -row $line -column 1 -sticky w -pady $pad -padx [list 0 12]
        ::vesk::prefwidgets::make $field $key $widget
        grid $field -row $line -column 2 -sticky w -pady $pad
        set label_of $body.l$number
    }
    ttk::label $body.k$number -style Panel.Key.TLabel -text $key
    ttk::button $body.r$number -style Panel.Icon.Toolbutton \
        -image [::vesk::icons::get reset] -command [list ::vesk::preferences::reset $key]
    grid $body.k$number -row $line -column 4 -sticky e -padx [::vesk::theme::pad 8 4]
    grid $body.r$number -row $line -column 5 -sticky e
    foreach part [list $field $label_of] {
        ::vesk::tooltips::attach $part $label "" $help
    }
    ::vesk::tooltips::attach $body.r$number "Put back" "" "The default is [shown_default $key $widget]."
    set marks($key) [list $body.m$number $body.r$number]
    if {![is_ui $key]} {
        set follow [list ::vesk::preferences::written $key]
        trace add variable ::prefs_$key write $follow
        bind $body.m$number <Destroy> +[list trace remove variable ::prefs_$key write $follow]
    }
    mark $key
}

# written --
#   Marks the row of a preference that was changed, here or elsewhere.
proc ::vesk::preferences::written {key args} {
    mark $key
    after cancel ::vesk::preferences::show_count
    after idle ::vesk::preferences::show_count
}

proc ::vesk::preferences::checked {key} {
    variable shown
    if {[is_ui $key]} {
        put $key $shown($key)
    } else {
        ::vesk::ops::echo set ::prefs_$key [set ::prefs_$key]
        took_effect $key
    }
}

proc ::vesk::preferences::shown_default {key widget} {
    set value [default $key]
    switch -- [lindex $widget 0] {
        boolean {return [expr {$value ? "on" : "off"}]}
        hex     {return [format "#%06X" $value]}
    }
    if {$value eq ""} {return empty}
    return [::vesk::files::shortened [string map {\n " "} $value] 60]
}

# mark --
#   Shows or hides the bar and the arrow of a changed row.
proc ::vesk::preferences::mark {key} {
    variable marks
    if {![info exists marks($key)]} {return}
    lassign $marks($key) bar arrow
    if {![winfo exists $bar]} {return}
    set on [expr {[changed $key] && ![left_out $key]}]
    ::vesk::theme::on $bar [expr {$on ? "accent" : "panel"}]
    if {$on} {grid $arrow} else {grid remove $arrow}
}

# ---- putting back ----

proc ::vesk::preferences::reset {key} {
    put $key [default $key]
    ::vesk::prefwidgets::show $key
}

# reset_page --
#   Resets every row of the page, or of the search.
proc ::vesk::preferences::reset_page {} {
    variable page
    variable query
    if {$query eq "" && $page eq "Keys"} {
        ::vesk::keys::use standard
        return
    }
    foreach {title rows} [groups] {
        foreach row $rows {
            set key [lindex $row 0]
            if {![left_out $key] && [changed $key]} {reset $key}
        }
    }
    show_page
}

# show_count --
#   Shows the number of settings that differ from their defaults.
proc ::vesk::preferences::show_count {} {
    variable w
    if {![winfo exists $w]} {return}
    set count 0
    foreach key [dict keys $::vesk::prefs::helps] {
        if {![left_out $key] && [changed $key]} {incr count}
    }
    $w.foot.count configure -text [expr {$count == 0 ? "All settings are as at first"
        : $count == 1 ? "1 setting differs from its default"
        : "$count settings differ from the defaults"}]
}

# ---- presets ----

proc ::vesk::preferences::show_preset {} {
    variable preset
    set preset [dict get $::vesk::palettes::names $::vesk::theme::current]
}

# preset_chosen --
#   A preset sets the theme and the colours of the views.
proc ::vesk::preferences::preset_chosen {} {
    variable w
    variable preset
    $w.head.preset selection clear
    dict for {name label} $::vesk::palettes::names {
        if {$label eq $preset} {use_preset $name}
    }
}
proc ::vesk::preferences::use_preset {name} {
    ::vesk::prefs::use_view_colours $name
    set ::vesk::theme_name $name
    ::vesk::main::set_theme
    vesk redraw_all
}

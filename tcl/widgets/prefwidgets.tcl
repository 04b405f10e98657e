# prefwidgets.tcl --
#   The widgets of the preferences window, one a kind: number, slider, choice, colour, text, folder,
#   file, long text, font. Each shows its preference and writes it through ::vesk::preferences::put.

namespace eval ::vesk::prefwidgets {
    variable made               ;# key -> {kind path}
    array set made {}
}

# make --
#   Makes the widget of a row.
#   widget  kind of the preference, or the words of prefs_table.tcl
proc ::vesk::prefwidgets::make {path key widget} {
    variable made
    set kind [lindex $widget 0]
    set words [lrange $widget 1 end]
    if {$kind eq "ui"} {
        set kind [lindex $words 0]
        set words [lrange $words 1 end]
    }
    if {$kind in {double number}} {set kind real}
    set made($key) [list $kind $path $words]
    ttk::frame $path -style Panel.TFrame
    make_$kind $path $key {*}[expr {$kind eq "choice" ? [list [lindex $words 0]] : $words}]
    show $key
    if {![::vesk::preferences::is_ui $key]} {
        set follow [list ::vesk::prefwidgets::show $key]
        trace add variable ::prefs_$key write $follow
        bind $path <Destroy> [list trace remove variable ::prefs_$key write $follow]
    }
    return $path
}

# show --
#   Shows the present value of a preference in its widget.
proc ::vesk::prefwidgets::show {key args} {
    variable made
    if {![info exists made($key)]} {return}
    lassign $made($key) kind path words
    if {![winfo exists $path]} {return}
    show_$kind $path $key [::vesk::preferences::get $key] {*}[expr {$kind eq "choice"
        ? [list [lindex $words 0]] : ""}]
}

proc ::vesk::prefwidgets::text_variable {key} {
    return ::vesk::preferences::shown($key)
}

# ---- numbers ----

proc ::vesk::prefwidgets::make_number_entry {entry key kind low high} {
    ttk::entry $entry -style Panel.TEntry -width 8 -justify right -font VeskNumber \
        -textvariable [text_variable $key]
    ::vesk::fields::number_keys $entry [text_variable $key] \
        [list ::vesk::prefwidgets::number_typed $key $kind $low $high] \
        [expr {$kind eq "int" ? 1 : 0.1}]
}
proc ::vesk::prefwidgets::number_typed {key kind low high number} {
    if {$low ne ""} {set number [expr {min($high, max($low, $number))}]}
    if {$kind eq "int"} {set number [expr {int(min(2147483647, max(-2147483648, $number)))}]}
    ::vesk::preferences::put $key $number
    show $key
}
proc ::vesk::prefwidgets::show_number {key value} {
    if {[string is double -strict $value] && ![string is entier -strict $value]} {
        set value [format %.10g $value]
    }
    set [text_variable $key] $value
}

proc ::vesk::prefwidgets::make_int {path key {low ""} {high ""}} {
    make_number_entry $path.value $key int $low $high
    pack $path.value
}
proc ::vesk::prefwidgets::make_real {path key {low ""} {high ""}} {
    make_number_entry $path.value $key real $low $high
    pack $path.value
}
proc ::vesk::prefwidgets::show_int {path key value} {show_number $key $value}
proc ::vesk::prefwidgets::show_real {path key value} {show_number $key $value}

proc ::vesk::prefwidgets::make_slider {path key low high} {
    set kind [expr {[dict get $::vesk::preferences::kinds $key] eq "int" ? "int" : "real"}]
    ttk::scale $path.bar -style Panel.Horizontal.TScale -from $low -to $high \
        -length [::vesk::theme::px 130] \
        -command [list ::vesk::prefwidgets::slider_moved $key $kind]
    make_number_entry $path.value $key $kind "" ""
    pack $path.bar $path.value -side left -padx [::vesk::theme::pad 0 8]
}
proc ::vesk::prefwidgets::slider_moved {key kind value} {
    if {$kind eq "int"} {
        set value [expr {round($value)}]
    } else {
        set value [expr {round($value * 100) / 100.0}]
    }
    # Showing a value moves the slider too.
    if {$value != [::vesk::preferences::get $key]} {::vesk::preferences::put $key $value}
}
proc ::vesk::prefwidgets::show_slider {path key value} {
    show_number $key $value
    $path.bar configure -value $value
}

# ---- choices ----

proc ::vesk::prefwidgets::make_choice {path key choices} {
    ttk::combobox $path.value -style Panel.TCombobox -state readonly -width 18 \
        -values [dict keys $choices]
    bind $path.value <<ComboboxSelected>> \
        [list ::vesk::prefwidgets::chosen $path.value $key $choices]
    pack $path.value
}
proc ::vesk::prefwidgets::chosen {box key choices} {
    $box selection clear
    ::vesk::preferences::put $key [dict get $choices [$box get]]
}
proc ::vesk::prefwidgets::show_choice {path key value choices} {
    set label $value
    dict for {text meant} $choices {
        if {$meant eq $value} {set label $text}
    }
    $path.value set $label
}

# ---- colours ----

proc ::vesk::prefwidgets::make_hex {path key} {
    ::vesk::fields::swatch $path.swatch 40 24 [list ::vesk::prefwidgets::choose_colour $key]
    ttk::entry $path.value -style Panel.TEntry -width 9 -justify right -font VeskNumber \
        -textvariable [text_variable $key]
    ::vesk::fields::text_keys $path.value \
        [list ::vesk::prefwidgets::colour_typed $path.value $key] \
        "[list ::vesk::prefwidgets::show $key]; break"
    pack $path.swatch $path.value -side left -padx [::vesk::theme::pad 0 6]
}
proc ::vesk::prefwidgets::choose_colour {key} {
    set chosen [::vesk::colourbox::ask [format "#%06X" \
        [expr {[::vesk::preferences::get $key] & 0xffffff}]]]
    if {$chosen ne ""} {put_colour $key $chosen}
}
proc ::vesk::prefwidgets::colour_typed {entry key} {
    set hex [::vesk::fields::typed_colour $entry]
    if {$hex ne ""} {put_colour $key $hex}
}
proc ::vesk::prefwidgets::put_colour {key hex} {
    set value [expr {"0x[string range $hex 1 end]"}]
    if {$value != [::vesk::preferences::get $key]} {::vesk::preferences::put $key $value}
    show $key
}
proc ::vesk::prefwidgets::show_hex {path key value} {
    set hex [format "#%06X" [expr {$value & 0xffffff}]]
    set [text_variable $key] $hex
    ::vesk::fields::show_swatch $path.swatch $hex
    ::vesk::fields::mark_invalid $path.value 0
}

# ---- texts ----

proc ::vesk::prefwidgets::make_string {path key} {
    ttk::entry $path.value -style Panel.TEntry -width 30 -textvariable [text_variable $key]
    ::vesk::fields::text_keys $path.value [list ::vesk::prefwidgets::text_typed $key] \
        [list ::vesk::prefwidgets::text_escape $key]
    pack $path.value -side left
}
proc ::vesk::prefwidgets::text_typed {key} {
    set text [set [text_variable $key]]
    if {$text ne [::vesk::preferences::get $key]} {::vesk::preferences::put $key $text}
}
# text_escape --
#   Restores the text; when nothing was typed the key is the window's.
proc ::vesk::prefwidgets::text_escape {key} {
    if {[set [text_variable $key]] eq [::vesk::preferences::get $key]} {return}
    show $key
    return -code break
}
proc ::vesk::prefwidgets::show_string {path key value} {set [text_variable $key] $value}

proc ::vesk::prefwidgets::make_folder {path key {how folder}} {
    make_string $path $key
    ttk::button $path.pick -style Panel.Icon.Toolbutton -image [::vesk::icons::get folder] \
        -command [list ::vesk::prefwidgets::pick $key $how]
    ::vesk::tooltips::attach $path.pick "Choose" "" "Opens a dialog."
    pack $path.pick -side left -padx [::vesk::theme::pad 4 0]
}
proc ::vesk::prefwidgets::make_file {path key} {make_folder $path $key open}
proc ::vesk::prefwidgets::pick {key how} {
    set now [::vesk::preferences::get $key]
    set start [expr {$how eq "folder" ? $now : [file dirname $now]}]
    set name [::vesk::filebox::ask $how "Choose" $start {{"All files" *}}]
    if {$name ne ""} {
        ::vesk::preferences::put $key $name
        show $key
    }
}
proc ::vesk::prefwidgets::show_folder {path key value} {show_string $path $key $value}
proc ::vesk::prefwidgets::show_file {path key value} {show_string $path $key $value}

proc ::vesk::prefwidgets::make_lines {path key} {
    text $path.value -width 44 -height 4 -font VeskMono -wrap word -undo 1 \
        -padx [::vesk::theme::px 6] -pady [::vesk::theme::px 4] -highlightthickness 1
    ::vesk::theme::recolour $path.value
    $path.value configure -highlightbackground [::vesk::theme::colour edge] \
        -highlightcolor [::vesk::theme::colour ring]
    bind $path.value <FocusOut> [list ::vesk::prefwidgets::lines_typed $path.value $key]
    bind $path.value <Tab> {focus [tk_focusNext %W]; break}
    pack $path.value
}
proc ::vesk::prefwidgets::lines_typed {text key} {
    set value [$text get 1.0 end-1c]
    if {$value ne [::vesk::preferences::get $key]} {::vesk::preferences::put $key $value}
}
proc ::vesk::prefwidgets::show_lines {path key value} {
    if {[focus] eq "$path.value"} {return}
    $path.value delete 1.0 end
    $path.value insert end $value
}

# ---- fonts ----

# make_font --
#   Family and size; "Standard" is what the program chooses itself.
proc ::vesk::prefwidgets::make_font {path key} {
    set families [lsort -unique -dictionary [lsearch -all -inline -not [font families] @*]]
    ttk::combobox $path.value -style Panel.TCombobox -state readonly -width 22 \
        -values [linsert $families 0 Standard]
    ttk::spinbox $path.size -style Panel.TSpinbox -from 6 -to 32 -width 4 -justify right \
        -font VeskNumber -command [list ::vesk::prefwidgets::font_chosen $path $key]
    bind $path.value <<ComboboxSelected>> [list ::vesk::prefwidgets::font_chosen $path $key]
    foreach event {<Return> <FocusOut>} {
        bind $path.size $event [list ::vesk::prefwidgets::font_chosen $path $key]
    }
    pack $path.value $path.size -side left -padx [::vesk::theme::pad 0 6]
}
proc ::vesk::prefwidgets::font_chosen {path key} {
    $path.value selection clear
    set family [$path.value get]
    set size [$path.size get]
    if {![string is integer -strict $size]} {set size 9}
    set text [expr {$family eq "Standard" ? [::vesk::preferences::default $key]
        : [list $family [expr {min(32, max(6, $size))}]]}]
    if {$text ne [::vesk::preferences::get $key]} {::vesk::preferences::put $key $text}
    show $key
}
proc ::vesk::prefwidgets::show_font {path key value} {
    set standard [expr {$value eq [::vesk::preferences::default $key]}]
    if {[catch {font actual $value} options]} {set options [font actual TkDefaultFont]}
    $path.value set [expr {$standard ? "Standard" : [dict get $options -family]}]
    $path.size set [expr {$standard ? [font actual TkDefaultFont -size] : [dict get $options -size]}]
    $path.size state [expr {$standard ? "disabled" : "!disabled"}]
}

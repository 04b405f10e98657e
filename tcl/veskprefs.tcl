# veskprefs.tcl --
#   What the interface takes from the settings at the start, and what it does when a preference
#   that it shows is changed elsewhere.

namespace eval ::vesk::prefs {}

# take --
#   Reads the scripts' own settings into the variables that menus and panels are tied to.
proc ::vesk::prefs::take {} {
    ::vesk::settings::read
    set theme [::vesk::settings::get theme]
    if {$theme ni [dict keys $::vesk::palettes::names]} {set theme dark}
    set ::vesk::theme_name $theme
    set ::vesk::panel_shown [expr {[::vesk::settings::number panel_shown 0 1]}]
    set ::vesk::console_shown [expr {[::vesk::settings::number console_shown 0 1]}]
    if {[info exists ::prefs_tk_strictmotif]} {set ::tk_strictMotif $::prefs_tk_strictmotif}
}

# watch --
#   The corners of the views' chips are blended over the background colour.
proc ::vesk::prefs::watch {} {
    foreach key {col_background font_main font_menu} {
        trace add variable ::prefs_$key write ::vesk::prefs::changed
    }
}

proc ::vesk::prefs::changed {name args} {
    if {[string match *font* $name]} {::vesk::theme::make_fonts}
    ::vesk::view::colour_frames
}

# prefs.tcl --
#   Settings that the interface reads at the start, and its reaction to preferences that are changed
#   elsewhere.

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
    apply_ui autosave_seconds
    apply_ui backup_versions
}

# apply, apply_ui --
#   Puts a changed preference, or one of the scripts' own settings, into effect.
proc ::vesk::prefs::apply {key} {
    switch -glob -- $key {
        tk_strictmotif {set ::tk_strictMotif $::prefs_tk_strictmotif}
        window_3d_*    ::vesk::view::take_shares
    }
    after cancel {vesk redraw_all}
    after idle {vesk redraw_all}
}
proc ::vesk::prefs::apply_ui {key} {
    switch -- $key {
        theme {
            set ::vesk::theme_name [::vesk::settings::get theme]
            ::vesk::main::set_theme
        }
        autosave_seconds {
            set ::vesk::recovery::interval \
                [expr {1000 * [::vesk::settings::number autosave_seconds 15 3600]}]
        }
        backup_versions {
            vesk set_backup_versions [::vesk::settings::number backup_versions 0 99]
        }
        interface_scale {
            display_message "the size of everything changes at the next start"
        }
    }
}

# use_view_colours --
#   Sets the colours of the views and their axes that belong to a theme.
proc ::vesk::prefs::use_view_colours {theme} {
    dict for {key value} [::vesk::palettes::views $theme] {set ::prefs_$key $value}
    vesk axis_colours {*}[lmap hex [::vesk::palettes::axes $theme] {
        expr {"0x[string range $hex 1 end]"}
    }]
}

# watch --
#   The corners of the views' chips are blended over the background colour.
proc ::vesk::prefs::watch {} {
    foreach key {col_background font_main font_menu} {
        trace add variable ::prefs_$key write ::vesk::prefs::changed
    }
    foreach key {allow_socket_commands tcl_socket_port} {
        trace add variable ::prefs_$key write {apply {args {after idle ::vesk::cmdsocket::follow}}}
    }
    if {$::prefs_allow_socket_commands} {after idle ::vesk::cmdsocket::follow}
}

proc ::vesk::prefs::changed {name args} {
    if {[string match *font* $name]} {::vesk::theme::make_fonts}
    ::vesk::view::colour_frames
}

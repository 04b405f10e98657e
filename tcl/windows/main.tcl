# main.tcl --
#   The main window: its layout, the right panel, the place of the console, regions for F6, theme
#   and size.

namespace eval ::vesk::main {
    variable folded_by_width 0  ;# the right panel is hidden because the window is narrow
}

# build --
#   Makes the whole window; it stays withdrawn.
proc ::vesk::main::build {} {
    ::vesk::theme::on . gap
    ::vesk::theme::on [frame .mbar] chrome
    ::vesk::menus::build_bar .mbar
    ::vesk::optionbar::build .opt
    ::vesk::theme::on [frame .under -height [::vesk::theme::px 1]] gap
    ::vesk::theme::on [frame .main] gap
    ::vesk::status::build .status
    ::vesk::reach::build
    ::vesk::theme::on [frame .over -height [::vesk::theme::px 1]] gap
    pack .mbar .opt .under -side top -fill x
    pack .status .over -side bottom -fill x
    pack .main -side top -fill both -expand 1
    ::vesk::tools::build .main.tools
    ttk::frame .main.centre -style Gap.TFrame
    ::vesk::view::build .main.centre.views
    sash .main.centre.sash sb_v_double_arrow console
    pack .main.centre.views -fill both -expand 1
    build_right .main.right
    # Made after the panels for the order of Tab, although it stands below the views.
    ::vesk::console::build .main.console
    sash .main.sash sb_h_double_arrow right
    grid .main.tools -row 0 -column 0 -sticky ns
    grid .main.centre -row 0 -column 1 -sticky nswe -padx [list [::vesk::theme::px 1] 0]
    grid .main.sash -row 0 -column 2 -sticky ns
    grid .main.right -row 0 -column 3 -sticky nswe
    grid columnconfigure .main 1 -weight 1
    grid rowconfigure .main 0 -weight 1
    # The right panel is hidden when the views would become too small.
    bind .main <Configure> ::vesk::main::width_changed
    place_console
    if {!$::vesk::panel_shown} place_right
    ::vesk::fields::own_keys
    foreach class {Entry TEntry TCombobox Text} {
        bind $class <Button-3> {::vesk::fieldmenu::popup %W %X %Y}
        foreach event {<Key-Menu> <Shift-Key-F10>} {
            bind $class $event {::vesk::fieldmenu::popup %W [winfo rootx %W] \
                [expr {[winfo rooty %W] + [winfo height %W]}]; break}
        }
    }
    bind . <Escape> ::vesk::main::escape
    bind all <Control-Tab> {}
    wm protocol . WM_DELETE_WINDOW ::vesk::files::quit
    wm minsize . [::vesk::theme::px 560] [::vesk::theme::px 420]
    first_size
}

# first_size --
#   Without a settings file the window gets room for the panels beside four views, if the screen
#   allows it.
proc ::vesk::main::first_size {} {
    foreach folder [list [file dirname [::vesk::settings::file_name]] $::VESK_HOME] {
        if {[file exists [file join $folder veskprefs.txt]]} {return}
    }
    set width [expr {min([::vesk::theme::px 1280], [winfo screenwidth .] - 50)}]
    set height [expr {min([::vesk::theme::px 800], [winfo screenheight .] - 80)}]
    wm geometry . [expr {max($width, $::prefs_cpwin_width)}]x[expr {max($height, $::prefs_cpwin_height)}]
}

# keep_on_screen --
#   A window that is larger than this screen leaves, shrinks and moves into it, with its title.
proc ::vesk::main::keep_on_screen {} {
    if {[wm attributes . -zoomed] || [scan [wm geometry .] %dx%d%d%d width height x y] != 4} {return}
    set widest [winfo screenwidth .]
    set highest [expr {[winfo screenheight .] - ([winfo rooty .] - $y)}]
    if {$x >= 0 && $y >= 0 && $x + $width <= $widest && $y + $height <= $highest} {return}
    set width [expr {min($width, $widest)}]
    set height [expr {min($height, $highest)}]
    set x [expr {max(0, min($x, $widest - $width))}]
    set y [expr {max(0, min($y, $highest - $height))}]
    wm geometry . ${width}x$height+$x+$y
}

# sash --
#   A line between two parts that can be dragged.
proc ::vesk::main::sash {path cursor what} {
    ::vesk::theme::on [frame $path -width [::vesk::theme::px 3] -height [::vesk::theme::px 3] \
        -cursor $cursor] gap
    bind $path <B1-Motion> [list ::vesk::main::sash_moved $what %X %Y]
    return $path
}

proc ::vesk::main::sash_moved {what x y} {
    switch -- $what {
        right {
            set width [expr {[winfo rootx .main] + [winfo width .main] - $x}]
            set width [expr {min([winfo width .main] / 2, max([::vesk::theme::px 240], $width))}]
            set_right_width $width
        }
        console {
            set height [expr {[winfo rooty .main] + [winfo height .main] - $y}]
            set height [expr {min([winfo height .main] / 2, max([::vesk::theme::px 70], $height))}]
            ::vesk::settings::set_value console_height [expr {round($height / $::vesk::theme::S)}]
            place_console
        }
        objects {
            set height [expr {$y - [winfo rooty .main.right]}]
            set limit [expr {[winfo height .main.right] - [::vesk::theme::px 120]}]
            set height [expr {min($limit, max([::vesk::theme::px 90], $height))}]
            ::vesk::settings::set_value objects_height [expr {round($height / $::vesk::theme::S)}]
            share_right
        }
    }
}

# ---- the right panel ----

proc ::vesk::main::build_right {path} {
    ttk::frame $path -style Panel.TFrame
    ::vesk::objects::build $path.objects
    sash $path.sash sb_v_double_arrow objects
    ttk::notebook $path.tabs -takefocus 1
    ::vesk::transform::build $path.tabs.object
    ::vesk::material::build $path.tabs.material
    ::vesk::palette::build $path.tabs.palette
    # Filled when they are first shown.
    foreach {name namespace} {uv uvtab issues issues} {
        ttk::frame $path.tabs.$name -style Panel.TFrame
        bind $path.tabs.$name <Map> "bind %W <Map> {}; ::vesk::${namespace}::build %W"
    }
    ::vesk::ops::listen model ::vesk::issues::model_changed
    foreach {name label} {object Object material Material palette Palette uv UV issues Issues} {
        $path.tabs add $path.tabs.$name -text $label
    }
    set kept [::vesk::settings::get panel_tab]
    if {[winfo exists $path.tabs.$kept]} {$path.tabs select $path.tabs.$kept}
    bind $path.tabs <<NotebookTabChanged>> {::vesk::main::tab_changed %W}
    grid $path.objects -row 0 -sticky nswe
    grid $path.sash -row 1 -sticky we
    grid $path.tabs -row 2 -sticky nswe
    grid columnconfigure $path 0 -weight 1
    grid rowconfigure $path 2 -weight 1
    grid propagate $path 0
    bind $path <Configure> ::vesk::main::share_right
    bind $path.tabs.object <Configure> {after idle ::vesk::main::share_right}
    set_right_width [::vesk::theme::px [::vesk::settings::number panel_width 240 900]]
}

# share_right --
#   Sets the height of the objects panel: as it was dragged, but the tabs keep the room they need.
proc ::vesk::main::share_right {} {
    set height [::vesk::theme::px [::vesk::settings::number objects_height 90 2000]]
    set needed [expr {[winfo reqheight .main.right.tabs.object] + [::vesk::theme::px 40]}]
    set left [expr {[winfo height .main.right] - $needed}]
    set height [expr {max([::vesk::theme::px 120], min($height, $left))}]
    grid rowconfigure .main.right 0 -minsize $height
    grid propagate .main.right.objects 0
    .main.right.objects configure -height $height
}

proc ::vesk::main::set_right_width {width} {
    .main.right configure -width $width
    ::vesk::settings::set_value panel_width [expr {round($width / $::vesk::theme::S)}]
}

# show_panel --
#   Shows or hides the right panel by ::vesk::panel_shown.
proc ::vesk::main::show_panel {} {
    variable folded_by_width 0
    place_right
    ::vesk::settings::set_value panel_shown $::vesk::panel_shown
}

proc ::vesk::main::place_right {} {
    if {$::vesk::panel_shown} {
        grid .main.sash .main.right
        # The tab was not refreshed while it was hidden.
        after idle {::vesk::transform::refresh 1}
    } else {
        grid remove .main.sash .main.right
    }
}

# width_changed --
#   Hides the panel in a narrow window and shows it again in a wide one, unless the user has shown
#   or hidden it meanwhile.
proc ::vesk::main::width_changed {} {
    variable folded_by_width
    set width [winfo width .main]
    if {$width < 50} {return}
    set narrow [expr {$width < [::vesk::theme::px 960]}]
    if {$narrow && $::vesk::panel_shown && $folded_by_width != 2} {
        set folded_by_width 1
        set ::vesk::panel_shown 0
        place_right
    } elseif {!$narrow && $folded_by_width == 1} {
        set folded_by_width 0
        set ::vesk::panel_shown 1
        place_right
    }
}

# tab_changed --
#   The Object tab was not refreshed while another one hid it; the tab is kept for the next session.
proc ::vesk::main::tab_changed {tabs} {
    ::vesk::settings::set_value panel_tab [winfo name [$tabs select]]
    after idle {::vesk::transform::refresh 1}
}

proc ::vesk::main::show_tab {name} {
    if {!$::vesk::panel_shown} {
        set ::vesk::panel_shown 1
        set ::vesk::main::folded_by_width 2
        place_right
    }
    .main.right.tabs select .main.right.tabs.$name
}

# ---- the console's place ----

proc ::vesk::main::place_console {} {
    ::vesk::settings::set_value console_shown $::vesk::console_shown
    set console .main.console
    pack forget $console .main.centre.sash
    if {!$::vesk::console_shown} {return}
    grid propagate $console 0
    $console configure -height [::vesk::theme::px [::vesk::settings::number console_height 70 1000]]
    pack $console -in .main.centre -side bottom -fill x -before .main.centre.views
    pack .main.centre.sash -side bottom -fill x -before .main.centre.views
}

# ---- focus ----

# next_region --
#   F6 moves the focus on: option bar, tools, views, objects, tabs, console.
proc ::vesk::main::next_region {step} {
    set regions [list .opt .main.tools .main.centre.views]
    if {$::vesk::panel_shown} {lappend regions .main.right.objects .main.right.tabs}
    if {$::vesk::console_shown} {lappend regions .main.console}
    set now [focus]
    set place -1
    foreach region $regions {
        if {[string match $region* $now]} {set place [lsearch -exact $regions $region]}
    }
    set region [lindex $regions [expr {($place + $step) % [llength $regions]}]]
    switch -- $region {
        .opt                  {focus .opt.modes.$::vesk::select_mode}
        .main.tools           {focus .main.tools.$::vesk::tools::current}
        .main.centre.views    {::vesk::view::focus_last}
        .main.right.objects   {
            set tree $::vesk::objects::tree
            if {[$tree focus] eq ""} {$tree focus [lindex [$tree children {}] 0]}
            focus $tree
        }
        .main.right.tabs      {focus .main.right.tabs}
        .main.console  {focus .main.console.input.value}
    }
}

# escape --
#   Escape without another binding: stops long work, else goes back to the views.
proc ::vesk::main::escape {} {
    set ::escape_pressed 1
    if {$::vesk::status::busy_since} {
        vesk cancel
        return
    }
    if {[winfo exists .operations]} {
        ::vesk::operations::close
        return
    }
    if {[winfo exists [::vesk::view::area].options]} {
        ::vesk::options::close
        return
    }
    set now [focus]
    if {$now ne "" && [winfo toplevel $now] eq "." && [winfo class $now] ne "Togl"} {
        ::vesk::view::focus_last
    }
}

# ---- kept for the next session ----

proc ::vesk::main::set_theme {} {
    set before $::vesk::theme::current
    ::vesk::theme::apply $::vesk::theme_name
    ::vesk::settings::set_value theme $::vesk::theme::current
    # High contrast and the safe colours change the views too; the other themes restore those.
    set special {contrast safe}
    if {$before ne $::vesk::theme_name && ($before in $special || $::vesk::theme_name in $special)} {
        ::vesk::prefs::use_view_colours $::vesk::theme_name
        vesk redraw_all
    }
    ::vesk::view::colour_frames
    remember
}

# remember --
#   Writes the scripts' own settings.
proc ::vesk::main::remember {} {
    variable folded_by_width
    if {$folded_by_width == 1} {::vesk::settings::set_value panel_shown 1}
    ::vesk::settings::set_value maximised [wm attributes . -zoomed]
    ::vesk::view::note_windows
    set message [::vesk::settings::save]
    if {$message ne ""} {display_message "settings not saved: $message"}
}

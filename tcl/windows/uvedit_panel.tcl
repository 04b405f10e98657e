# uvedit_panel.tcl --
#   The panel of the window of texture coordinates: buttons that arrange coordinates, and options of
#   the drawing.

namespace eval ::vesk::uvedit {
    variable extent "Proportions"
    variable margin 2           ;# pixels, between packed islands
    # Sections of the panel: title, then buttons {icon label words help}; the words begin with a
    # procedure of this window.
    variable sections {
        Project {
            {u-planar "Planar X" {project planar_x} "As the side view shows it."}
            {u-planar "Planar Y" {project planar_y} "As the plan view shows it."}
            {u-planar "Planar Z" {project planar_z} "As the front view shows it."}
            {u-box Box {project box} "Each surface from the side that it faces."}
            {u-cylinder Cylinder {project cylinder} "Once round the vertical axis; the ends apart."}
            {u-sphere Sphere {project sphere} "Round the middle."}
        }
        Arrange {
            {u-fit Fit {run uv_fit 1} "Fills the square, keeps the proportions."}
            {u-align Align {align} "Brings corners or islands to one line."}
            {u-fliph "Flip U" {run uv_flip u} "Mirrors to the side."}
            {u-flipv "Flip V" {run uv_flip v} "Mirrors upside down."}
            {u-rot90 "Rotate 90" {run uv_rotate_90} "Turns to the left."}
            {u-pack Pack {pack_islands} "Lays islands side by side into the square."}
        }
        Corners {
            {u-weld Weld {run uv_weld} "Brings the chosen corners of each vertex together."}
            {u-split Split {run uv_split} "Parts what is chosen from its neighbours."}
            {u-pixel Snap {run uv_snap} "Moves corners to whole pixels."}
            {u-stretch Relax {run uv_relax 20} "Lowers the distortion; repeat for more."}
        }
    }
    variable sides {left "Left edge" right "Right edge" centre "Centre" top "Top edge"
        bottom "Bottom edge" middle "Middle"}
    variable measures {"Area and shape" 1 Area 2 Shape 3}
    variable measured "Area and shape"
    variable extents {Proportions 1 "Whole square" 2 "Model units" 0}
}

# ---- building ----

proc ::vesk::uvedit::build_panel {path} {
    variable sections
    variable edits {}
    ttk::frame $path -style Panel.TFrame -padding [::vesk::theme::pad 12 10 10 10]
    set row -1
    dict for {title buttons} $sections {
        incr row
        add_title $path.title$row $title $row [expr {$row ? 12 : 0}]
        set row [add_buttons $path $row $buttons]
        if {$title eq "Project"} {add_extent $path [incr row]}
        if {$title eq "Arrange"} {add_margin $path [incr row]}
    }
    ttk::checkbutton $path.keep -text "Keep the picture in place" -style Panel.TCheckbutton \
        -variable ::vesk::uvedit::keep -command ::vesk::uvedit::keep_changed
    ::vesk::tooltips::attach $path.keep "Keep the picture in place" "" \
        "Coordinates slide while vertices move in the views."
    grid $path.keep - -row [incr row] -sticky w -pady [::vesk::theme::pad 6 0]
    build_show $path [incr row]
    build_align $path.align
    grid columnconfigure $path {0 1} -weight 1 -uniform buttons
}

proc ::vesk::uvedit::add_title {label text row above} {
    ttk::label $label -text $text -style Panel.Bold.TLabel
    grid $label - -row $row -sticky w -pady [::vesk::theme::pad $above 4] \
        -padx [::vesk::theme::pad 2 0]
}

# add_buttons --
#   Adds buttons, two in a row. Returns the last row.
proc ::vesk::uvedit::add_buttons {path row buttons} {
    variable edits
    set column 1
    foreach button $buttons {
        if {[set column [expr {!$column}]] == 0} {incr row}
        lassign $button icon label words help
        set w $path.b[expr {[llength $edits] + 1}]
        ::vesk::parts::icon_button $w $icon $label $help [call_of $words]
        $w configure -text $label -compound left
        grid $w -row $row -column $column -sticky w
        lappend edits $w
    }
    return $row
}

proc ::vesk::uvedit::add_extent {path row} {
    variable extents
    ttk::combobox $path.extent -state readonly -width 12 -style Panel.TCombobox \
        -values [dict keys $extents] -textvariable ::vesk::uvedit::extent
    bind $path.extent <<ComboboxSelected>> {%W selection clear}
    ::vesk::tooltips::attach $path.extent "Extent" "" \
        "What the whole square is: all of it in proportion, each side by itself, a unit."
    grid $path.extent - -row $row -sticky we -pady [::vesk::theme::pad 4 0]
}

proc ::vesk::uvedit::add_margin {path row} {
    ttk::label $path.lmargin -text "Pack margin, pixels" -style Panel.Dim.TLabel
    ttk::entry $path.margin -width 5 -justify right -font VeskNumber \
        -style Panel.TEntry -textvariable ::vesk::uvedit::margin
    ::vesk::fields::on_keys $path.margin {Return ::vesk::uvedit::pack_islands Escape {focus .uv.view.togl}}
    grid $path.lmargin -row $row -column 0 -sticky w -padx [::vesk::theme::pad 4 0]
    grid $path.margin -row $row -column 1 -sticky e -pady [::vesk::theme::pad 4 0]
}

# build_align --
#   The menu of the button Align.
proc ::vesk::uvedit::build_align {menu} {
    variable sides
    menu $menu -tearoff 0
    ::vesk::theme::recolour $menu
    foreach {side label} $sides {
        ::vesk::menus::add_row $menu \
            [list call $label [list ::vesk::uvedit::run uv_align $side] "" ""]
    }
}

# build_show --
#   The options of the drawing, and the numbers of the stretch.
proc ::vesk::uvedit::build_show {path row} {
    variable measures
    add_title $path.show Show $row 12
    foreach {name label help} {
        checker  Checker          "A checker instead of the picture."
        stretch  Stretch          "Where the picture is spread thin or crowded."
        overlaps Overlaps         "Surfaces that lie on others."
        repeat   "Repeat texture" "The picture beyond the square."
    } {
        ttk::checkbutton $path.$name -text $label -style Panel.TCheckbutton \
            -variable ::vesk::uvedit::option($name) \
            -command [list ::vesk::uvedit::set_option $name]
        ::vesk::tooltips::attach $path.$name $label "" $help
        grid $path.$name - -row [incr row] -sticky w -pady [::vesk::theme::px 3]
        if {$name ne "stretch"} {continue}
        ttk::combobox $path.measured -state readonly -width 14 -style Panel.TCombobox \
            -values [dict keys $measures] -textvariable ::vesk::uvedit::measured
        bind $path.measured <<ComboboxSelected>> {
            ::vesk::uvedit::set_option stretch
            %W selection clear
        }
        ::vesk::tooltips::attach $path.measured "Stretch" "" \
            "What the colours tell: the worse of both, or one."
        grid $path.measured - -row [incr row] -sticky we -pady [::vesk::theme::pad 2 4]
    }
    ttk::checkbutton $path.smooth -text "Smooth lines" -style Panel.TCheckbutton \
        -variable ::prefs_uveditor_antialias -command {vesk redraw_all}
    ::vesk::tooltips::attach $path.smooth "Smooth lines" "" "Outlines without steps."
    grid $path.smooth - -row [incr row] -sticky w -pady [::vesk::theme::px 3]
    ttk::label $path.measure -style Panel.Dim.TLabel -justify left -anchor w \
        -wraplength [::vesk::theme::px 190]
    grid $path.measure - -row [incr row] -sticky we -pady [::vesk::theme::pad 6 0]
}

# ---- actions ----

# call_of --
#   The script of a button: a procedure of this window with its words.
proc ::vesk::uvedit::call_of {words} {
    return [lreplace $words 0 0 ::vesk::uvedit::[lindex $words 0]]
}

proc ::vesk::uvedit::project {kind} {
    variable extent
    variable extents
    run uv_project $kind [dict get $extents $extent]
}

proc ::vesk::uvedit::pack_islands {} {
    variable margin
    if {[catch {::vesk::arith::value $margin} pixels] || $pixels < 0} {
        ::vesk::fields::mark_invalid .uv.panel.margin 1
        tell "The margin is a number of pixels, 0 or more."
        return
    }
    ::vesk::fields::mark_invalid .uv.panel.margin 0
    run uv_pack $pixels
}

proc ::vesk::uvedit::align {} {
    foreach w [winfo children .uv.panel] {
        if {[winfo class $w] eq "TButton" && [$w cget -text] eq "Align"} {
            tk_popup .uv.panel.align [winfo rootx $w] [expr {[winfo rooty $w] + [winfo height $w]}]
        }
    }
}

proc ::vesk::uvedit::set_option {name} {
    variable option
    variable measures
    variable measured
    set value $option($name)
    if {$name eq "stretch" && $value} {set value [dict get $measures $measured]}
    vesk uv_option $name $value
    update idletasks
    show_measure
}

# popup --
#   The menu of the right button in the drawing.
proc ::vesk::uvedit::popup {x y} {
    variable sections
    if {![winfo exists .uv]} {return}
    set menu [::vesk::menus::new_popup .uv.popup]
    foreach {label words key} {
        "Choose &all" {uv_select all} A "Choose &none" {uv_select none} Esc
        "&Invert" {uv_select invert} I "&Linked islands" {uv_select linked} L
        "&Overlapping" {uv_select overlapping} "" "&Flipped" {uv_select flipped} ""
    } {
        ::vesk::menus::add_row $menu [list call $label [list ::vesk::uvedit::run {*}$words] $key ""]
    }
    foreach title {Arrange Corners} {
        ::vesk::menus::add_row $menu {line}
        foreach button [dict get $sections $title] {
            lassign $button icon label words help
            ::vesk::menus::add_row $menu [list call $label [call_of $words] "" ""]
        }
    }
    tk_popup $menu {*}[winfo pointerxy .uv]
}

# show_measure --
#   Shows the numbers of the stretch and the overlaps while these are drawn.
proc ::vesk::uvedit::show_measure {} {
    variable option
    set lines {}
    if {($option(stretch) || $option(overlaps)) && [vesk uv_view_waits] eq "measures"} {
        .uv.panel.measure configure -text "Measuring \u2026"
        return
    }
    if {$option(stretch)} {
        set stretch [vesk uv_stretch]
        if {[llength $stretch]} {
            dict with stretch {
                lappend lines "Area \u00d7 [format %.2f $area_least] to [format %.2f $area_most]" \
                    "Shape 1 : [format %.2f $angle_mean], at most [format %.2f $angle_most]"
                if {$flipped} {lappend lines "[::vesk::arith::grouped $flipped] flipped"}
            }
        }
    }
    if {$option(overlaps)} {
        lappend lines "[::vesk::arith::grouped [vesk uv_overlaps]] surfaces overlap"
    }
    .uv.panel.measure configure -text [join $lines \n]
}

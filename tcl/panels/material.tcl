# material.tcl --
#   The Material tab: the current entry of the palette with its colours as text and sliders. Editing
#   writes all of the entry with "set_palette_entry".

namespace eval ::vesk::material {
    variable path ""            ;# the tab
    variable value              ;# fields of the entry shown: colours by kind, and two numbers
    variable kinds {diffuse Diffuse ambient Ambient emissive Emissive specular Specular}
    # Largest value and format of the two numbers.
    variable numbers {shininess {128 %.0f} transparency {1 %.2f}}
    variable picked ""          ;# text of the field that chooses and names
    variable loading 0          ;# the sliders are set by us
    variable pending ""
    array set value {diffuse #000000 ambient #000000 emissive #000000 specular #000000
        shininess 10 transparency 0.00 diffuse,level 0 ambient,level 0 emissive,level 0
        specular,level 0}
}

proc ::vesk::material::build {tab} {
    variable path $tab
    variable kinds
    ttk::frame $tab -style Panel.TFrame -padding [::vesk::theme::px 12]
    build_top $tab.top
    pack $tab.top -fill x -pady [::vesk::theme::pad 0 10]
    ttk::frame $tab.rows -style Panel.TFrame
    pack $tab.rows -fill x
    set row -1
    foreach {kind label} $kinds {add_colour_row $tab.rows [incr row] $kind $label}
    ttk::frame $tab.rows.line -style Line.TFrame -height [::vesk::theme::px 1]
    grid $tab.rows.line -row [incr row] -columnspan 4 -sticky we -pady [::vesk::theme::px 7]
    add_number_row $tab.rows [incr row] shininess Shininess
    add_number_row $tab.rows [incr row] transparency Transparency
    grid columnconfigure $tab.rows 0 -minsize [::vesk::theme::px 96]
    grid columnconfigure $tab.rows 2 -weight 1
    ::vesk::theme::follow ::vesk::material::draw_ball
    bind $tab.top.ball <Visibility> ::vesk::material::draw_ball
    bind $tab.top.ball <Map> {after idle ::vesk::palette::count_users}
    return $tab
}

# build_top --
#   The picture, the name, and the buttons of the entry.
proc ::vesk::material::build_top {top} {
    ttk::frame $top -style Panel.TFrame
    set side [::vesk::theme::px 92]
    ::vesk::theme::on [canvas $top.ball -width $side -height $side] panel
    ttk::combobox $top.pick -style Panel.TCombobox -height 16 \
        -postcommand ::vesk::material::list_names -textvariable ::vesk::material::picked
    bind $top.pick <<ComboboxSelected>> ::vesk::material::name_picked
    ::vesk::fields::text_keys $top.pick ::vesk::material::name_typed {::vesk::palette::show; break}
    ::vesk::tooltips::attach $top.pick "Material" "" "Choose one, or type a name for this one."
    ttk::label $top.line -style Panel.Dim.TLabel
    ttk::button $top.apply -style Panel.TButton -text "Apply to selection" \
        -command ::vesk::palette::apply_current
    ttk::frame $top.icons -style Panel.TFrame
    ::vesk::parts::icon_button $top.icons.add add "New material" "A new entry, as this one." \
        ::vesk::palette::duplicate
    pack $top.icons.add -side right
    grid $top.ball $top.pick - -sticky nwe
    grid ^ $top.line - -sticky we -pady [::vesk::theme::pad 8 8]
    grid ^ $top.apply $top.icons -sticky we
    grid configure $top.pick $top.line $top.apply -padx [::vesk::theme::pad 12 0]
    grid configure $top.line -padx [::vesk::theme::pad 14 0]
    grid configure $top.apply -sticky w
    grid columnconfigure $top 2 -weight 1
}

# add_colour_row --
#   Label, swatch, slider of the brightness and the colour as text.
proc ::vesk::material::add_colour_row {rows row kind label} {
    ::vesk::fields::swatch $rows.s$kind 22 22 [list ::vesk::material::choose_colour $kind]
    ::vesk::tooltips::attach $rows.s$kind "$label colour" "" "Click to choose."
    add_slider $rows $kind $label 1 [list ::vesk::material::level_moved $kind]
    ::vesk::fields::text_keys $rows.e$kind [list ::vesk::material::colour_typed $kind] \
        {::vesk::palette::show; break}
    grid $rows.l$kind $rows.s$kind $rows.b$kind $rows.e$kind -row $row -sticky we
    grid configure $rows.s$kind -padx [::vesk::theme::pad 4 8]
    grid configure $rows.e$kind -padx [::vesk::theme::pad 8 0]
}

proc ::vesk::material::add_number_row {rows row kind label} {
    variable numbers
    add_slider $rows $kind $label [lindex [dict get $numbers $kind] 0] \
        [list ::vesk::material::number_moved $kind]
    ::vesk::fields::number_keys $rows.e$kind ::vesk::material::value($kind) \
        [list ::vesk::material::number_typed $kind]
    grid $rows.l$kind $rows.b$kind - $rows.e$kind -row $row -sticky we
    grid configure $rows.b$kind -padx [::vesk::theme::pad 4 0]
    grid configure $rows.e$kind -padx [::vesk::theme::pad 8 0]
}

# add_slider --
#   The common parts of a row: label, slider, entry.
proc ::vesk::material::add_slider {rows kind label top script} {
    ttk::label $rows.l$kind -text $label -style Panel.Dim.TLabel
    ttk::scale $rows.b$kind -style Panel.Horizontal.TScale -from 0 -to $top \
        -variable ::vesk::material::value($kind,level) -command $script
    ttk::entry $rows.e$kind -style Panel.TEntry -width 8 -justify right -font VeskNumber \
        -textvariable ::vesk::material::value($kind)
    bind $rows.b$kind <ButtonRelease-1> {+::vesk::material::commit}
}

# ---- showing ----

# show --
#   Fills the tab from an entry as the executable tells it.
proc ::vesk::material::show {entry} {
    variable path
    variable value
    variable picked
    variable kinds
    variable numbers
    variable loading 1
    set parts [lassign $entry name]
    foreach {kind label} $kinds {
        set parts [lassign $parts r g b]
        set value($kind) [to_hex $r $g $b]
        set value($kind,level) [expr {max($r, $g, $b)}]
        ::vesk::fields::show_swatch $path.rows.s$kind $value($kind)
    }
    foreach {kind limits} $numbers number $parts {
        set value($kind) [format [lindex $limits 1] $number]
        set value($kind,level) $number
    }
    set picked [::vesk::palette::entry_name $::vesk::palette::current $name]
    show_place
    $path.top.apply state [expr {[::vesk::menus::known set_col] ? "!disabled" : "disabled"}]
    set loading 0
    draw_ball
}

# show_place --
#   Which entry it is, and how many surfaces have it.
proc ::vesk::material::show_place {} {
    variable path
    $path.top.line configure -text "[::vesk::palette::place_text][::vesk::palette::users_text]"
}

proc ::vesk::material::to_hex {r g b} {
    return [format "#%02X%02X%02X" {*}[lmap part [list $r $g $b] {
        expr {int(min(1, max(0, $part)) * 255 + 0.5)}
    }]]
}

# parts --
#   Splits "#rrggbb" into three numbers from 0 to 1.
proc ::vesk::material::parts {hex} {
    scan $hex "#%2x%2x%2x" r g b
    return [list [expr {$r / 255.0}] [expr {$g / 255.0}] [expr {$b / 255.0}]]
}

# draw_ball --
#   Draws a sphere in the material, once the tab is visible.
proc ::vesk::material::draw_ball {} {
    variable path
    variable value
    if {![winfo exists $path] || ![winfo viewable $path.top.ball]} {return}
    if {"::vesk::material::ball" ni [image names]} {
        image create photo ::vesk::material::ball
        $path.top.ball create image 0 0 -anchor nw -image ::vesk::material::ball
    }
    ::vesk::material_ball ::vesk::material::ball [::vesk::theme::px 92] \
        [list {*}[colour_parts] $value(transparency,level) $value(shininess,level)]
}

# colour_parts --
#   The parts of the four colours, in the order of an entry.
proc ::vesk::material::colour_parts {} {
    variable value
    variable kinds
    return [concat {*}[lmap {kind label} $kinds {parts $value($kind)}]]
}

# ---- editing ----

# put_colour --
#   Gives the entry another colour.
proc ::vesk::material::put_colour {kind hex} {
    variable path
    variable value
    set value($kind) $hex
    set value($kind,level) [tcl::mathfunc::max {*}[parts $hex]]
    ::vesk::fields::show_swatch $path.rows.s$kind $hex
    commit
}

proc ::vesk::material::choose_colour {kind} {
    variable value
    set chosen [::vesk::colourbox::ask $value($kind)]
    if {$chosen ne ""} {put_colour $kind $chosen}
}

proc ::vesk::material::colour_typed {kind} {
    variable path
    variable value
    set hex [::vesk::fields::typed_colour $path.rows.e$kind]
    if {$hex eq ""} {return}
    if {[current_colour $kind] ne $hex} {put_colour $kind $hex} else {set value($kind) $hex}
}

# current_colour --
#   The colour of the entry as the executable holds it.
proc ::vesk::material::current_colour {kind} {
    set place [dict get {diffuse 1 ambient 4 emissive 7 specular 10} $kind]
    return [to_hex {*}[lrange [vesk get_material $::vesk::palette::current] $place $place+2]]
}

# level_moved --
#   The slider scales a colour to a brightness and keeps its hue.
proc ::vesk::material::level_moved {kind level} {
    variable path
    variable value
    variable loading
    if {$loading} {return}
    lassign [parts $value($kind)] r g b
    set top [expr {max($r, $g, $b)}]
    if {$top <= 0} {lassign {1.0 1.0 1.0 1.0} r g b top}
    set value($kind) [to_hex {*}[lmap part [list $r $g $b] {expr {$part / $top * $level}}]]
    ::vesk::fields::show_swatch $path.rows.s$kind $value($kind)
    moved
}

proc ::vesk::material::number_moved {kind number} {
    variable value
    variable numbers
    variable loading
    if {$loading} {return}
    set value($kind) [format [lindex [dict get $numbers $kind] 1] $number]
    moved
}

proc ::vesk::material::number_typed {kind number} {
    variable value
    variable numbers
    lassign [dict get $numbers $kind] top format
    set number [expr {min($top, max(0, $number))}]
    set value($kind,level) $number
    set value($kind) [format $format $number]
    commit
}

# moved --
#   While a slider is dragged the picture follows, and by a preference the model too.
proc ::vesk::material::moved {} {
    variable pending
    after cancel $pending
    set pending [after 40 [expr {$::prefs_realtimecolour ? "::vesk::material::preview"
        : "::vesk::material::draw_ball"}]]
}

# preview --
#   The model follows the drag without a step of the history.
proc ::vesk::material::preview {} {
    draw_ball
    vesk palette_preview {*}[entry_words]
}

# entry_words --
#   Number and values of the entry, as the commands take them.
proc ::vesk::material::entry_words {} {
    variable value
    return [list $::vesk::palette::current {*}[lmap part [colour_parts] {format %.4g $part}] \
        [format %g $value(shininess,level)] [format %g $value(transparency,level)]]
}

# commit --
#   Writes the values of the tab into the entry: one step, from what was before a drag.
proc ::vesk::material::commit {} {
    variable pending
    after cancel $pending
    draw_ball
    ::vesk::ops::run set_palette_entry {*}[entry_words]
    vesk redraw_all
}

# ---- choosing and naming ----

proc ::vesk::material::list_names {} {
    variable path
    set place -1
    $path.top.pick configure -values [lmap colour $::vesk::palette::colours {
        incr place
        ::vesk::palette::entry_name $place [lindex [vesk get_material $place] 0]
    }]
}

proc ::vesk::material::name_picked {} {
    variable path
    ::vesk::palette::select [$path.top.pick current]
    $path.top.pick selection clear
}

# name_typed --
#   The current entry gets the typed name.
proc ::vesk::material::name_typed {} {
    variable picked
    set current $::vesk::palette::current
    if {$picked ne [::vesk::palette::entry_name $current $::vesk::palette::name]} {
        ::vesk::ops::run material_set_name $current $picked
    }
}

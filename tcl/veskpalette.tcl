# veskpalette.tcl --
#   The Material tab, which edits one palette entry. It and the Palette tab (swatches.tcl) show the
#   entry `current`; editing writes all of it with "set_palette_entry".

namespace eval ::vesk::palette {
    variable material ""        ;# the Material tab
    variable swatches ""        ;# the Palette tab
    variable colours {}         ;# "#rrggbb" of every entry
    variable current 0
    variable columns 8
    variable value              ;# fields of the entry shown: colours by kind, and two numbers
    variable name ""
    variable kinds {diffuse Diffuse ambient Ambient emissive Emissive specular Specular}
    variable loading 0
    variable pending ""
    variable users {}           ;# surfaces of each entry, when they were counted
    array set value {diffuse #000000 ambient #000000 emissive #000000 specular #000000
        shininess 10 transparency 0.00 diffuse,level 0 ambient,level 0 emissive,level 0
        specular,level 0}
}

# ---- the Material tab ----

proc ::vesk::palette::build_material {tab} {
    variable material $tab
    variable kinds
    ttk::frame $tab -style Panel.TFrame -padding [::vesk::theme::px 12]
    ttk::frame $tab.top -style Panel.TFrame
    set side [::vesk::theme::px 92]
    ::vesk::theme::on [canvas $tab.top.ball -width $side -height $side] panel
    ttk::combobox $tab.top.pick -style Panel.TCombobox -height 16 \
        -postcommand ::vesk::palette::list_names -textvariable ::vesk::palette::picked
    bind $tab.top.pick <<ComboboxSelected>> ::vesk::palette::name_picked
    bind_text $tab.top.pick ::vesk::palette::name_typed
    ::vesk::tips::attach $tab.top.pick "Material" "" "Choose one, or type a name for this one."
    ttk::label $tab.top.line -style Panel.Dim.TLabel
    ttk::button $tab.top.apply -style Panel.TButton -text "Apply to selection" \
        -command ::vesk::palette::apply_current
    ttk::frame $tab.top.icons -style Panel.TFrame
    icon_button $tab.top.icons.add add "New material" "A new entry, as this one." \
        ::vesk::palette::duplicate
    pack $tab.top.icons.add -side right
    grid $tab.top.ball $tab.top.pick - -sticky nwe
    grid ^ $tab.top.line - -sticky we -pady [::vesk::theme::pad 8 8]
    grid ^ $tab.top.apply $tab.top.icons -sticky we
    grid configure $tab.top.pick $tab.top.line $tab.top.apply -padx [::vesk::theme::pad 12 0]
    grid configure $tab.top.line -padx [::vesk::theme::pad 14 0]
    grid configure $tab.top.apply -sticky w
    grid columnconfigure $tab.top 2 -weight 1
    pack $tab.top -fill x -pady [::vesk::theme::pad 0 10]
    ttk::frame $tab.rows -style Panel.TFrame
    pack $tab.rows -fill x
    set row 0
    foreach {kind label} $kinds {
        add_colour_row $tab.rows $row $kind $label
        incr row
    }
    ttk::frame $tab.rows.line -style Line.TFrame -height [::vesk::theme::px 1]
    grid $tab.rows.line -row $row -columnspan 4 -sticky we -pady [::vesk::theme::px 7]
    incr row
    add_number_row $tab.rows $row shininess Shininess 128
    add_number_row $tab.rows [incr row] transparency Transparency 1
    grid columnconfigure $tab.rows 0 -minsize [::vesk::theme::px 96]
    grid columnconfigure $tab.rows 2 -weight 1
    ::vesk::theme::follow ::vesk::palette::draw_ball
    bind $tab.top.ball <Visibility> ::vesk::palette::draw_ball
    return $tab
}

# icon_button --
#   A small picture button with its tooltip.
proc ::vesk::palette::icon_button {path icon name help command} {
    ttk::button $path -style Panel.Icon.Toolbutton -command $command \
        -image [list [::vesk::icons::get $icon] disabled [::vesk::icons::get $icon disabled]]
    ::vesk::tips::attach $path $name "" $help
    return $path
}

# add_colour_row --
#   Label, swatch, slider of the brightness and the colour as text.
proc ::vesk::palette::add_colour_row {rows row kind label} {
    variable value
    ttk::label $rows.l$kind -text $label -style Panel.Dim.TLabel
    set size [::vesk::theme::px 22]
    ::vesk::theme::on [frame $rows.s$kind -width $size -height $size -takefocus 1 \
        -highlightthickness 1] -
    bind $rows.s$kind <Button-1> [list ::vesk::palette::choose_colour $kind]
    bind $rows.s$kind <Key-space> [list ::vesk::palette::choose_colour $kind]
    bind $rows.s$kind <Key-Return> [list ::vesk::palette::choose_colour $kind]
    ::vesk::tips::attach $rows.s$kind "$label colour" "" "Click to choose."
    ttk::scale $rows.b$kind -style Panel.Horizontal.TScale -from 0 -to 1 \
        -variable ::vesk::palette::value($kind,level) \
        -command [list ::vesk::palette::level_moved $kind]
    ttk::entry $rows.e$kind -style Panel.TEntry -width 8 -justify right -font VeskNumber \
        -textvariable ::vesk::palette::value($kind)
    bind $rows.b$kind <ButtonRelease-1> {+::vesk::palette::commit}
    bind_text $rows.e$kind [list ::vesk::palette::colour_typed $kind]
    grid $rows.l$kind $rows.s$kind $rows.b$kind $rows.e$kind -row $row -sticky we \
        -pady [::vesk::theme::px 0]
    grid configure $rows.s$kind -padx [::vesk::theme::pad 4 8]
    grid configure $rows.e$kind -padx [::vesk::theme::pad 8 0]
}

proc ::vesk::palette::add_number_row {rows row kind label top} {
    ttk::label $rows.l$kind -text $label -style Panel.Dim.TLabel
    ttk::scale $rows.b$kind -style Panel.Horizontal.TScale -from 0 -to $top \
        -variable ::vesk::palette::value($kind,level) \
        -command [list ::vesk::palette::number_moved $kind]
    ttk::entry $rows.e$kind -style Panel.TEntry -width 8 -justify right -font VeskNumber \
        -textvariable ::vesk::palette::value($kind)
    bind $rows.b$kind <ButtonRelease-1> {+::vesk::palette::commit}
    ::vesk::dialogs::number_keys $rows.e$kind ::vesk::palette::value($kind) \
        [list ::vesk::palette::number_typed $kind]
    grid $rows.l$kind $rows.b$kind - $rows.e$kind -row $row -sticky we
    grid configure $rows.b$kind -padx [::vesk::theme::pad 4 0]
    grid configure $rows.e$kind -padx [::vesk::theme::pad 8 0]
}

# bind_text --
#   Return and leaving apply a typed text; Escape shows the entry's own again.
proc ::vesk::palette::bind_text {entry apply} {
    foreach event {Return KP_Enter} {
        bind $entry <$event> "$apply; ::vesk::view::done_in %W"
    }
    bind $entry <Button-1> {+set ::vesk::view::done ""}
    bind $entry <FocusOut> $apply
    bind $entry <Escape> {::vesk::palette::show; break}
}

# ---- showing ----

# refresh --
#   The palette changed, or another entry is to be shown.
proc ::vesk::palette::refresh {} {
    variable colours
    variable current
    set colours [vesk get_palette]
    set current [expr {max(0, min($current, [llength $colours] - 1))}]
    draw_swatches
    show
}

# show --
#   Fills the Material tab from the executable's entry.
proc ::vesk::palette::show {} {
    variable material
    variable current
    variable colours
    variable value
    variable name
    variable loading 1
    variable picked
    if {[llength $colours] == 0} {
        set loading 0
        return
    }
    set entry [vesk get_material $current]
    lassign $entry name dr dg db ar ag ab er eg eb sr sg sb shininess transparency
    foreach {kind r g b} [list diffuse $dr $dg $db ambient $ar $ag $ab emissive $er $eg $eb \
            specular $sr $sg $sb] {
        set value($kind) [to_hex $r $g $b]
        set value($kind,level) [expr {max($r, $g, $b)}]
        colour_swatch $kind
    }
    set value(shininess) [format %.0f $shininess]
    set value(shininess,level) $shininess
    set value(transparency) [format %.2f $transparency]
    set value(transparency,level) $transparency
    set picked [entry_name $current $name]
    $material.top.line configure -text "Material [expr {$current + 1}] of [llength $colours]"
    variable swatches
    set usable [expr {[::vesk::menus::known set_col] ? "!disabled" : "disabled"}]
    foreach button [list $material.top.apply $swatches.row.apply] {$button state $usable}
    set loading 0
    draw_ball
    mark_swatch
}

proc ::vesk::palette::entry_name {index name} {
    if {$name eq ""} {return "Material [expr {$index + 1}]"}
    return $name
}

proc ::vesk::palette::colour_swatch {kind} {
    variable material
    variable value
    $material.rows.s$kind configure -background $value($kind) \
        -highlightbackground [::vesk::theme::colour edge] \
        -highlightcolor [::vesk::theme::colour ring]
}

proc ::vesk::palette::to_hex {r g b} {
    set parts {}
    foreach part [list $r $g $b] {
        lappend parts [expr {int(min(1, max(0, $part)) * 255 + 0.5)}]
    }
    return [format "#%02X%02X%02X" {*}$parts]
}

# parts --
#   "#rrggbb" as three numbers from 0 to 1.
proc ::vesk::palette::parts {hex} {
    scan $hex "#%2x%2x%2x" r g b
    return [list [expr {$r / 255.0}] [expr {$g / 255.0}] [expr {$b / 255.0}]]
}

# draw_ball --
#   A sphere lit by the material, once somebody can see it.
proc ::vesk::palette::draw_ball {} {
    variable material
    variable value
    if {![winfo exists $material] || ![winfo viewable $material.top.ball]} {return}
    if {"::vesk::palette::ball" ni [image names]} {
        image create photo ::vesk::palette::ball
        $material.top.ball create image 0 0 -anchor nw -image ::vesk::palette::ball
    }
    set values {}
    foreach kind {diffuse ambient emissive specular} {lappend values {*}[parts $value($kind)]}
    ::vesk::material_ball ::vesk::palette::ball [::vesk::theme::px 92] \
        [list {*}$values $value(transparency,level) $value(shininess,level)]
}

# ---- editing ----

proc ::vesk::palette::colour_typed {kind} {
    variable value
    variable material
    set text $value($kind)
    if {[regexp {^#?([0-9A-Fa-f]{6})$} $text -> digits]} {
        set hex "#[string toupper $digits]"
        ::vesk::dialogs::mark_invalid $material.rows.e$kind 0
        if {[current_colour $kind] ne $hex} {
            set value($kind) $hex
            set value($kind,level) [tcl::mathfunc::max {*}[parts $hex]]
            colour_swatch $kind
            commit
        } else {
            set value($kind) $hex
        }
        return
    }
    ::vesk::dialogs::mark_invalid $material.rows.e$kind 1
    display_message "a colour is written #RRGGBB, not \"$text\""
}

# current_colour --
#   The colour of the entry as the executable holds it.
proc ::vesk::palette::current_colour {kind} {
    variable current
    set place [dict get {diffuse 1 ambient 4 emissive 7 specular 10} $kind]
    return [to_hex {*}[lrange [vesk get_material $current] $place $place+2]]
}

# level_moved --
#   The slider scales a colour to a brightness and keeps its hue.
proc ::vesk::palette::level_moved {kind level} {
    variable value
    variable loading
    if {$loading} {return}
    lassign [parts $value($kind)] r g b
    set top [expr {max($r, $g, $b)}]
    if {$top <= 0} {
        lassign [list 1.0 1.0 1.0 1.0] r g b top
    }
    set value($kind) [to_hex [expr {$r / $top * $level}] [expr {$g / $top * $level}] \
        [expr {$b / $top * $level}]]
    colour_swatch $kind
    moved
}

proc ::vesk::palette::number_moved {kind number} {
    variable value
    variable loading
    if {$loading} {return}
    set value($kind) [format [expr {$kind eq "shininess" ? "%.0f" : "%.2f"}] $number]
    moved
}

proc ::vesk::palette::number_typed {kind number} {
    variable value
    set top [expr {$kind eq "shininess" ? 128 : 1}]
    set number [expr {min($top, max(0, $number))}]
    set value($kind,level) $number
    set value($kind) [format [expr {$kind eq "shininess" ? "%.0f" : "%.2f"}] $number]
    commit
}

# moved --
#   While a slider is dragged: the picture follows, and the model too where that is wanted.
proc ::vesk::palette::moved {} {
    variable pending
    after cancel $pending
    if {$::prefs_realtimecolour} {
        set pending [after 40 ::vesk::palette::commit]
    } else {
        set pending [after 40 ::vesk::palette::draw_ball]
    }
}

# commit --
#   Writes the entry as the tab shows it.
proc ::vesk::palette::commit {} {
    variable current
    variable value
    variable pending
    after cancel $pending
    set words {}
    foreach kind {diffuse ambient emissive specular} {
        foreach part [parts $value($kind)] {lappend words [format %.4g $part]}
    }
    draw_ball
    ::vesk::ops::run set_palette_entry $current {*}$words [format %g $value(shininess,level)] \
        [format %g $value(transparency,level)]
    vesk redraw_all
    # The entry alone may have no announcement of its own.
    after idle ::vesk::palette::refresh_colours
}

proc ::vesk::palette::refresh_colours {} {
    variable colours
    set colours [vesk get_palette]
    draw_swatches
}

proc ::vesk::palette::choose_colour {kind} {
    variable value
    set chosen [::vesk::colourbox::ask $value($kind)]
    if {$chosen eq ""} {return}
    set value($kind) $chosen
    set value($kind,level) [tcl::mathfunc::max {*}[parts $chosen]]
    colour_swatch $kind
    commit
}

proc ::vesk::palette::list_names {} {
    variable material
    variable colours
    set names {}
    for {set i 0} {$i < [llength $colours]} {incr i} {
        lappend names [entry_name $i [lindex [vesk get_material $i] 0]]
    }
    $material.top.pick configure -values $names
}

proc ::vesk::palette::name_picked {} {
    variable material
    select [$material.top.pick current]
    $material.top.pick selection clear
}

# name_typed --
#   The current material gets the typed name.
proc ::vesk::palette::name_typed {} {
    variable current
    variable picked
    variable name
    if {$picked eq [entry_name $current $name]} {return}
    ::vesk::ops::run material_set_name $current $picked
    show
}

# select --
#   Makes an entry the one that both tabs show.
proc ::vesk::palette::select {index} {
    variable current
    variable colours
    if {$index < 0 || $index >= [llength $colours]} {return}
    set current $index
    show
}

proc ::vesk::palette::step {places} {
    variable current
    select [expr {$current + $places}]
}

proc ::vesk::palette::apply_current {} {
    variable current
    ::vesk::ops::run set_col $current
}

# duplicate, add_entry --
#   A new entry with the values of the current one, or grey, which is then shown.
proc ::vesk::palette::duplicate {} {
    variable current
    append_entry [lrange [vesk get_material $current] 1 end]
}
proc ::vesk::palette::add_entry {} {
    append_entry {0.8 0.8 0.8 0.2 0.2 0.2 0 0 0 0.5 0.5 0.5 10 0}
    ::vesk::main::show_tab material
}
proc ::vesk::palette::append_entry {words} {
    variable current
    set index [::vesk::ops::run new_palette_entry $current]
    if {![string is integer -strict $index]} {return}
    ::vesk::ops::run set_palette_entry $index {*}$words
    set current $index
    refresh
}

# ---- what the executable calls ----

# add_palette_button --
#   An entry was appended; the grid is drawn anew from the palette itself.
proc add_palette_button {colour index} {::vesk::ops::request}

# edit_colour_ui --
#   Opens the editor of an entry.
proc edit_colour_ui {index args} {
    ::vesk::palette::refresh
    ::vesk::palette::select $index
    ::vesk::main::show_tab material
}

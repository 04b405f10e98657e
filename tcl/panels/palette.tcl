# palette.tcl --
#   The palette: its colours, the current entry, which the Palette and the Material tab show, and
#   new entries. The Palette tab: a grid of all entries, eight in a row, and their buttons.

namespace eval ::vesk::palette {
    variable path ""            ;# the Palette tab
    variable colours {}         ;# "#rrggbb" of every entry
    variable current 0
    variable name ""            ;# of the current entry
    variable columns 8
    variable users {}           ;# surfaces of each entry, when they were counted
    variable applying ""        ;# the clicked entry, which is given unless a second click follows
}

# ---- entries ----

# refresh --
#   Reads the palette anew and shows it.
proc ::vesk::palette::refresh {} {
    variable colours
    variable current
    set colours [vesk get_palette]
    set current [expr {max(0, min($current, [llength $colours] - 1))}]
    draw
    show
}

# show --
#   Both tabs show the current entry.
proc ::vesk::palette::show {} {
    variable path
    variable colours
    variable current
    variable name
    if {[llength $colours] == 0} {return}
    set entry [vesk get_material $current]
    set name [lindex $entry 0]
    ::vesk::material::show $entry
    $path.row.apply state [expr {[::vesk::menus::known set_col] ? "!disabled" : "disabled"}]
    mark
}

# entry_name, place_text --
#   An entry in words.
proc ::vesk::palette::entry_name {index name} {
    if {$name eq ""} {return "Material [expr {$index + 1}]"}
    return $name
}
proc ::vesk::palette::place_text {} {
    variable current
    variable colours
    return "Material [expr {$current + 1}] of [llength $colours]"
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

# follow_selection --
#   Makes the material of what is selected the one that both tabs show.
proc ::vesk::palette::follow_selection {} {
    variable current
    set entries [vesk selection_materials]
    if {[llength $entries] > 0 && $current ni $entries} {select [lindex $entries 0]}
}

# duplicate, add_entry --
#   A new entry with the values of the current one, or grey, which is then shown.
proc ::vesk::palette::duplicate {} {
    variable current
    set words [lassign [vesk get_material $current] name]
    append_entry $words [unused_name [entry_name $current $name]]
}
proc ::vesk::palette::add_entry {} {
    append_entry {0.8 0.8 0.8 0.2 0.2 0.2 0 0 0 0.5 0.5 0.5 10 0} ""
    ::vesk::main::show_tab material
}
proc ::vesk::palette::append_entry {words name} {
    variable current
    set index [::vesk::ops::run new_palette_entry $current]
    if {![string is integer -strict $index]} {return}
    ::vesk::ops::run set_palette_entry $index {*}$words
    ::vesk::ops::run material_set_name $index $name
    set current $index
}

# unused_name --
#   A name with the first number that no other material has.
proc ::vesk::palette::unused_name {name} {
    variable colours
    regsub {\s+\d+$} $name {} stem
    for {set place 0} {$place < [llength $colours]} {incr place} {
        dict set taken [entry_name $place [lindex [vesk get_material $place] 0]] 1
    }
    for {set number 2} {[dict exists $taken "$stem $number"]} {incr number} {}
    return "$stem $number"
}

# ---- the tab ----

# build --
#   Makes the tab: the grid, the name of the current entry, and its buttons.
proc ::vesk::palette::build {tab} {
    variable path $tab
    ttk::frame $tab -style Panel.TFrame -padding [::vesk::theme::px 12]
    ::vesk::theme::on [canvas $tab.grid -height 10 -takefocus 1 \
        -yscrollincrement [::vesk::theme::px 4] -yscrollcommand [list $tab.bar set]] panel
    ttk::scrollbar $tab.bar -command [list $tab.grid yview]
    pack $tab.grid -fill x
    ttk::label $tab.name -style Panel.Bold.TLabel
    ttk::label $tab.line -style Panel.Dim.TLabel
    pack $tab.name $tab.line -anchor w -pady [::vesk::theme::pad 4 4]
    ttk::frame $tab.row -style Panel.TFrame
    ttk::button $tab.row.apply -style Panel.TButton -text Apply \
        -command ::vesk::palette::apply_current
    ttk::button $tab.row.select -style Panel.TButton -text "Select surfaces" \
        -command ::vesk::palette::select_users
    pack $tab.row.apply $tab.row.select -side left -padx [::vesk::theme::pad 0 6]
    foreach {name icon label help command} {
        unused filter "Next unused" "Goes to the next material that no surface has."
            ::vesk::palette::next_unused
        edit settings "Edit" "Shows the material." {::vesk::main::show_tab material}
        copy duplicate "Duplicate" "A new entry, as this one." ::vesk::palette::duplicate
        add add "New material" "A new entry, grey." ::vesk::palette::add_entry
    } {
        ::vesk::parts::icon_button $tab.row.$name $icon $label $help $command
        pack $tab.row.$name -side right
    }
    pack $tab.row -fill x -pady [::vesk::theme::pad 6 0]
    # The tab gives the height, the grid the width.
    foreach part [list $tab $tab.grid] {bind $part <Configure> ::vesk::palette::draw}
    bind_grid $tab.grid
    ::vesk::ops::listen palette ::vesk::palette::refresh
    ::vesk::ops::listen model ::vesk::palette::model_changed
    ::vesk::ops::listen selection ::vesk::palette::follow_selection
    ::vesk::theme::follow ::vesk::palette::draw
    return $tab
}

# bind_grid --
#   Mouse and keys of the grid.
proc ::vesk::palette::bind_grid {grid} {
    foreach {button step} {4 -6 5 6} {
        bind $grid <Button-$button> [list $grid yview scroll $step units]
    }
    bind $grid <Button-1> {focus %W; ::vesk::palette::swatch_at %x %y}
    bind $grid <Double-Button-1> {::vesk::palette::edit_current}
    bind $grid <Leave> {::vesk::palette::apply_clicked}
    bind $grid <Key-Return> ::vesk::palette::apply_current
    bind $grid <Button-3> {focus %W; ::vesk::palette::context %x %y %X %Y}
    foreach event {<Key-Menu> <Shift-Key-F10>} {
        bind $grid $event {::vesk::palette::swatch_menu {*}[winfo pointerxy %W]; break}
    }
    foreach {key step} {Left -1 Right 1 Up -8 Down 8} {
        bind $grid <Key-$key> [list ::vesk::palette::step $step]
    }
    foreach event {<FocusIn> <FocusOut>} {bind $grid $event ::vesk::palette::mark}
    bind $grid <Map> {after idle ::vesk::palette::count_users}
}

# draw --
#   Draws one square for each entry.
proc ::vesk::palette::draw {} {
    variable path
    variable colours
    variable columns
    if {![winfo exists $path]} {return}
    set canvas $path.grid
    $canvas delete all
    fit_grid
    set step [swatch_step]
    set side [expr {$step - [::vesk::theme::px 8]}]
    set index 0
    foreach colour $colours {
        set x [expr {($index % $columns) * $step + [::vesk::theme::px 4]}]
        set y [expr {($index / $columns) * $step + [::vesk::theme::px 4]}]
        $canvas create rectangle $x $y [expr {$x + $side}] [expr {$y + $side}] -fill $colour \
            -outline [::vesk::theme::colour edge] -tags [list e$index swatch]
        incr index
    }
    mark
}

# fit_grid --
#   Sets the height of the grid: all rows, or fewer with a scrollbar where the widgets below need
#   the room.
proc ::vesk::palette::fit_grid {} {
    variable path
    variable colours
    variable columns
    set rows [expr {max(1, ([llength $colours] + $columns - 1) / $columns)}]
    set below [::vesk::theme::px 48]
    foreach part {name line row} {incr below [winfo reqheight $path.$part]}
    set room [expr {max([::vesk::theme::px 60], [winfo height $path] - $below)}]
    place forget $path.bar
    set wanted [expr {$rows * [swatch_step] + [::vesk::theme::px 4]}]
    # Before it was first shown the tab has no height yet.
    if {[winfo height $path] <= 1} {set room $wanted}
    if {$wanted > $room} {
        place $path.bar -in $path.grid -relx 1 -anchor ne -relheight 1
        set wanted [expr {$rows * [swatch_step] + [::vesk::theme::px 4]}]
    }
    $path.grid configure -height [expr {min($room, $wanted)}] -scrollregion [list 0 0 1 $wanted]
}

# see --
#   Scrolls the current entry into the grid.
proc ::vesk::palette::see {} {
    variable path
    variable current
    set canvas $path.grid
    lassign [$canvas bbox e$current] x0 y0 x1 y1
    lassign [$canvas cget -scrollregion] left top right bottom
    if {$y0 eq ""} {return}
    if {$y0 < [$canvas canvasy 0]} {
        $canvas yview moveto [expr {double($y0 - [::vesk::theme::px 8]) / $bottom}]
    } elseif {$y1 > [$canvas canvasy [$canvas cget -height]]} {
        set first [expr {$y1 + [::vesk::theme::px 8] - [$canvas cget -height]}]
        $canvas yview moveto [expr {double($first) / $bottom}]
    }
}

# mark --
#   Frames the current entry and names it.
proc ::vesk::palette::mark {} {
    variable path
    variable current
    variable colours
    variable name
    if {![winfo exists $path] || [llength $colours] == 0} {return}
    set canvas $path.grid
    $canvas delete mark
    set box [$canvas coords e$current]
    if {$box ne ""} {
        lassign $box x0 y0 x1 y1
        set gap [::vesk::theme::px 3]
        $canvas create rectangle [expr {$x0 - $gap}] [expr {$y0 - $gap}] [expr {$x1 + $gap}] \
            [expr {$y1 + $gap}] -width [::vesk::theme::px 2] -tags mark -outline \
            [::vesk::theme::colour [expr {[focus] eq $canvas ? "ring" : "accent"}]]
    }
    $path.name configure -text [entry_name $current $name]
    $path.line configure -text "[place_text],\
        [string toupper [lindex $colours $current]][users_text]"
    see
}

# ---- who uses them ----

# count_users --
#   Counts the surfaces of each material while the tab can be seen.
proc ::vesk::palette::count_users {} {
    variable path
    variable users
    if {![winfo viewable $path] && ![winfo viewable $::vesk::material::path]} {return}
    set users [vesk material_counts]
    mark
    ::vesk::material::show_place
}
proc ::vesk::palette::model_changed {} {
    after cancel ::vesk::palette::count_users
    after 300 ::vesk::palette::count_users
}

proc ::vesk::palette::users_text {} {
    variable users
    variable current
    set count [lindex $users $current]
    if {$count eq ""} {return ""}
    return ", [expr {$count == 0 ? "unused" : "on [::vesk::arith::counted $count surface]"}]"
}

proc ::vesk::palette::select_users {} {
    variable current
    ::vesk::ops::run material_select $current
}

# next_unused --
#   Goes to the next material without a surface.
proc ::vesk::palette::next_unused {} {
    variable current
    variable users [vesk material_counts]
    set count [llength $users]
    for {set i 1} {$i <= $count} {incr i} {
        set place [expr {($current + $i) % $count}]
        if {[lindex $users $place] == 0} {
            select $place
            return
        }
    }
    display_message "every material is used"
}

# swatch_step --
#   Distance of two squares: eight fill the width beside the scrollbar, up to a largest size.
proc ::vesk::palette::swatch_step {} {
    variable path
    variable columns
    set width [expr {[winfo width $path.grid] - 1}]
    if {[winfo manager $path.bar] ne ""} {incr width -[winfo reqwidth $path.bar]}
    set step [expr {$width / $columns}]
    return [expr {min([::vesk::theme::px 37], max([::vesk::theme::px 16], $step))}]
}

# swatch_below --
#   The entry at a place of the grid, or -1.
proc ::vesk::palette::swatch_below {x y} {
    variable path
    variable columns
    variable colours
    set step [swatch_step]
    set column [expr {$x / $step}]
    set index [expr {int([$path.grid canvasy $y]) / $step * $columns + $column}]
    return [expr {$column < $columns && $index < [llength $colours] ? $index : -1}]
}

# swatch_at, apply_clicked, edit_current --
#   A click gives the selection the material, as Return does, unless a second click follows, which
#   edits it. Whoever leaves the grid meanwhile clicked once.
proc ::vesk::palette::swatch_at {x y} {
    variable applying
    set index [swatch_below $x $y]
    apply_clicked
    if {$index < 0} {return}
    select $index
    if {[lindex [vesk get_counts] 2] > 0} {
        set applying $index
        after 250 ::vesk::palette::apply_clicked
    }
}
proc ::vesk::palette::apply_clicked {} {
    variable applying
    after cancel ::vesk::palette::apply_clicked
    if {$applying ne ""} {::vesk::ops::run set_col $applying}
    set applying ""
}
proc ::vesk::palette::edit_current {} {
    variable applying ""
    after cancel ::vesk::palette::apply_clicked
    ::vesk::main::show_tab material
}

# context, swatch_menu --
#   The menu of a material; the right button makes it the current one first.
proc ::vesk::palette::context {x y root_x root_y} {
    set index [swatch_below $x $y]
    if {$index >= 0} {select $index}
    swatch_menu $root_x $root_y
}
proc ::vesk::palette::swatch_menu {root_x root_y} {
    ::vesk::menus::popup_rows {
        {call "&Apply" {::vesk::palette::apply_current} Return some
            "Gives the selection this material."}
        {call "&Select surfaces" {::vesk::palette::select_users} "" model
            "Selects the surfaces that have this material."}
        {line}
        {call "&Edit" {::vesk::main::show_tab material} "" "" "Shows the material."}
        {call "&New" {::vesk::palette::add_entry} "" "" "A new entry, grey."}
        {call "&Duplicate" {::vesk::palette::duplicate} "" "" "A new entry, as this one."}
        {line}
        {call "Next &unused" {::vesk::palette::next_unused} "" ""
            "Goes to the next material that no surface has."}
    } $root_x $root_y
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

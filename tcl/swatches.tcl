# swatches.tcl --
#   The Palette tab: a grid of all materials, eight in a row, and what can be done with them.

# build_swatches --
#   Makes the tab: the grid, what the current entry is called, and what can be done with it.
proc ::vesk::palette::build_swatches {tab} {
    variable swatches $tab
    ttk::frame $tab -style Panel.TFrame -padding [::vesk::theme::px 12]
    ::vesk::theme::on [canvas $tab.grid -height 10 -takefocus 1] panel
    ttk::scrollbar $tab.bar -command [list $tab.grid yview]
    $tab.grid configure -yscrollcommand [list $tab.bar set] -yscrollincrement [::vesk::theme::px 4]
    pack $tab.grid -fill x
    ttk::label $tab.name -style Panel.Bold.TLabel
    ttk::label $tab.line -style Panel.Dim.TLabel
    pack $tab.name $tab.line -anchor w -pady [::vesk::theme::pad 4 4]
    ttk::frame $tab.row -style Panel.TFrame
    ttk::button $tab.row.apply -style Panel.TButton -text Apply \
        -command ::vesk::palette::apply_current
    ttk::button $tab.row.select -style Panel.TButton -text "Select surfaces" \
        -command ::vesk::palette::select_users
    icon_button $tab.row.unused filter "Next unused" "Goes to the next material that no surface has." \
        ::vesk::palette::next_unused
    icon_button $tab.row.edit settings "Edit" "Shows the material." {
        .main.right.tabs select .main.right.tabs.material}
    icon_button $tab.row.copy duplicate "Duplicate" "A new entry, as this one." \
        ::vesk::palette::duplicate
    icon_button $tab.row.add add "New material" "A new entry, grey." ::vesk::palette::add_entry
    pack $tab.row.apply $tab.row.select -side left -padx [::vesk::theme::pad 0 6]
    pack $tab.row.unused $tab.row.edit $tab.row.copy $tab.row.add -side right
    bind $tab.grid <Map> {after idle ::vesk::palette::count_users}
    ::vesk::ops::listen model ::vesk::palette::model_changed
    pack $tab.row -fill x -pady [::vesk::theme::pad 6 0]
    # The tab gives the height, the grid the width.
    foreach part [list $tab $tab.grid] {bind $part <Configure> ::vesk::palette::draw_swatches}
    foreach {button step} {4 -6 5 6} {
        bind $tab.grid <Button-$button> [list $tab.grid yview scroll $step units]
    }
    bind $tab.grid <Button-1> {focus %W; ::vesk::palette::swatch_at %x %y}
    bind $tab.grid <Double-Button-1> {
        .main.right.tabs select .main.right.tabs.material}
    bind $tab.grid <Key-Return> [list $tab.row.apply invoke]
    bind $tab.grid <Button-3> {focus %W; ::vesk::palette::context %x %y %X %Y}
    foreach event {<Key-Menu> <Shift-Key-F10>} {
        bind $tab.grid $event {::vesk::palette::swatch_menu {*}[winfo pointerxy %W]; break}
    }
    foreach {key step} {Left -1 Right 1 Up -8 Down 8} {
        bind $tab.grid <Key-$key> [list ::vesk::palette::step $step]
    }
    bind $tab.grid <FocusIn> ::vesk::palette::mark_swatch
    bind $tab.grid <FocusOut> ::vesk::palette::mark_swatch
    ::vesk::theme::follow ::vesk::palette::draw_swatches
    return $tab
}

# draw_swatches --
#   One square an entry, eight in a row.
proc ::vesk::palette::draw_swatches {} {
    variable swatches
    variable colours
    variable columns
    if {![winfo exists $swatches]} {return}
    set canvas $swatches.grid
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
    mark_swatch
}

# fit_grid --
#   Height of the grid: all rows, as long as what stands below them keeps its place; else they scroll.
proc ::vesk::palette::fit_grid {} {
    variable swatches
    variable colours
    variable columns
    set rows [expr {max(1, ([llength $colours] + $columns - 1) / $columns)}]
    set below [::vesk::theme::px 48]
    foreach part {name line row} {incr below [winfo reqheight $swatches.$part]}
    set room [expr {max([::vesk::theme::px 60], [winfo height $swatches] - $below)}]
    place forget $swatches.bar
    set wanted [expr {$rows * [swatch_step] + [::vesk::theme::px 4]}]
    # Before it was first shown the tab has no height yet.
    if {[winfo height $swatches] <= 1} {set room $wanted}
    if {$wanted > $room} {
        place $swatches.bar -in $swatches.grid -relx 1 -anchor ne -relheight 1
        set wanted [expr {$rows * [swatch_step] + [::vesk::theme::px 4]}]
    }
    $swatches.grid configure -height [expr {min($room, $wanted)}] -scrollregion [list 0 0 1 $wanted]
}

# see_swatch --
#   Scrolls the current entry into the grid.
proc ::vesk::palette::see_swatch {} {
    variable swatches
    variable current
    set canvas $swatches.grid
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

# mark_swatch --
#   Frames the current entry and names it.
proc ::vesk::palette::mark_swatch {} {
    variable swatches
    variable current
    variable colours
    variable name
    if {![winfo exists $swatches] || [llength $colours] == 0} {return}
    set canvas $swatches.grid
    $canvas delete mark
    set box [$canvas coords e$current]
    if {$box ne ""} {
        lassign $box x0 y0 x1 y1
        set gap [::vesk::theme::px 3]
        $canvas create rectangle [expr {$x0 - $gap}] [expr {$y0 - $gap}] [expr {$x1 + $gap}] \
            [expr {$y1 + $gap}] -width [::vesk::theme::px 2] -tags mark -outline \
            [::vesk::theme::colour [expr {[focus] eq $canvas ? "ring" : "accent"}]]
    }
    $swatches.name configure -text [entry_name $current $name]
    $swatches.line configure -text "Material [expr {$current + 1}] of [llength $colours],\
        [string toupper [lindex $colours $current]][users_text]"
    see_swatch
}

# ---- who uses them ----

# count_users --
#   Counts the surfaces of each material while the tab can be seen.
proc ::vesk::palette::count_users {} {
    variable swatches
    variable users
    if {![winfo viewable $swatches]} {return}
    set users [vesk material_counts]
    mark_swatch
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
    return ", [expr {$count == 0 ? "unused" : "on [::vesk::transform::counted $count surface]"}]"
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
#   Distance of two swatches: eight fill the width beside the scrollbar, at most so large.
proc ::vesk::palette::swatch_step {} {
    variable swatches
    variable columns
    set width [expr {[winfo width $swatches.grid] - 1}]
    if {[winfo manager $swatches.bar] ne ""} {incr width -[winfo reqwidth $swatches.bar]}
    set step [expr {$width / $columns}]
    return [expr {min([::vesk::theme::px 37], max([::vesk::theme::px 16], $step))}]
}

# swatch_below --
#   The entry at a place of the grid, or -1.
proc ::vesk::palette::swatch_below {x y} {
    variable swatches
    variable columns
    variable colours
    set step [swatch_step]
    set column [expr {$x / $step}]
    set index [expr {int([$swatches.grid canvasy $y]) / $step * $columns + $column}]
    return [expr {$column < $columns && $index < [llength $colours] ? $index : -1}]
}

proc ::vesk::palette::swatch_at {x y} {
    set index [swatch_below $x $y]
    if {$index < 0} {return}
    select $index
    # A click gives the selection the material, as Return does.
    if {[lindex [vesk get_counts] 2] > 0} {apply_current}
}

# context, swatch_menu --
#   What can be done with a material; the right button makes it the current one first.
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

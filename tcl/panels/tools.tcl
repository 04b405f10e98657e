# tools.tcl --
#   The tool column, and the fields of each tool in the option bar, from one table.

namespace eval ::vesk::tools {
    variable current move
    variable choosing 0         ;# a tool of the column is setting the draw mode
    variable columns 2
    # A row: name, icon, draw mode ("" none), required command, key, label, help, hint.
    # {} parts the groups. Tools without a draw mode act at once or keep the mode "move"; "+name" is
    # a tool of the views beside the draw modes.
    variable table {
        {move move move move M "Move"
            "Drag to move, or type a distance." "Drag to move. X, Y, Z lock an axis, N, P, L the normal, the picked, the last one."}
        {rotate rotate rotate rotate R "Rotate"
            "Drag to turn, or type angles." "Drag to turn. Shift: steps of 15 degrees."}
        {scale scale move scale "" "Scale"
            "Drag a handle, or type factors." "Drag a handle. Shift keeps proportions."}
        {extrude extrude extrude extrude E "Extrude"
            "Drag to sweep the selected surfaces."
            "Drag to sweep where the surfaces face. Shift: any way. X, Y, Z: along an axis."}
        {}
        {polygon polygon polygon create "" "Polygon"
            "Click corner by corner." "Click corners. Return ends, BackSpace takes one back."}
        {polyline polyline polyline create "" "Polyline"
            "Click point by point." "Click points. Return ends, BackSpace takes one back."}
        {line line line create "" "Line" "Click two points." "Click the first point of a line."}
        {circle circle circle create "" "Circle"
            "Drag from corner to corner." "Drag from corner to corner. Shift: equal sides."}
        {disk disk disk create "" "Disk"
            "A filled circle of triangles." "Drag from corner to corner. Shift: equal sides."}
        {rect rect rect create "" "Rectangle"
            "Drag from corner to corner." "Drag from corner to corner. Shift: equal sides."}
        {}
        {grid grid grid create "" "Grid"
            "A grid of lines." "Drag from corner to corner. Shift: equal sides."}
        {mesh mesh mesh create "" "Mesh"
            "A mesh of surfaces." "Drag from corner to corner. Shift: equal sides."}
        {box box box create "" "Box"
            "Drag from corner to corner." "Drag from corner to corner. Control: from the centre."}
        {cylinder cylinder cylinder create "" "Cylinder"
            "Drag from corner to corner." "Drag from corner to corner. Control: from the centre."}
        {sphere sphere sphere create "" "Sphere"
            "Drag from corner to corner." "Drag from corner to corner. Control: from the centre."}
        {cone cone "" create "" "Cone" "Adds a cone." ""}
        {revolve revolve "" revolve "" "Revolve"
            "Sweeps the selection around an axis." ""}
        {text text "" create_text "" "Text" "Adds a text made of surfaces." ""}
        {}
        {insert insert +insert_vertex set_view_tool "" "Insert vertices"
            "Click an edge where the vertex comes." "Click an edge. Control: in the middle."}
        {loopcut loopcut +loop_cut loop_cut_at "" "Loop cut"
            "Click an edge: its ring of quads is cut."
            "Click an edge. Wheel or digits: how many loops. Drag: where."}
        {knife knife +knife knife "" "Knife"
            "Click a line point by point: it cuts what it crosses."
            "Click points, Return cuts. Control: middles. Shift: right angles. BackSpace takes one back."}
        {slice slice +slice slice "" "Slice"
            "Drag a line across a view: a plane cuts the selection."
            "Drag a line. Shift: steps of 15 degrees. Its front lies to the left of it."}
        {slide slide +slide slide "" "Slide"
            "Drag edges or vertices along the edges beside them."
            "Drag an edge or a vertex along the edges beside it, or type a share."}
        {edgebevel edgebevel +edge_bevel edge_bevel "" "Bevel edges"
            "Drag to bevel edges or vertices."
            "Drag to the right: the width. Wheel: segments. Digits: a width."}
        {inset inset +inset inset "" "Inset"
            "Drag for a smaller surface inside each."
            "Drag to the right: the width. Control: the depth. Digits, Tab: numbers."}
        {extrudeeach extrudeeach +extrude_each extrude_each "" "Extrude each"
            "Drag every surface along its own normal."
            "Drag along the normal, or type a distance."}
        {extrudenormals extrudenormals +extrude_normals extrude_normals "" "Extrude along normals"
            "Drag connected surfaces evenly along their normals."
            "Drag along the normal, or type a distance."}
        {extrudeedges extrudeedges +extrude_edges extrude_edges "" "Extrude edges"
            "Drag new quads out of edges."
            "Drag. X, Y, Z lock an axis; digits type a distance."}
        {thickness thickness +shell shell "" "Thickness"
            "Drag to give surfaces an inner side."
            "Drag to the right: the thickness, or type it."}
        {}
        {light light light create "" "Light" "Click where the light stands." "Click where the light stands."}
        {place place +place_on_surface set_view_tool "" "Place on a surface"
            "Drag: the selection stands on what the pointer is over."
            "Drag over another object. Shift: keeps its turn. Escape takes it back."}
        {measure measure +measure set_view_tool "" "Measure"
            "Drag a ruler; a third click gives the angle."
            "Drag from point to point. A third click: the angle. Escape clears."}
        {zoom zoom zoom create "" "Zoom" "Drag a rectangle to see it larger." "Drag a rectangle to see it larger."}
    }
    # The rows without the group separators.
    variable rows [lsearch -all -inline -not -exact $table {}]
    # Fields of the option bar: {label kind preference switch}, kinds as in optionbar.tcl, not shown
    # while the switch is on; {vector START} is three axis fields with Apply.
    variable fields {
        move     {{vector 0}}
        rotate   {{vector 0} {"Own centres" bool rotate_about_object_centre}}
        scale    {{vector 1}}
        extrude  {{vector 0} {Automatic switch automatic} {Steps int extrude_num} {Cap bool extrude_cap_end}
                  {"Delete original" bool extrude_delete_original automatic}
                  {Turn bool extrude_flip_cap automatic}}
        circle   {{Segments int ellipse_segments}}
        disk     {{Segments int disk_segments}}
        grid     {{Columns int grid_object_x} {Rows int grid_object_y}}
        mesh     {{Columns int meshx} {Rows int meshy} {Triangles bool mesh_triangles}}
        cylinder {{Segments int cylinder_segments} {Ends bool cylinder_has_ends}}
        sphere   {{Segments int num_surface_div} {Triangles bool sphere_triangles}}
        insert   {{"Divide the selected edges" run insert_vertex}}
        slice    {{Keep option slice_keep {"Both sides" both "The front" front "The back" back}}
                  {Caps option slice_cap {None 0 Closed 1}}}
        edgebevel {{Segments option bevel_segments} {Profile option bevel_profile}}
        inset    {{Of option inset_of {"Each surface" each "The region" region}}}
        thickness {{Rim option shell_rim {Closed 1 Open 0}}}
        measure  {{Selection measures}}
    }
    variable vector             ;# the three numbers of move, rotate, scale
    array set vector {x 0.000 y 0.000 z 0.000}
    variable automatic 1        ;# extrusions keep bodies facing outwards, whatever the preferences
    variable option             ;# name -> value, of the tools that the executable keeps options for
    array set option {}
    variable measured ""        ;# sizes of the selection, while the measure tool is on
}

# row --
#   One tool's row as a dictionary.
proc ::vesk::tools::row {name} {
    variable rows
    set words [lsearch -inline -exact -index 0 $rows $name]
    set result {}
    foreach key {name icon mode needs key label help hint} word $words {
        dict set result $key $word
    }
    return $result
}

proc ::vesk::tools::fields_of {name} {
    variable fields
    set items [expr {[dict exists $fields $name] ? [dict get $fields $name] : {}}]
    if {[can_be_soft $name]} {
        lappend items {Soft bool soft_selection}
        if {$::prefs_soft_selection} {lappend items {Radius number soft_radius}}
    }
    return $items
}

# can_be_soft --
#   Whether what a tool does falls off with the distance while soft selection is on: that of elements.
proc ::vesk::tools::can_be_soft {name} {
    return [expr {$name in {move rotate scale} && $::vesk::select_mode in {surface edge vertex}}]
}

# needed --
#   The executable command that a tool depends on.
proc ::vesk::tools::needed {name} {
    return [dict get [row $name] needs]
}

# build --
#   Makes the column.
proc ::vesk::tools::build {path} {
    variable table
    ttk::frame $path -style Chrome.TFrame -padding [::vesk::theme::pad 6 7 6 4] \
        -width [::vesk::theme::px 78]
    set lines 0
    foreach words $table {
        if {[llength $words] == 0} {
            ttk::frame $path.line[incr lines] -style Line.TFrame -height [::vesk::theme::px 1]
            continue
        }
        set tool [row [lindex $words 0]]
        dict with tool {}
        set button $path.$name
        ttk::radiobutton $button -style Tool.Toolbutton -variable ::vesk::tools::current \
            -value $name -command [list ::vesk::tools::chosen $name] \
            -image [list {*}[::vesk::icons::or_disabled $icon] \
                selected [::vesk::icons::get $icon active]]
        ::vesk::tooltips::attach $button $label $key $help
        bind $button <Button-3> [list ::vesk::tools::options $name]
        foreach {event step} {Up -1 Down 1 Left -1 Right 1} {
            ::vesk::fields::on_keys $button [list $event [list ::vesk::tools::step $name $step]]
        }
    }
    arrange $path
    bind $path <Configure> [list ::vesk::tools::fit $path %h]
    foreach aspect {selection model} {::vesk::ops::listen $aspect ::vesk::tools::show_measured}
    return $path
}

# arrange --
#   Puts the tools into their columns.
proc ::vesk::tools::arrange {path} {
    variable table
    variable columns
    set line 0
    set column 0
    set lines 0
    foreach words $table {
        if {[llength $words] == 0} {
            if {$column > 0} {incr line}
            set column 0
            grid $path.line[incr lines] -row $line -column 0 -columnspan $columns -sticky we \
                -padx [::vesk::theme::px 3] -pady [::vesk::theme::px 7]
            incr line
            continue
        }
        grid $path.[lindex $words 0] -row $line -column $column -padx [::vesk::theme::pad 0 2] \
            -pady [::vesk::theme::pad 0 2]
        if {[incr column] == $columns} {
            set column 0
            incr line
        }
    }
}

# height_of --
#   What the tools need in so many columns, in pixels.
proc ::vesk::tools::height_of {path columns} {
    variable table
    set button [expr {[winfo reqheight $path.[lindex $table 0 0]] + [::vesk::theme::px 2]}]
    set height [::vesk::theme::px 11]
    set group 0
    foreach words [concat $table {{}}] {
        if {[llength $words] > 0} {
            incr group
            continue
        }
        incr height [expr {($group + $columns - 1) / $columns * $button + [::vesk::theme::px 15]}]
        set group 0
    }
    return [expr {$height - [::vesk::theme::px 15]}]
}

# fit --
#   Uses as many columns, from two on, as the height of the window needs.
proc ::vesk::tools::fit {path height} {
    variable columns
    if {$height < 50} {return}
    set wanted 2
    while {$wanted < 6 && [height_of $path $wanted] > $height} {incr wanted}
    if {$wanted == $columns} {return}
    set columns $wanted
    arrange $path
}

# refresh --
#   Greys the tools that this build cannot do.
proc ::vesk::tools::refresh {path} {
    variable rows
    foreach words $rows {
        set known [::vesk::menus::known [lindex $words 3]]
        $path.[lindex $words 0] state [expr {$known ? "!disabled" : "disabled"}]
    }
}

# step --
#   Arrow keys move the focus through the column.
proc ::vesk::tools::step {name step} {
    variable rows
    set names [lmap words $rows {lindex $words 0}]
    set place [lsearch -exact $names $name]
    for {set i 1} {$i < [llength $names]} {incr i} {
        set other .main.tools.[lindex $names [expr {($place + $i * $step) % [llength $names]}]]
        if {![$other instate disabled]} {
            focus $other
            return
        }
    }
}

# choose --
#   Makes a tool the current one, from a menu.
proc ::vesk::tools::choose {name} {
    variable current
    set current $name
    chosen $name
}

# chosen --
#   A tool was picked: tells the executable its draw mode, or acts at once.
proc ::vesk::tools::chosen {name} {
    variable current
    set mode [dict get [row $name] mode]
    if {$mode eq ""} {
        set current [tool_of_mode $::vesk::draw_mode]
        act $name
        return
    }
    if {[string match +* $mode]} {
        ::vesk::ops::run set_view_tool [string range $mode 1 end]
        return
    }
    # Deliberate: the tool "scale" shares the draw mode "move"; only its fields differ.
    variable choosing 1
    ::vesk::ops::run set_draw_mode $mode
    set choosing 0
    show $name
}

# show --
#   The column, the option bar and the status line tell which tool is in use.
proc ::vesk::tools::show {name} {
    variable current $name
    ::vesk::optionbar::show_fields $name
    ::vesk::status::hint
}

# act --
#   Runs a tool without a draw mode.
proc ::vesk::tools::act {name} {
    switch -- $name {
        revolve {::vesk::menus::invoke [::vesk::menus::find create revolve]}
        text    {::vesk::menus::invoke [::vesk::menus::find create create_text]}
        cone    {
            ::vesk::options::ask Cone {create {Kind choice {Cone cone}}
                {Plane choice {Front 0 Side 1 Plan 2}} {x1 number -1} {y1 number -1} {z1 number -1}
                {x2 number 1} {y2 number 1} {z2 number 1}
                {Segments pref cylinder_segments int}} "Adds a cone between two corners."
        }
    }
}

# options --
#   The right button on a tool moves the focus to its fields in the option bar.
proc ::vesk::tools::options {name} {
    if {[.main.tools.$name instate disabled]} {return}
    choose $name
    ::vesk::optionbar::focus_fields
}

proc ::vesk::tools::tool_of_mode {mode} {
    variable rows
    return [lindex [lsearch -inline -exact -index 2 $rows $mode] 0]
}

# apply --
#   Runs the current tool with the three typed numbers; returns 0 when one of them is none.
proc ::vesk::tools::apply {} {
    variable current
    variable vector
    set numbers {}
    foreach axis {x y z} {
        if {[catch {::vesk::arith::value $vector($axis)} number]} {
            display_message "[string toupper $axis]: $number"
            return 0
        }
        lappend numbers $number
    }
    switch -- $current {
        move    {::vesk::ops::run move_with_undo {*}$numbers}
        scale   {scale {*}$numbers}
        rotate  {::vesk::ops::run rotate_about_with_undo {*}$numbers {*}[pivot_point]}
        extrude {::vesk::ops::run extrude_select $::vesk::tools::automatic {*}$numbers}
    }
    vesk redraw_all
    return 1
}

# automatic_changed --
#   The option "Automatic" of the extrude tool.
proc ::vesk::tools::automatic_changed {} {
    variable automatic
    ::vesk::ops::run set_extrude_automatic $automatic
    ::vesk::optionbar::show_again
}

# scale, mirror --
#   Scale and mirror the selection at the pivot.
proc ::vesk::tools::scale {x y z} {
    if {$::vesk::optionbar::pivot eq "Selection"} {
        ::vesk::ops::run scale $x $y $z
    } else {
        ::vesk::ops::run scale_about_with_undo $x $y $z {*}[pivot_point]
    }
}
proc ::vesk::tools::mirror {axis} {
    if {$::vesk::optionbar::pivot eq "Selection"} {
        ::vesk::ops::run mirror_with_undo $axis
    } else {
        ::vesk::ops::run scale_about_with_undo {*}[lreplace {1 1 1} $axis $axis -1] {*}[pivot_point]
    }
}

# pivot_point --
#   What typed rotations, factors and mirrorings leave in its place.
proc ::vesk::tools::pivot_point {} {
    switch -- $::vesk::optionbar::pivot {
        Origin      {return {0 0 0}}
        "3D cursor" {return [vesk get_3d_cursor]}
        Picked      {return [lrange [vesk get_picked] 3 5]}
    }
    return [vesk get_selection_centre]
}

# show_measured --
#   Shows the sizes of the selection in the option bar.
proc ::vesk::tools::show_measured {} {
    variable current
    variable measured
    if {$current ne "measure"} {return}
    set measured [vesk get_measures]
    if {$measured eq ""} {set measured "nothing"}
    after idle ::vesk::optionbar::fit
}

# set_option --
#   Hands an option of a tool to the executable, and shows what it then is.
proc ::vesk::tools::set_option {name value} {
    variable option
    vesk set_tool_option $name $value
    set option($name) [vesk get_tool_option $name]
}
proc set_tool_option_ui {name value} {set ::vesk::tools::option($name) $value}

# set_view_tool_ui --
#   Shows a tool of the views beside the draw modes, or that it is off ("none").
proc set_view_tool_ui {name} {
    set ::vesk::view_tool $name
    set mode [expr {$name eq "none" ? $::vesk::draw_mode : "+$name"}]
    set tool [::vesk::tools::tool_of_mode $mode]
    # A rubber band is for one drag: in the column the tool stays that comes after it.
    if {$tool ne ""} {::vesk::tools::show $tool}
    if {$name eq "band"} {
        display_message "rubber band - drag over what to select; Shift adds, Control takes away"
    }
    ::vesk::tools::show_measured
}

# set_draw_mode_ui --
#   Shows a changed draw mode of the executable in the column.
proc set_draw_mode_ui {mode} {
    set ::vesk::draw_mode $mode
    if {$::vesk::tools::choosing} {return}
    set tool [::vesk::tools::tool_of_mode $mode]
    if {$tool ne ""} {::vesk::tools::show $tool}
}

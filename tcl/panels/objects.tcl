# objects.tcl --
#   The objects panel: the tree of objects with name, number of surfaces, eye and lock; filter;
#   selection in step with the views both ways; rename in place.

namespace eval ::vesk::objects {
    variable path ""
    variable tree ""
    variable strip ""           ;# the canvas with the two icons
    variable rows {}            ;# id -> {parent type name surfaces visible locked}
    variable told 0             ;# number of the last answer of "object_rows_begin"
    variable coming 0           ;# how many rows it has
    variable taken 0            ;# how many of them were taken over
    variable leaving {}         ;# rows that go before these are made
    variable gone 0             ;# how many of these had their turn
    variable leaving_above {}   ;# those of them with others below them, which go last
    variable insert_at {}       ;# parent -> the place of the next row below it, where that is not the last
    variable made 0             ;# how many rows were made
    variable above {}           ;# id -> 1, of rows with others below them
    variable fill_state {}      ;# {wanted first_time world top} while rows are made anew; else they change
    variable to_select {}       ;# id -> 1: rows that are selected as soon as they are made
    variable filter ""
    variable syncing 0          ;# the tree's selection is being set by us
    variable chosen {}          ;# ids selected in the model, of many those that the tree has by now
    variable chosen_at ""       ;# the selection's stamp, while others are still to be taken over
    variable asked {}           ;# rows that stand for what was selected by a click on them: groups
    variable shown_rows {}      ;# rows that show_selection marked
    variable pointed ""         ;# the row that was clicked last
    variable open {}            ;# id -> 1 or 0, of rows with others below them
    variable filtered 0         ;# only the rows that match the filter are there
    variable surfaces 0         ;# of all objects, as the list shows them
    variable strip_pending 0
    variable first_box {}       ;# {height of rows, box of the first one in sight}
    variable drag ""            ;# {row x y started target} while rows may be dragged
    variable marked {}          ;# id -> 1: rows with the icon for selected ones
    # More rows than these are made piece by piece, the window lives meanwhile.
    variable at_once 2000
    variable piece 200          ;# rows between two looks at the clock
    variable slice 12           ;# milliseconds
    variable icons {group o-group poly o-poly light o-light cube u-box sphere u-sphere
        world o-world}
}

proc ::vesk::objects::build {panel} {
    variable path $panel
    variable tree $panel.tree
    variable strip $panel.strip
    ttk::frame $panel -style Chrome.TFrame
    set head $panel.head
    ttk::frame $head -padding [::vesk::theme::pad 12 5 8 5]
    ttk::label $head.title -text Objects -style Bold.TLabel
    ttk::label $head.count -style Dim.TLabel
    ::vesk::fields::filter_field $head.filter filter Filter ::vesk::objects::filter $tree 16 2
    trace add variable ::vesk::objects::filter write ::vesk::objects::filter_changed
    pack $head.title $head.count -side left
    pack configure $head.count -padx [::vesk::theme::pad 10 0]
    pack $head.filter -side right
    ttk::treeview $tree -columns {surfaces} -show tree -selectmode extended \
        -yscrollcommand ::vesk::objects::scrolled
    $tree column #0 -stretch 1 -width [::vesk::theme::px 170] -minwidth [::vesk::theme::px 60]
    $tree column surfaces -stretch 0 -anchor e -width [::vesk::theme::px 58]
    ::vesk::theme::on [canvas $strip -width [::vesk::theme::px 52] -height 10] field
    ttk::scrollbar $panel.bar -style Field.Vertical.TScrollbar -command [list $tree yview]
    ttk::frame $panel.ground -style Field.TFrame
    grid $head - - -sticky we
    grid $tree $strip $panel.bar -sticky nswe
    grid columnconfigure $panel 0 -weight 1
    grid columnconfigure $panel 2 -minsize [::vesk::theme::px 10]
    grid rowconfigure $panel 1 -weight 1
    place $panel.ground -in $panel -relx 1 -x -[::vesk::theme::px 10] -y 0 \
        -width [::vesk::theme::px 10] -relheight 1
    lower $panel.ground
    bind_tree
    ttk::label $panel.empty -style Field.Dim.TLabel -justify center
    show_empty
    ::vesk::ops::listen tree ::vesk::objects::refresh
    ::vesk::ops::listen model ::vesk::objects::follow_counts
    ::vesk::ops::listen selection ::vesk::objects::show_selection
    ::vesk::theme::follow ::vesk::objects::strip_later
    return $panel
}

proc ::vesk::objects::filter_changed {args} {
    after cancel ::vesk::objects::fill
    after 120 ::vesk::objects::fill
}

proc ::vesk::objects::bind_tree {} {
    variable tree
    variable strip
    bind $tree <<TreeviewSelect>> ::vesk::objects::selected
    # Before the tree itself takes a click or a key, which change the selection that it shows.
    bindtags $tree [linsert [bindtags $tree] 0 VeskObjects]
    foreach event {<ButtonPress> <KeyPress>} {
        bind VeskObjects $event ::vesk::objects::choose_at_once
    }
    bind $tree <<TreeviewOpen>> ::vesk::objects::strip_later
    bind $tree <<TreeviewClose>> ::vesk::objects::strip_later
    bind $tree <Configure> ::vesk::objects::strip_later
    ::vesk::fields::on_keys $tree {
        F2 ::vesk::objects::rename
        Delete {::vesk::ops::run delete}
        Key-h {::vesk::objects::run hide_selected}
        Key-H {::vesk::objects::run hide_selected}
        Key-l {::vesk::objects::run lock_selected}
        Key-L {::vesk::objects::run lock_selected}
        Escape ::vesk::objects::escape
        Key-Menu ::vesk::objects::context_key
        Shift-Key-F10 ::vesk::objects::context_key
        Control-Key-a {::vesk::ops::run select_all}
    }
    bind $tree <Double-Button-1> {::vesk::objects::double %x %y; break}
    bind $tree <Button-3> {::vesk::objects::context %x %y %X %Y}
    bind $tree <Button-1> {+::vesk::objects::drag_press %x %y}
    # A press that adds to the selection must not become a drag: its release would choose one row.
    foreach event {<Control-Button-1> <Shift-Button-1>} {
        bind $tree $event {::vesk::objects::drag_press %x %y 1}
    }
    bind $tree <B1-Motion> {::vesk::objects::drag_motion %x %y}
    bind $tree <ButtonRelease-1> {::vesk::objects::drag_release}
    bind $tree <FocusIn> {::vesk::objects::show_focus 1}
    bind $tree <FocusOut> {::vesk::objects::show_focus 0}
    bind $strip <Button-1> {::vesk::objects::strip_click %x %y}
    foreach w [list $strip $tree] {
        bind $w <Button-4> [list ::vesk::objects::scroll -3]
        bind $w <Button-5> [list ::vesk::objects::scroll 3]
    }
}

# show_focus --
#   Keyboard focus shows as a frame of 2 pixels around the list.
proc ::vesk::objects::show_focus {on} {
    variable path
    variable tree
    destroy $path.f1 $path.f2 $path.f3 $path.f4
    if {!$on} {return}
    set width [::vesk::theme::px 2]
    foreach {name options} [list \
            f1 [list -relx 0 -rely 0 -relwidth 1 -height $width] \
            f2 [list -relx 0 -rely 1 -relwidth 1 -height $width -anchor sw] \
            f3 [list -relx 0 -rely 0 -relheight 1 -width $width] \
            f4 [list -relx 1 -rely 0 -relheight 1 -width $width -anchor ne]] {
        ::vesk::theme::on [frame $path.$name] ring
        place $path.$name -in $path.tree {*}$options
        raise $path.$name
    }
    # The right edge belongs to the strip of icons.
    place $path.f4 -in $path.strip
    place $path.f1 -relwidth 1 -width [winfo width $path.strip]
    place $path.f2 -relwidth 1 -width [winfo width $path.strip]
}

# double --
#   A double click on a name renames; elsewhere it opens or closes the row.
proc ::vesk::objects::double {x y} {
    variable tree
    set row [$tree identify row $x $y]
    if {$row eq ""} {return}
    if {[string match *text [$tree identify element $x $y]]} {
        rename
    } else {
        $tree item $row -open [expr {![$tree item $row -open]}]
        strip_later
    }
}

proc ::vesk::objects::context {x y root_x root_y} {
    variable tree
    set row [$tree identify row $x $y]
    if {$row ne "" && $row ni [$tree selection]} {
        $tree selection set [list $row]
        selected
    }
    ::vesk::menus::popup object $root_x $root_y
}

# context_key --
#   The same menu by key, below the row that has the focus.
proc ::vesk::objects::context_key {} {
    variable tree
    lassign [$tree bbox [$tree focus] #0] x y width height
    if {$x eq ""} {lassign {0 0 0 0} x y width height}
    ::vesk::menus::popup object [expr {[winfo rootx $tree] + $x + [::vesk::theme::px 40]}] \
        [expr {[winfo rooty $tree] + $y + $height}]
}

proc ::vesk::objects::run {command} {
    ::vesk::ops::run $command
    vesk redraw_all
}

# to_head --
#   Moves the selected objects before their siblings.
proc ::vesk::objects::to_head {} {
    variable rows
    set by_parent {}
    foreach id [vesk get_selected_objects] {
        if {[dict exists $rows $id]} {dict lappend by_parent [lindex [dict get $rows $id] 0] $id}
    }
    dict for {parent ids} $by_parent {
        ::vesk::ops::run objects_place $ids $parent [lindex [vesk object_get_children $parent] 0]
    }
}

proc ::vesk::objects::escape {} {
    variable drag
    if {$drag ne ""} {
        drag_end
        return
    }
    ::vesk::ops::run clear_selection
    ::vesk::ops::run redraw_all
}

# ---- rename in place ----

proc ::vesk::objects::rename {} {
    variable tree
    variable rows
    variable pointed
    # The row that was clicked last, or that the keys moved to, if it is selected.
    set marked [$tree selection]
    set id [$tree focus]
    foreach row [list [lindex $marked 0] [$tree focus] $pointed] {
        if {$row ne "" && $row in $marked} {set id $row}
    }
    if {$id eq "" || ![dict exists $rows $id]} {return}
    $tree see $id
    set box [$tree bbox $id #0]
    if {$box eq ""} {return}
    lassign $box x y width height
    set w $tree.rename
    destroy $w
    # The place of the name: right of the indent, the mark and the icon.
    set left [expr {$x + [::vesk::theme::px 36]}]
    ttk::entry $w -style Field.TEntry
    $w insert 0 [lindex [dict get $rows $id] 2]
    $w selection range 0 end
    place $w -x $left -y [expr {$y - [::vesk::theme::px 2]}] \
        -width [expr {max([::vesk::theme::px 80], $x + $width - $left)}] \
        -height [expr {$height + [::vesk::theme::px 4]}]
    ::vesk::fields::on_keys $w [list Return [list ::vesk::objects::renamed $id 1] \
        Escape [list ::vesk::objects::renamed $id 0]]
    bind $w <FocusOut> [list ::vesk::objects::renamed $id 1]
    focus $w
}

proc ::vesk::objects::renamed {id keep} {
    variable tree
    variable rows
    set w $tree.rename
    if {![winfo exists $w]} {return}
    set name [$w get]
    # Destroying it raises <FocusOut> once more.
    bind $w <FocusOut> {}
    destroy $w
    focus $tree
    if {$keep && [dict exists $rows $id] && $name ne [lindex [dict get $rows $id] 2]} {
        ::vesk::ops::run objects_set $id name $name
    }
}

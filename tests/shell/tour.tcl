# tour.tcl --
#   The tour of docs/tour.md with mouse and keys: a table lamp from nothing. The saved model is
#   looked at; with VESK_TOUR_PICTURES=FOLDER the tour's pictures are made on the way.

source [file join [file dirname [info script]] support.tcl]
source [file join [file dirname [info script]] frontview.tcl]

proc tool {name} {press .main.tools.$name}

# row_of --
#   The row of the objects panel with this name.
proc row_of {name} {
    foreach {id parent type title surfaces visible locked} [vesk object_tree] {
        if {$title eq $name} {return $id}
    }
}

# part --
#   Draws a cylinder in the plan view and gives it height, place and name in the Object tab.
proc part {name radius height middle} {
    set tab .main.right.tabs.object
    tool cylinder
    from_to -$radius $radius $radius -$radius "" xz
    enter $tab.sizey.value $height
    enter $tab.positiony.value $middle
    enter $tab.name $name
}

# extent --
#   Middle and size of an object, rounded.
proc extent {name} {
    vesk clear_selection
    vesk select_by_name $name
    return [lmap n [concat [centre] [size]] {
        format %.2f $n
    }]
}

proc look_at_the_saved_file {} {
    set file [work lamp.vesk]
    check "the file is there, and nothing is unsaved" {
        [file exists $file] && !$::unsaved_changes
    }
    vesk clear_all
    vesk file_load $file
    set names {}
    foreach {id parent type name surfaces visible locked} [vesk object_tree] {
        lappend names $name
        if {$name eq "table lamp"} {set lamp $id}
        if {$parent ne "" && $name in {base stem shade}} {lappend parents $parent}
    }
    check "it holds the lamp and its parts" {
        [lsort $names] eq [lsort {{table lamp} base stem shade light}] && [lsort -unique $parents] eq $lamp
    }
    vesk set_select_mode object
    foreach {name wanted} {
        base {0.00 0.05 0.00 1.00 0.10 1.00}
        stem {0.00 0.70 0.00 0.20 1.20 0.20}
        shade {0.00 1.35 0.00 0.80 0.50 0.80}
    } {
        check "$name stands where the tour says" {[extent $name] eq $wanted}
    }
    set text [contents $file]
    check "two materials are in use, those that were chosen" {
        [regexp -all {(?n)^MATERIAL} $text] == 2 &&
        [regexp {rgb 0.627451 0.752941 0.878431.*rgb 1 0.8745 0.6275} $text]
    }
}

run {
    vesk reset_views
    # 1. A base.
    press .opt.snap.on 8 8
    tool cylinder
    press .opt.tool.f2 8 8
    part base 0.5 0.1 0.05
    page_picture tour-base
    # 2. A stem.
    part stem 0.1 1.2 0.7
    # 3. A shade without ends, narrower at the top.
    tool cylinder
    press .opt.tool.f2 8 8
    part shade 0.4 0.5 1.35
    tool move
    press .opt.modes.vertex
    key Escape
    from_to -0.6 1.68 0.6 1.5 "" xy
    check "the rubber band takes the ring" {[count vertices] == 12}
    tool scale
    press .opt.tool.x.value
    key ctrl+a
    type 0.5
    press .opt.tool.z.value
    key ctrl+a
    type 0.5
    key Return
    page_picture tour-narrow
    # 4. Materials: a new one for the shade, one of the palette for the rest.
    press .opt.modes.object
    press_row $::vesk::objects::tree [row_of shade]
    search two-sided Two-sided
    set tab .main.right.tabs.material
    open_tab material
    press $tab.top.icons.add
    enter $tab.rows.ediffuse "#FFDFA0"
    enter $tab.rows.eemissive "#806030"
    press $tab.top.apply
    page_picture tour-material
    press_row $::vesk::objects::tree [row_of base]
    with_key ctrl {press_row $::vesk::objects::tree [row_of stem]}
    check "a click with Control adds" {[llength [vesk get_selected_objects]] == 2}
    open_tab palette
    set grid .main.right.tabs.palette.grid
    lassign [$grid coords e8] x y x1
    check "the colours can be hit" {$x1 - $x > 20}
    press $grid [expr {int($x) + 8}] [expr {int($y) + 8}]
    # 5. A light, and everything in one group.
    press .opt.modes.tree
    tool light
    click xy 1 {*}[spot 0 1.3]
    tool move
    at xy {*}[spot 1.5 -1]
    key ctrl+a
    key ctrl+g
    open_tab object
    enter .main.right.tabs.object.name "table lamp"
    # 6. Look at it, and save.
    at xy {*}[spot 1.5 -1]
    key shift+f
    drag xyz 1 40 200 60 30
    key Escape
    page_picture tour-done
    at xy {*}[spot 1.5 -1]
    answer_file [work lamp.vesk]
    key ctrl+s
    look_at_the_saved_file
}

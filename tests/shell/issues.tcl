# issues.tcl --
#   The Issues tab with real mouse and keys: it follows the model, selects what a line names, mends.

source [file join [file dirname [info script]] support.tcl]

proc title {} {return [.main.right.tabs tab .main.right.tabs.issues -text]}
proc choose_menu {entry} {
    ::test::key {*}[lrepeat $entry Down]
    ::test::key Return
}

::test::run {
    set tab .main.right.tabs.issues
    vesk clear_all
    vesk create box 2 0 0 0 1 1 1
    ::test::wait_until {$::vesk::issues::checked_at > 0}
    ::test::check "a closed box has no problems" {[title] eq "Issues"}
    vesk create rect 0 3 0 0 4 1 0
    ::test::wait_until {[title] eq "Issues 4"}
    ::test::check "four open edges are found when the model rests" {[title] eq "Issues 4"}

    ::test::at xy 200 200
    ::test::key F7
    ::test::check "F7 shows the tab" {[winfo viewable $tab.list]}
    set list $tab.list
    ::test::check "a row for each edge, below its kind" {
        [$list children {}] eq "open_edge" && [llength [$list children open_edge]] == 4
    }
    ::test::press_row $list [lindex [$list children open_edge] 0]
    ::test::check "a click selects the edge and fits it" {
        [vesk selection_get_num_vertices] == 2 && [lindex [vesk get_app_mode] 0] eq "vertex"
        && [lindex [vesk get_selection_centre] 0] >= 3
    }
    ::test::check "and tells what it is" {
        [string match "edge * belongs to surface * only" $::vesk::status::message]
    }
    ::test::shot issues

    # Two vertices at one place.
    vesk clear_all
    vesk set_select_mode object
    vesk create rect 0 0 0 0 1 1 0
    set first [vesk get_selected_objects]
    vesk create rect 0 1 0 0 2 1 0
    vesk objects_select "$first [vesk get_selected_objects]"
    vesk object_merge
    ::test::wait_until {[$list exists duplicate_vertex]}
    ::test::check "two corners lie at the same places" {
        [$list exists duplicate_vertex] && [llength [$list children duplicate_vertex]] == 2
    }
    set before $::undo_count
    ::test::press_row $list [lindex [$list children duplicate_vertex] 0] 3
    choose_menu 2
    ::test::check "the menu mends one" {
        [dict get [vesk check_counts] duplicate_vertex] == 1 && $::undo_count == $before + 1
    }
    vesk undo
    ::test::wait_until {[llength [$list children duplicate_vertex]] == 2}
    ::test::press_row $list duplicate_vertex 3
    choose_menu 1
    ::test::check "or all of the kind, in one step" {
        [dict get [vesk check_counts] duplicate_vertex] == 0 && ![$list exists duplicate_vertex]
        && [vesk undo_name] eq "fix duplicate vertex"
    }
    vesk undo
    ::test::check "which undo takes back" {[dict get [vesk check_counts] duplicate_vertex] == 2}

    # An export tells about them.
    ::test::wait_until {[$list exists duplicate_vertex]}
    ::vesk::issues::exporting [list display_message "written"]
    ::test::check "an export is told what the file has" {
        [string match "written - the model has * problems, see Issues" $::vesk::status::message]
    }

    # A terrain with thousands of open edges: the first thousand are listed, all are counted.
    vesk clear_all
    set ::prefs_meshx 60
    set ::prefs_meshy 60
    vesk create mesh 0 0 0 0 1 1 0
    vesk set_select_mode object
    vesk select_all
    vesk object_explode
    ::vesk::issues::check 1
    set count [dict get [vesk check_counts] open_edge]
    ::test::press_row $list open_edge
    ::test::key Right
    ::test::check "a thousand rows and how many more" {
        $count > 1000 && [llength [$list children open_edge]] == 1001
        && [string match "and * more" [$list item [lindex [$list children open_edge] end] -text]]
        && [string match "Issues *k" [title]]
    }
    ::test::key Escape
    ::test::check "Escape goes back to the views" {[winfo class [focus]] eq "Togl"}
    ::test::check "no script failed" {$::test::errors eq {}}
}

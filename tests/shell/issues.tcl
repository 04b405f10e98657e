# issues.tcl --
#   The Issues tab with real mouse and keys: it follows the model, selects what a line names, mends.

source [file join [file dirname [info script]] support.tcl]

proc title {} {return [.main.right.tabs tab .main.right.tabs.issues -text]}
proc doubles {} {return [dict get [vesk check_counts] duplicate_vertex]}

run {
    set tab .main.right.tabs.issues
    vesk clear_all
    vesk create box 2 0 0 0 1 1 1
    wait_until {$::vesk::issues::checked_at > 0}
    check "a closed box has no problems" {[title] eq "Issues"}
    vesk create rect 0 3 0 0 4 1 0
    wait_until {[dict get $::vesk::issues::counts open_edge] == 4}
    check "the border of a sheet is a note" {[title] eq "Issues"}

    at xy 200 200
    key F7
    check "F7 shows the tab" {[winfo viewable $tab.list]}
    set list $tab.list
    check "which is folded and says so" {
        [$list children {}] eq "open_edge" && ![$list item open_edge -open]
        && [$list item open_edge -text] eq " Open edges (meant)"
    }
    $list focus open_edge
    focus $list
    key Right
    check "a row for each edge, below its kind" {[llength [$list children open_edge]] == 4}
    check "that it is open is kept" {[dict get [::vesk::settings::get issues_open] open_edge]}
    press_row $list [lindex [$list children open_edge] 0]
    check "a click selects the edge and fits it" {
        [vesk selection_get_num_edges] == 1 && [mode] eq "edge" && [lindex [centre] 0] >= 3
    }
    check "and tells what it is" {
        [string match "edge * belongs to surface * only" [status]]
    }
    shot issues

    # Two vertices at one place.
    vesk clear_all
    vesk set_select_mode object
    vesk create rect 0 0 0 0 1 1 0
    set first [vesk get_selected_objects]
    vesk create rect 0 1 0 0 2 1 0
    vesk objects_select "$first [vesk get_selected_objects]"
    vesk object_merge
    check "two corners lie at the same places: a sheet that was torn" {
        [llength [$list children duplicate_vertex]] == 2 && [title] eq "Issues 4"
    }
    press_row $list duplicate_vertex
    check "the button tells what it mends" {
        [$tab.foot.fix cget -text] eq "Fix all duplicate vertices"
    }
    set before $::undo_count
    press_row $list [lindex [$list children duplicate_vertex] 0] 3
    pick 2
    check "the menu mends one" {
        [doubles] == 1 && $::undo_count == $before + 1
    }
    vesk undo
    wait_until {[llength [$list children duplicate_vertex]] == 2}
    press_row $list duplicate_vertex 3
    pick 1
    check "or all of the kind, in one step" {
        [doubles] == 0 && ![$list exists duplicate_vertex]
        && [vesk undo_name] eq "fix duplicate vertex"
    }
    vesk undo
    check "which undo takes back" {[doubles] == 2}

    # An export tells about them.
    wait_until {[$list exists duplicate_vertex]}
    ::vesk::issues::exporting [list display_message "written"]
    check "an export is told what the file has" {
        [string match "written - the model has * problems, see Issues" [status]]
    }

    # A terrain with thousands of open edges: the first thousand are listed, all are counted.
    vesk clear_all
    set ::prefs_meshx 60
    set ::prefs_meshy 60
    vesk create mesh 0 0 0 0 1 1 0
    vesk set_select_mode object
    vesk select_all
    vesk object_explode
    ::vesk::issues::check
    set count [dict get [vesk check_counts] open_edge]
    wait_until {[$list exists open_edge]}
    press_row $list open_edge
    key Right
    check "a thousand rows and how many more" {
        $count > 1000 && [llength [$list children open_edge]] == 1001
        && [string match "and * more" [$list item [lindex [$list children open_edge] end] -text]]
        && [title] eq "Issues"
    }
    key Escape
    check "Escape goes back to the views" {[winfo class [focus]] eq "Togl"}

    # A terrain that a worker looks at: nobody waits, and its findings are those that a script gets.
    set tabs .main.right.tabs
    $tabs select $tab
    vesk clear_all
    set ::prefs_meshx 180
    set ::prefs_meshy 180
    vesk create mesh 0 0 0 0 1 1 0
    vesk select_all
    vesk duplicate
    vesk select_all
    vesk object_merge
    wait_until {$::vesk::issues::checking}
    check "the title has no number meanwhile" {[title] eq "Issues"}
    check "and the tab says so" {[$tab.foot.age cget -text] eq "Checking..."}
    wait_until {!$::vesk::issues::checking}
    check "what the worker found is shown" {
        [dict get $::vesk::issues::counts open_edge] == 2 * 4 * 180
        && [$list exists open_edge] && $::vesk::issues::counts eq [vesk check_counts]
    }
    # Taken away and put back at once, and left while it is at it.
    vesk delete
    vesk undo
    vesk move 1 0 0
    wait_until {$::vesk::issues::checking}
    vesk clear_all
    vesk create box 2 0 0 0 1 1 1
    wait_until {!$::vesk::issues::checking && [title] eq "Issues"}
    check "a model that went meanwhile leaves nothing" {
        [tcl::mathop::+ {*}[dict values $::vesk::issues::counts]] == 0
    }
    # The program ends while a worker is at it.
    vesk create mesh 0 0 0 0 1 1 0
    wait_until {$::vesk::issues::checking}
}

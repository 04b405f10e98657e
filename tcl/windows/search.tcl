# search.tcl --
#   The command search (F3): names, menu paths, keys and help of the menus, the tools of the column, the
#   words that modellers use, and every other command of the executable. Return runs; commands with arguments show their
#   fields.

::vesk::need lib synonyms

namespace eval ::vesk::search {
    variable text ""
    variable entries {}         ;# {label trail key help row lowered synonyms}
    variable hits {}            ;# places in entries, as listed
}

# collect --
#   Collects the entries from the menu table, the tools and from "list".
proc ::vesk::search::collect {} {
    variable entries {}
    set named {}
    foreach pair [concat [::vesk::menus::all] [tools]] {
        lassign $pair trail row
        lassign $row kind label target key needs help
        set label [string map {& {}} $label]
        set command [::vesk::menus::row_command $row]
        dict set named $command 1
        set words [::vesk::menus::synonyms_of $row]
        lappend entries [list $label $trail $key $help $row \
            [string tolower "$label $trail $help $command $words"] $words]
    }
    foreach name [::vesk::console::command_names] {
        if {[dict exists $named $name]} {continue}
        lassign [vesk command_info $name] count template usage help
        set row [list run $name [list $name] "" "" $help]
        if {[string is integer -strict $count] && $count > 0} {
            set row [list ask $name [concat [list $name] [fields $template $usage]] "" "" $help]
        }
        lappend entries [list $name Command "" [expr {$help eq "" ? $usage : $help}] $row \
            [string tolower "$name $help"] {}]
    }
}

# tools --
#   Rows as of menus for the tools that no menu has.
proc ::vesk::search::tools {} {
    set shown [lmap pair [::vesk::menus::all] {lindex $pair 1 2}]
    set rows {}
    foreach words $::vesk::tools::rows {
        set target [list ::vesk::tools::choose [lindex $words 0]]
        if {$target in $shown} {continue}
        lassign [lrange $words 4 6] key label help
        lappend rows [list "Tool column" [list call $label $target $key "" $help]]
    }
    return $rows
}

# fields --
#   Fields of an options box from a command's template; the usage text names them.
proc ::vesk::search::fields {template usage} {
    set names [regexp -all -inline {<[^>]*>} $usage]
    set result {}
    set place 0
    foreach letter [split $template {}] {
        set name [string trim [lindex $names $place] <>]
        regsub {^(float|int|string|double)[ -]+} $name {} name
        incr place
        if {$name eq ""} {set name "Argument $place"}
        lappend result [list $name [dict get {d int f number s text} $letter] \
            [expr {$letter eq "s" ? "" : 0}]]
    }
    return $result
}

proc ::vesk::search::open {} {
    variable text ""
    set w .search
    destroy $w
    collect
    build $w
    find
    update idletasks
    set bar .opt.search
    set x [expr {[winfo rootx $bar] + [winfo width $bar] - [winfo reqwidth $w]}]
    wm geometry $w +[expr {max([winfo rootx .], $x)}]+[winfo rooty $bar]
    wm deiconify $w
    raise $w
    tkwait visibility $w
    catch {grab set $w}
    focus -force $w.in.top.text
    bind $w <Button-1> {::vesk::search::click_away %X %Y}
}

# build --
#   The window, still hidden: the field, the list, a line of help.
proc ::vesk::search::build {w} {
    toplevel $w -class Search -borderwidth 0
    wm withdraw $w
    wm overrideredirect $w 1
    ::vesk::theme::on $w edge
    ttk::frame $w.in -style Field.TFrame
    pack $w.in -fill both -expand 1 -padx 1 -pady 1
    ttk::frame $w.in.top -style Panel.TFrame -padding [::vesk::theme::px 8]
    ttk::label $w.in.top.icon -style Panel.TLabel -image [::vesk::icons::get search dim]
    ::vesk::fields::bare_entry $w.in.top.text ::vesk::search::text
    $w.in.top.text configure -background [::vesk::theme::colour panel]
    pack $w.in.top.icon -side left -padx [::vesk::theme::pad 4 8]
    pack $w.in.top.text -side left -fill x -expand 1
    ttk::treeview $w.in.list -columns {trail key} -show tree -selectmode browse -height 10
    $w.in.list column #0 -width [::vesk::theme::px 230]
    $w.in.list column trail -width [::vesk::theme::px 200]
    $w.in.list column key -width [::vesk::theme::px 90] -anchor e
    $w.in.list tag configure off -foreground [::vesk::theme::colour off]
    ttk::label $w.in.help -style Field.Dim.TLabel -anchor w -padding [::vesk::theme::px 10] \
        -width 10
    pack $w.in.top $w.in.list $w.in.help -fill x
    ::vesk::fields::on_keys $w.in.top.text {
        Return ::vesk::search::run Down {::vesk::search::step 1} Up {::vesk::search::step -1}
    }
    bind $w <Escape> {::vesk::search::close}
    bind $w.in.list <ButtonRelease-1> {::vesk::search::run}
    bind $w.in.list <<TreeviewSelect>> ::vesk::search::show_help
    trace add variable ::vesk::search::text write ::vesk::search::find_later
    bind $w.in.list <Destroy> {
        trace remove variable ::vesk::search::text write ::vesk::search::find_later
    }
}

# click_away --
#   A click outside closes; the grab brings it here.
proc ::vesk::search::click_away {x y} {
    if {[winfo exists .search] && [winfo containing $x $y] ne ""
            && [winfo toplevel [winfo containing $x $y]] eq ".search"} {return}
    close
}

proc ::vesk::search::close {} {
    if {[winfo exists .search]} {
        grab release .search
        destroy .search
    }
    # Without a window manager's help the keyboard would belong to no window.
    focus -force .
    ::vesk::view::focus_last
}

proc ::vesk::search::find_later {args} {
    after cancel ::vesk::search::find
    after 30 ::vesk::search::find
}

# rank --
#   How far an entry is from the typed words, 0 the nearest; "" when it lacks one of them.
proc ::vesk::search::rank {entry typed} {
    lassign $entry label trail key help row lowered synonyms
    if {![::vesk::fields::has_words $lowered $typed]} {return ""}
    set typed [string tolower [string trim $typed]]
    set label [string tolower $label]
    # All of it as one name.
    if {[string trimright $label .] eq $typed} {return 0}
    if {$typed in $synonyms || [string match "$typed *" $label]} {return 1}
    set sum 2
    foreach word [regexp -all -inline {\S+} $typed] {
        incr sum [word_rank $word $label [string tolower [lindex [split $trail >] end]] $synonyms]
    }
    return $sum
}

# word_rank --
#   The same for one word: in the label, among the synonyms, in the name of the menu, elsewhere.
proc ::vesk::search::word_rank {word label menu synonyms} {
    set in_label [regexp -all -inline {[[:alnum:]]+} $label]
    set in_synonyms [regexp -all -inline {[[:alnum:]]+} $synonyms]
    set in_menu [regexp -all -inline {[[:alnum:]]+} $menu]
    set rank 0
    foreach {words pattern} [list $in_label $word $in_synonyms $word $in_menu $word \
            $in_label $word* $in_synonyms $word* $in_menu $word* $in_label *$word*] {
        incr rank 2
        if {[lsearch -glob $words $pattern] >= 0} {return $rank}
    }
    return 20
}

# ranked --
#   The places of the entries that hold every typed word, the nearest first.
proc ::vesk::search::ranked {typed} {
    variable entries
    set found {}
    set place -1
    foreach entry $entries {
        incr place
        set rank [rank $entry $typed]
        if {$rank eq ""} {continue}
        # Of the same rank the shorter name, tools behind the menus; all of them in the order of the
        # menus.
        if {$typed ne ""} {
            set rank [expr {100 * $rank + [string length [lindex $entry 0]]
                + 50 * ([lindex $entry 1] eq "Tool column")}]
        }
        lappend found [list $rank $place]
    }
    return [lmap pair [lsort -integer -index 0 $found] {lindex $pair 1}]
}

# find --
#   Lists what was found.
proc ::vesk::search::find {} {
    variable text
    variable entries
    variable hits {}
    set list .search.in.list
    if {![winfo exists $list]} {return}
    $list delete [$list children {}]
    set state [::vesk::menus::now]
    foreach place [lrange [ranked $text] 0 39] {
        lassign [lindex $entries $place] label trail key help row
        set tags [expr {[::vesk::menus::possible $row $state] ? "" : "off"}]
        lappend hits $place
        $list insert {} end -id $place -text $label -values [list $trail "$key  "] -tags $tags
    }
    if {[llength $hits] > 0} {$list selection set [list [lindex $hits 0]]}
    show_help
}

proc ::vesk::search::show_help {} {
    variable entries
    if {![winfo exists .search.in.list]} {return}
    set place [lindex [.search.in.list selection] 0]
    set text "Nothing found."
    if {$place ne ""} {
        lassign [lindex $entries $place] label trail key text row
        set why [::vesk::menus::why_not $row [::vesk::menus::now]]
        if {$why ne ""} {append text " \u2013 $why"}
    }
    .search.in.help configure -text $text
}

proc ::vesk::search::step {step} {
    variable hits
    set list .search.in.list
    set now [lsearch -exact $hits [lindex [$list selection] 0]]
    set next [expr {min([llength $hits] - 1, max(0, $now + $step))}]
    if {[llength $hits] == 0} {return}
    $list selection set [list [lindex $hits $next]]
    $list see [lindex $hits $next]
}

proc ::vesk::search::run {} {
    variable entries
    set place [lindex [.search.in.list selection] 0]
    if {$place eq ""} {return}
    set row [lindex $entries $place 4]
    close
    set why [::vesk::menus::why_not $row [::vesk::menus::now]]
    if {$why ne ""} {
        display_message "[::vesk::menus::plain [lindex $entries $place 0]] - $why"
        return
    }
    ::vesk::menus::invoke $row
}

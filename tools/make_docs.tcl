#!/usr/bin/env tclsh
# make_docs.tcl --
#   Makes the pages that Help opens from the Markdown texts of docs/.
#   usage: make_docs.tcl OUTPUT_FOLDER cmark-gfm PAGE.md ...

set folder [file join [file dirname [file dirname [file normalize [info script]]]] docs]
set pages [lassign $argv out cmark]

source [file join [file dirname [file normalize [info script]]] text_files.tcl]

# anchor --
#   The name that links to a heading use: small letters and digits, blanks become hyphens.
proc anchor {heading} {
    regsub -all {<[^>]*>|&[a-z]+;} $heading "" heading
    regsub -all {[^a-z0-9 _-]} [string tolower $heading] "" heading
    return [string map {" " -} [string trim $heading]]
}

# with_anchors --
#   Gives each heading its name.
proc with_anchors {body} {
    set done ""
    while {[regexp -indices {<(h[1-4])>([^\n]*)</h[1-4]>} $body all tag text]} {
        set start [lindex $all 0]
        append done [string range $body 0 $start-1]
        set name [string range $body {*}$tag]
        set heading [string range $body {*}$text]
        append done "<$name id=\"[anchor $heading]\">$heading</$name>"
        set body [string range $body [lindex $all 1]+1 end]
    }
    return $done$body
}

# page_title --
proc page_title {text} {
    return [expr {[regexp -line {^# (.+)$} $text -> title] ? $title : "VESK"}]
}

# escaped --
proc escaped {text} {return [string map {& &amp; < &lt; > &gt; \" &quot;} $text]}

set titles [dict create]
foreach page $pages {
    dict set titles [file rootname $page] [page_title [read_text [file join $folder $page]]]
}
set template [read_text [file join $folder page.html]]
file mkdir $out
foreach page $pages {
    set root [file rootname $page]
    set links ""
    dict for {other title} $titles {
        set here [expr {$other eq $root ? { class="here"} : ""}]
        append links "<a$here href=\"$other.html\">[escaped $title]</a>\n"
    }
    set body [exec $cmark -e table -e autolink --unsafe [file join $folder $page]]
    # Pages link to each other; what they name of the sources is not beside them.
    regsub -all {href="([a-z-]+)\.md} $body {href="\1.html} body
    regsub -all {<a href="\.\./[^"]*">([^\n]*?)</a>} $body {\1} body
    write_text [file join $out $root.html] [string map [list \
        @title@ [escaped [dict get $titles $root]] @links@ $links @body@ [with_anchors $body]] \
        $template]
}
file delete -force [file join $out images]
file copy [file join $folder images] [file join $out images]

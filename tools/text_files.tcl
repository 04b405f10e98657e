# text_files.tcl --
#   Whole texts of the project's files, for the tools.

proc read_text {file} {
    set channel [open $file]
    fconfigure $channel -encoding utf-8
    set text [read $channel]
    close $channel
    return $text
}

proc write_text {file text} {
    set channel [open $file w]
    fconfigure $channel -encoding utf-8
    puts -nonewline $channel $text
    close $channel
}

# cmdsocket.tcl --
#   Commands from other programs of this computer, while the preference `allow_socket_commands` is
#   on: one Tcl script a line on the port `tcl_socket_port`; the answer is one line, "ok RESULT" or
#   "error TEXT". Listens on 127.0.0.1 only; a badge in the status line tells that it does.

namespace eval ::vesk::cmdsocket {
    variable server ""
    variable clients {}
}

# follow --
#   Opens or closes the port as the preferences say.
proc ::vesk::cmdsocket::follow {args} {
    variable server
    close_all
    if {$::prefs_allow_socket_commands} {
        if {[catch {socket -server ::vesk::cmdsocket::accept -myaddr 127.0.0.1 \
                $::prefs_tcl_socket_port} server]} {
            display_message "no commands from port $::prefs_tcl_socket_port: $server"
            set server ""
        }
    }
    ::vesk::status::show_badge socket [expr {$server ne ""}] $::prefs_tcl_socket_port
}

proc ::vesk::cmdsocket::close_all {} {
    variable server
    variable clients
    foreach channel [concat $server $clients] {catch {close $channel}}
    set server ""
    set clients {}
}

proc ::vesk::cmdsocket::accept {channel address port} {
    variable clients
    if {$address ne "127.0.0.1"} {
        close $channel
        return
    }
    lappend clients $channel
    fconfigure $channel -blocking 0 -buffering line -encoding utf-8
    fileevent $channel readable [list ::vesk::cmdsocket::readable $channel]
}

proc ::vesk::cmdsocket::readable {channel} {
    variable clients
    if {[catch {gets $channel line} count] || ($count < 0 && [eof $channel])} {
        catch {close $channel}
        set clients [lsearch -all -inline -not -exact $clients $channel]
        return
    }
    if {$count <= 0} {return}
    ::vesk::console::say $line command
    set failed [catch {uplevel #0 $line} result]
    if {$failed} {::vesk::console::say $result error}
    ::vesk::ops::request
    catch {
        puts $channel "[expr {$failed ? "error" : "ok"}] [string map {\n \\n} $result]"
    }
}

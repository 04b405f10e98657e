# cmdsocket.tcl --
#   Commands from other programs of this computer, while the preference `allow_socket_commands` is
#   on: one Tcl script a line on the port `tcl_socket_port`; the answer is one line, "ok RESULT" or
#   "error TEXT". Listens on 127.0.0.1 only; a badge in the status line tells that it does. The first
#   line has to be the secret that stands in the file command-port of the state folder, which only
#   the user can read: other users reach the port, too, and so does every page in a browser.

namespace eval ::vesk::cmdsocket {
    variable server ""
    variable clients {}
    variable trusted {}            ;# those that gave the secret
    variable secret ""
}

# secret_file --
#   Where the secret stands while the port is open.
proc ::vesk::cmdsocket::secret_file {} {
    set folder [file join ~ .local state]
    if {[info exists ::env(XDG_STATE_HOME)] && $::env(XDG_STATE_HOME) ne ""} {
        set folder $::env(XDG_STATE_HOME)
    }
    return [file join [file normalize $folder] vesk command-port]
}

# make_secret --
#   Writes a new one; an error where that is not possible.
proc ::vesk::cmdsocket::make_secret {} {
    variable secret
    set random [open /dev/urandom rb]
    set secret [binary encode hex [read $random 16]]
    close $random
    set name [secret_file]
    file mkdir [file dirname $name]
    # Not opened where another user may have put a file or a link.
    file delete $name
    set file [open $name {WRONLY CREAT EXCL} 0600]
    puts $file $secret
    close $file
}

# follow --
#   Opens or closes the port as the preferences say.
proc ::vesk::cmdsocket::follow {args} {
    variable server
    close_all
    if {$::prefs_allow_socket_commands} {
        if {[catch {
            make_secret
            set server [socket -server ::vesk::cmdsocket::accept -myaddr 127.0.0.1 \
                $::prefs_tcl_socket_port]
        } reason]} {
            display_message "no commands from port $::prefs_tcl_socket_port: $reason"
        }
    }
    ::vesk::status::show_badge socket [expr {$server ne ""}] $::prefs_tcl_socket_port
}

proc ::vesk::cmdsocket::close_all {} {
    variable server
    variable clients
    variable trusted {}
    foreach channel [concat $server $clients] {catch {close $channel}}
    if {$server ne ""} {catch {file delete [secret_file]}}
    set server ""
    set clients {}
}

proc ::vesk::cmdsocket::hang_up {channel} {
    variable clients
    variable trusted
    catch {close $channel}
    set clients [lsearch -all -inline -not -exact $clients $channel]
    set trusted [lsearch -all -inline -not -exact $trusted $channel]
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
    variable trusted
    variable secret
    if {[catch {gets $channel line} count] || ($count < 0 && [eof $channel])} {
        hang_up $channel
        return
    }
    if {$channel ni $trusted} {
        if {$line eq $secret} {
            lappend trusted $channel
            catch {puts $channel "ok"}
        } elseif {$count >= 0 || [chan pending input $channel] > 200} {
            hang_up $channel
        }
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

# Writes model files: materials, nested objects and the shapes they are made of. Used by the
# scripts that make the example models; run by tclsh, without Tk.
#
#   scene::material oak {0.7 0.5 0.3} -spec 0.2 -shi 20
#   scene::object group "desk" {-loc {0 0 1}} {
#       scene::object poly "top" {} { scene::box oak -1 0.9 -0.5  1 1 0.5 }
#   }
#   scene::write desk.vesk
#
# The body of an object adds its shapes and its children, in any order. Shapes are given in the
# object's own frame; the frame is placed in its parent by -loc and -turn. A polygon shows the side
# from which its corners run counter-clockwise, so the normals of the solids here point outwards.
# The reader gives a vertex the sum of the normals around it; a crease in a smooth shape therefore
# needs vertices of its own on each side, which every shape below makes where it has an edge.

namespace eval scene {
    variable materials {}
    variable index
    variable stack {}
    variable kids {}
    variable mesh
    array set index {}
    array set mesh {vertices {} count 0 surfaces {} num_surfaces 0}

    variable SMOOTH 0x10
    variable TWO_SIDED 0x20
    variable CLOSED_LINE 1
    variable LINE 2
    variable PI 3.14159265358979
}

# number --
#   A number as the file writes it: six digits, no negative zero and no rounding rests.
proc scene::number {x} {
    if {abs($x) < 1e-7} {return 0}
    return [format %g $x]
}

proc scene::quoted {text} {
    return \"[string map {\\ \\\\ \" \\\"} $text]\"
}

# material --
#   Adds a material. Options: -amb, -spec and -emis take one value (a share of the diffuse colour
#   for -amb and -emis, a grey for -spec) or a colour; -shi 0 to 128, -trans 0 (opaque) to 1.
proc scene::material {name rgb args} {
    variable materials
    variable index
    array set o {-amb 0.35 -spec 0.1 -emis 0 -shi 10 -trans 0}
    array set o $args
    foreach {option by} [list -amb $rgb -emis $rgb -spec {1 1 1}] {
        if {[llength $o($option)] == 3} continue
        set share $o($option)
        set o($option) [lmap c $by {number [expr {$c * $share}]}]
    }
    set index($name) [llength $materials]
    lappend materials "MATERIAL [quoted $name] rgb $rgb  amb $o(-amb)  emis $o(-emis) \
spec $o(-spec)  shi $o(-shi)  trans $o(-trans)"
}

# rotation --
#   The 3 x 3 matrix, row by row, of turns made one after the other: {x 90 y 30}, degrees, each
#   counter-clockwise for who looks from the axis's positive end. Points are row vectors.
proc scene::rotation {turns} {
    variable PI
    set m {1 0 0  0 1 0  0 0 1}
    foreach {axis degrees} $turns {
        set c [expr {cos($degrees * $PI / 180)}]
        set s [expr {sin($degrees * $PI / 180)}]
        set n [expr {-$s}]
        set turn [dict get [list x [list 1 0 0  0 $c $s  0 $n $c] \
            y [list $c 0 $n  0 1 0  $s 0 $c] z [list $c $s 0  $n $c 0  0 0 1]] $axis]
        set product {}
        for {set row 0} {$row < 9} {incr row 3} {
            for {set column 0} {$column < 3} {incr column} {
                set sum 0.0
                for {set k 0} {$k < 3} {incr k} {
                    set sum [expr {$sum + [lindex $m [expr {$row + $k}]] *
                        [lindex $turn [expr {3 * $k + $column}]]}]
                }
                lappend product $sum
            }
        }
        set m $product
    }
    return $m
}

# object --
#   Adds an object to the one whose body is running.
#   type     world, group, poly or light
#   options  -loc {x y z}, -turn {axis degrees ...}, -url text, -data text
#   body     script in the caller's scope: shapes and children
proc scene::object {type name options body} {
    variable mesh
    variable kids
    variable stack
    lappend stack [array get mesh] $kids
    array set mesh {vertices {} count 0 surfaces {} num_surfaces 0}
    set kids {}
    uplevel 1 $body

    set text "OBJECT $type\n"
    if {$name ne ""} {append text "name [quoted $name]\n"}
    if {[dict exists $options -loc]} {
        append text "loc [lmap x [dict get $options -loc] {number $x}]\n"
    }
    if {[dict exists $options -turn]} {
        append text "rot [lmap x [rotation [dict get $options -turn]] {number $x}]\n"
    }
    if {[dict exists $options -url]} {append text "url \"[dict get $options -url]\"\n"}
    if {[dict exists $options -data]} {
        set data [encoding convertto utf-8 [dict get $options -data]]
        append text "data [string length $data]\n$data\n"
    }
    if {$mesh(count) > 0} {append text "numvert $mesh(count)\n[join $mesh(vertices) \n]\n"}
    if {$mesh(num_surfaces) > 0} {
        append text "numsurf $mesh(num_surfaces)\n[join $mesh(surfaces) \n]\n"
    }
    append text "kids [llength $kids]\n[join $kids {}]"
    set kids [lindex $stack end]
    array set mesh [lindex $stack end-1]
    set stack [lrange $stack 0 end-2]
    lappend kids $text
}

# write --
#   Writes the objects made so far, below one world, and starts afresh.
proc scene::write {file} {
    variable materials
    variable kids
    object world "world" {} [list set ::scene::kids $kids]
    set out [open $file w]
    fconfigure $out -translation binary
    puts -nonewline $out "VESKb\n[join $materials \n]\n[lindex $kids end]"
    close $out
    set materials {}
    set kids {}
}

# ---- vertices and surfaces ----

# vertex -- adds a vertex to the current object; returns its index.
proc scene::vertex {x y z} {
    variable mesh
    lappend mesh(vertices) "[number $x] [number $y] [number $z]"
    incr mesh(count)
    return [expr {$mesh(count) - 1}]
}

# surface --
#   Adds a surface over vertices of the current object.
#   corners  vertex indices; textures: a list of u v pairs of the same length, or empty
proc scene::surface {material flags corners {textures {}}} {
    variable mesh
    variable index
    if {[llength $corners] == 4 && [bent $corners]} {
        foreach three {{0 1 2} {0 2 3}} {
            surface $material $flags [lmap i $three {lindex $corners $i}] \
                [lmap i [expr {$textures eq {} ? {} : $three}] {lindex $textures $i}]
        }
        return
    }
    set text "SURF [format 0x%X $flags]\nmat $index($material)\nrefs [llength $corners]"
    foreach corner $corners uv $textures {
        if {$uv eq ""} {set uv {0 0}}
        append text "\n$corner [number [lindex $uv 0]] [number [lindex $uv 1]]"
    }
    lappend mesh(surfaces) $text
    incr mesh(num_surfaces)
}

# bent --
#   Whether four vertices lie in no plane; such a surface is written as two triangles.
proc scene::bent {corners} {
    variable mesh
    lassign [lmap corner $corners {lindex $mesh(vertices) $corner}] a b c d
    foreach {name from to} [list ab $a $b ac $a $c ad $a $d bd $b $d] {
        set $name [lmap p $from q $to {expr {$q - $p}}]
    }
    set normal [cross $ac $bd]
    set size [expr {sqrt(max([dot $ac $ac], [dot $bd $bd]))}]
    set length [expr {sqrt([dot $normal $normal])}]
    return [expr {$length > 0 && max(abs([dot $ab $normal]), abs([dot $ad $normal]))
        > 2e-5 * $size * $length}]
}

# polygon, line -- one surface with vertices of its own; points: list of {x y z}.
proc scene::polygon {material points {flags 0}} {
    surface $material $flags [lmap p $points {vertex {*}$p}]
}
proc scene::line {material points {closed 0}} {
    variable CLOSED_LINE
    variable LINE
    polygon $material $points [expr {$closed ? $CLOSED_LINE : $LINE}]
}

# ---- solids ----

# box --
#   A box between two corners, its edges cut by `bevel`.
proc scene::box {material x0 y0 z0 x1 y1 z1 {bevel 0}} {
    foreach {c h} {cx hx cy hy cz hz} {a b} [list $x0 $x1 $y0 $y1 $z0 $z1] {
        set $c [expr {($a + $b) / 2.0}]
        set $h [expr {abs($b - $a) / 2.0}]
    }
    # v(sx,sy,sz,axis): the corner with these signs, on the face that looks along `axis`
    foreach sx {-1 1} {
        foreach sy {-1 1} {
            foreach sz {-1 1} {
                foreach axis {0 1 2} {
                    if {$bevel == 0 && $axis > 0} {
                        set v($sx,$sy,$sz,$axis) $v($sx,$sy,$sz,0)
                        continue
                    }
                    set x [expr {$cx + $sx * ($hx - ($axis != 0) * $bevel)}]
                    set y [expr {$cy + $sy * ($hy - ($axis != 1) * $bevel)}]
                    set z [expr {$cz + $sz * ($hz - ($axis != 2) * $bevel)}]
                    set v($sx,$sy,$sz,$axis) [vertex $x $y $z]
                }
            }
        }
    }
    foreach s {-1 1} {
        box_face $material $s [list $v($s,-1,-1,0) $v($s,1,-1,0) $v($s,1,1,0) $v($s,-1,1,0)]
        box_face $material $s [list $v(-1,$s,-1,1) $v(-1,$s,1,1) $v(1,$s,1,1) $v(1,$s,-1,1)]
        box_face $material $s [list $v(-1,-1,$s,2) $v(1,-1,$s,2) $v(1,1,$s,2) $v(-1,1,$s,2)]
    }
    if {$bevel == 0} return
    foreach s {-1 1} {
        foreach t {-1 1} {
            set sign [expr {$s * $t}]
            box_face $material $sign [list $v(-1,$s,$t,1) $v(-1,$s,$t,2) $v(1,$s,$t,2) \
                $v(1,$s,$t,1)]
            box_face $material $sign [list $v($s,-1,$t,2) $v($s,-1,$t,0) $v($s,1,$t,0) \
                $v($s,1,$t,2)]
            box_face $material $sign [list $v($s,$t,-1,0) $v($s,$t,-1,1) $v($s,$t,1,1) \
                $v($s,$t,1,0)]
            foreach r {-1 1} {
                box_face $material [expr {$s * $t * $r}] \
                    [list $v($s,$t,$r,0) $v($s,$t,$r,1) $v($s,$t,$r,2)]
            }
        }
    }
}

proc scene::box_face {material sign corners} {
    surface $material 0 [expr {$sign < 0 ? [lreverse $corners] : $corners}]
}

# lathe --
#   A smooth surface of revolution about the y axis. The profile is a list of {radius y}; run it
#   so that the solid lies on its left (bottom centre, out, up, in again). At a crease the point is
#   given twice with the word "edge" between. A profile that starts and ends on the axis gives a
#   closed solid.
proc scene::lathe {material profile {sides 24} {flags 0x10}} {
    variable PI
    set runs {}
    set run {}
    foreach point $profile {
        if {$point eq "edge"} {
            lappend runs $run
            set run {}
        } else {
            lappend run $point
        }
    }
    lappend runs $run
    foreach run $runs {
        set below {}
        set v 0
        foreach point $run {
            lassign $point radius y
            set ring {}
            if {$radius == 0} {
                set ring [lrepeat [expr {$sides + 1}] [vertex 0 $y 0]]
            } else {
                for {set j 0} {$j < $sides} {incr j} {
                    set a [expr {2 * $PI * $j / $sides}]
                    lappend ring [vertex [expr {$radius * cos($a)}] $y [expr {$radius * sin($a)}]]
                }
                lappend ring [lindex $ring 0]
            }
            if {$below ne ""} {
                join_rings $material $flags $below $ring \
                    [expr {($v - 1.0) / ([llength $run] - 1)}] \
                    [expr {double($v) / ([llength $run] - 1)}]
            }
            set below $ring
            incr v
        }
    }
}

# join_rings -- quads between two closed rings of vertices, triangles where one is a point.
proc scene::join_rings {material flags below above v0 v1} {
    set sides [expr {[llength $below] - 1}]
    for {set j 0} {$j < $sides} {incr j} {
        set k [expr {$j + 1}]
        set u0 [expr {double($j) / $sides}]
        set u1 [expr {double($k) / $sides}]
        set corners [list [lindex $below $j] [lindex $above $j] [lindex $above $k] \
            [lindex $below $k]]
        set textures [list [list $u0 $v0] [list $u0 $v1] [list $u1 $v1] [list $u1 $v0]]
        if {[lindex $corners 0] == [lindex $corners 3]} {
            set corners [lrange $corners 0 2]
            set textures [lrange $textures 0 2]
        } elseif {[lindex $corners 1] == [lindex $corners 2]} {
            set corners [lreplace $corners 2 2]
            set textures [lreplace $textures 2 2]
        }
        surface $material $flags $corners $textures
    }
}

# tube --
#   A round, smooth tube along a path of points, closed by flat ends.
#   radius  one value, or one for each point of the path
proc scene::tube {material path radius {sides 12}} {
    variable SMOOTH
    variable PI
    set count [llength $path]
    if {[llength $radius] == 1} {set radius [lrepeat $count $radius]}
    set n {}
    set rings {}
    for {set i 0} {$i < $count} {incr i} {
        set from [lindex $path [expr {max($i - 1, 0)}]]
        set to [lindex $path [expr {min($i + 1, $count - 1)}]]
        set d [unit [lmap a $from b $to {expr {$b - $a}}]]
        if {$n eq ""} {set n [expr {abs([lindex $d 1]) < 0.9 ? {0 1 0} : {1 0 0}}]}
        # the frame follows the path: what is left of the last normal across the new direction
        set along [dot $n $d]
        set n [unit [lmap a $n b $d {expr {$a - $along * $b}}]]
        set b [cross $n $d]
        set ring {}
        for {set j 0} {$j < $sides} {incr j} {
            set c [expr {[lindex $radius $i] * cos(2 * $PI * $j / $sides)}]
            set s [expr {[lindex $radius $i] * sin(2 * $PI * $j / $sides)}]
            lappend ring [lmap p [lindex $path $i] x $n y $b {expr {$p + $c * $x + $s * $y}}]
        }
        lappend rings $ring
    }
    set below {}
    set i 0
    foreach ring $rings {
        set above [lmap p $ring {vertex {*}$p}]
        lappend above [lindex $above 0]
        if {$below ne ""} {
            join_rings $material $SMOOTH $below $above [expr {($i - 1.0) / ($count - 1)}] \
                [expr {double($i) / ($count - 1)}]
        }
        set below $above
        incr i
    }
    polygon $material [lindex $rings 0]
    polygon $material [lreverse [lindex $rings end]]
}

# prism --
#   An outline in the x-z plane (counter-clockwise seen from above), raised from y0 to y1. With
#   `smooth` the sides are shaded round.
proc scene::prism {material outline y0 y1 {smooth 0}} {
    variable SMOOTH
    polygon $material [lmap p [lreverse $outline] {list [lindex $p 0] $y0 [lindex $p 1]}]
    polygon $material [lmap p $outline {list [lindex $p 0] $y1 [lindex $p 1]}]
    # The sides share their corners, whose normals flat ones do not use.
    set below [lmap p $outline {vertex [lindex $p 0] $y0 [lindex $p 1]}]
    set above [lmap p $outline {vertex [lindex $p 0] $y1 [lindex $p 1]}]
    for {set i 0} {$i < [llength $outline]} {incr i} {
        set k [expr {($i + 1) % [llength $outline]}]
        surface $material [expr {$smooth ? $SMOOTH : 0}] [list [lindex $below $i] \
            [lindex $below $k] [lindex $above $k] [lindex $above $i]]
    }
}

# rounded --
#   Outline of a rectangle about the origin with round corners, for prism.
proc scene::rounded {half_x half_z radius {steps 5}} {
    variable PI
    set outline {}
    foreach {sx sz start} {1 -1 0  -1 -1 90  -1 1 180  1 1 270} {
        for {set i 0} {$i <= $steps} {incr i} {
            set a [expr {($start + 90.0 * $i / $steps) * $PI / 180}]
            lappend outline [list [expr {$sx * ($half_x - $radius) + $radius * cos($a)}] \
                [expr {$sz * ($half_z - $radius) - $radius * sin($a)}]]
        }
    }
    return $outline
}

# circle -- points of a circle about `centre` in the plane of the unit vectors a and b.
proc scene::circle {centre a b radius {sides 24}} {
    variable PI
    set points {}
    for {set i 0} {$i < $sides} {incr i} {
        set c [expr {$radius * cos(2 * $PI * $i / $sides)}]
        set s [expr {$radius * sin(2 * $PI * $i / $sides)}]
        lappend points [lmap p $centre x $a y $b {expr {$p + $c * $x + $s * $y}}]
    }
    return $points
}

# curve --
#   Points of the cubic Bezier curve over four control points.
proc scene::curve {p0 p1 p2 p3 steps} {
    set points {}
    for {set i 0} {$i <= $steps} {incr i} {
        set t [expr {double($i) / $steps}]
        set s [expr {1 - $t}]
        lappend points [lmap a $p0 b $p1 c $p2 d $p3 {
            expr {$s * $s * $s * $a + 3 * $s * $s * $t * $b + 3 * $s * $t * $t * $c + $t * $t *
                $t * $d}
        }]
    }
    return $points
}

proc scene::dot {a b} {
    return [expr {[lindex $a 0] * [lindex $b 0] + [lindex $a 1] * [lindex $b 1] +
        [lindex $a 2] * [lindex $b 2]}]
}

proc scene::cross {a b} {
    lassign $a ax ay az
    lassign $b bx by bz
    return [list [expr {$ay * $bz - $az * $by}] [expr {$az * $bx - $ax * $bz}] \
        [expr {$ax * $by - $ay * $bx}]]
}

proc scene::unit {a} {
    set length [expr {sqrt([dot $a $a])}]
    return [lmap x $a {expr {$x / $length}}]
}

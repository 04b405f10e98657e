# Makes landscape.vesk, a model of about 50,000 vertices: an island with a lighthouse, woods and a
# boat. Heights come from a fixed noise, so every run writes the same file.
#   tclsh make_landscape.tcl landscape.vesk

source [file join [file dirname [info script]] scene.tcl]
foreach name {material object box lathe tube polygon line circle} {
    interp alias {} $name {} scene::$name
}

material "sea"         {0.25 0.43 0.54} -spec 0.45 -shi 40 -trans 0.2
material "sand"        {0.84 0.76 0.58} -spec 0
material "grass"       {0.45 0.58 0.32} -spec 0
material "meadow"      {0.58 0.65 0.36} -spec 0
material "rock"        {0.52 0.50 0.48} -spec 0.05
material "pine"        {0.20 0.37 0.26} -spec 0.02
material "trunk"       {0.38 0.28 0.20} -spec 0
material "white wall"  {0.93 0.92 0.88} -spec 0.1
material "red stripe"  {0.74 0.24 0.20} -spec 0.1
material "roof"        {0.45 0.25 0.20} -spec 0.05
material "lantern"     {1.00 0.92 0.65} -emis 0.8 -spec 0
material "dark metal"  {0.20 0.22 0.25} -spec 0.3 -shi 30
material "sail"        {0.95 0.93 0.86} -spec 0.02

set SIZE 10.0 ;# half the width of the square that is modelled
set CELLS 205 ;# squares along one side

# Noise of the whole numbers: a fixed table, blended smoothly between its points.
expr {srand(1849)}
for {set i 0} {$i < 4096} {incr i} {lappend TABLE [expr {rand() * 2 - 1}]}

proc noise {x y} {
    global TABLE
    set i [expr {int(floor($x))}]
    set j [expr {int(floor($y))}]
    set u [expr {$x - $i}]
    set v [expr {$y - $j}]
    set u [expr {$u * $u * (3 - 2 * $u)}]
    set v [expr {$v * $v * (3 - 2 * $v)}]
    set a [lindex $TABLE [expr {($i + 57 * $j) & 4095}]]
    set b [lindex $TABLE [expr {($i + 1 + 57 * $j) & 4095}]]
    set c [lindex $TABLE [expr {($i + 57 * ($j + 1)) & 4095}]]
    set d [lindex $TABLE [expr {($i + 1 + 57 * ($j + 1)) & 4095}]]
    return [expr {($a + ($b - $a) * $u) * (1 - $v) + ($c + ($d - $c) * $u) * $v}]
}

# height -- of the ground at x, z; the sea is at 0.
proc height {x z} {
    set n [expr {0.55 * [noise [expr {$x * 0.45 + 40}] [expr {$z * 0.45 + 40}]]
        + 0.26 * [noise [expr {$x * 1.1 + 80}] [expr {$z * 1.1 + 80}]]
        + 0.10 * [noise [expr {$x * 2.7 + 120}] [expr {$z * 2.7 + 120}]]
        + 0.035 * [noise [expr {$x * 7.1 + 200}] [expr {$z * 7.1 + 200}]]}]
    set far [expr {sqrt($x * $x * 0.8 + $z * $z * 1.25) / 8.2}]
    set hill [expr {1.5 * exp(-(pow($x + 2.6, 2) + pow($z + 2.2, 2)) / 5.5)}]
    # the headland on which the lighthouse stands: raised and level
    set cape [expr {exp(-(pow($x - 4.6, 2) + pow($z - 1.2, 2)) / 1.6)}]
    set h [expr {0.85 - 1.5 * $far * $far + $n * (0.55 + 0.6 * (1 - min($far, 1))) + $hill}]
    set h [expr {$h * (1 - $cape) + 0.85 * $cape}]
    # a shelf at the water's edge makes the beach, and the sea floor ends level
    if {$h < 0.12} {set h [expr {0.12 - (0.12 - $h) * 0.7}]}
    return [expr {max($h, -0.3)}]
}

# meadow -- above 0 where the grass of this square is light.
proc meadow {i j} {
    return [expr {[noise [expr {$i * 0.06 + $j * 0.03 + 300}] [expr {$j * 0.06 - $i * 0.03 + 300}]]
        + 0.6 * [noise [expr {$i * 0.11 - $j * 0.06 + 400}] [expr {$j * 0.13 + $i * 0.07 + 400}]]}]
}

proc ground {} {
    global SIZE CELLS
    set step [expr {2.0 * $SIZE / $CELLS}]
    for {set j 0} {$j <= $CELLS} {incr j} {
        set z [expr {-$SIZE + $j * $step}]
        for {set i 0} {$i <= $CELLS} {incr i} {
            set x [expr {-$SIZE + $i * $step}]
            set h [height $x $z]
            lappend heights $h
            scene::vertex $x $h $z
        }
    }
    set row [expr {$CELLS + 1}]
    for {set j 0} {$j < $CELLS} {incr j} {
        for {set i 0} {$i < $CELLS} {incr i} {
            set a [expr {$j * $row + $i}]
            set h0 [lindex $heights $a]
            set h1 [lindex $heights [expr {$a + 1}]]
            set h2 [lindex $heights [expr {$a + $row}]]
            set h [expr {($h0 + $h1 + $h2) / 3}]
            set slope [expr {hypot($h1 - $h0, $h2 - $h0) / $step}]
            if {$h < 0.11} {
                set kind "sand"
            } elseif {$slope > 1.0 || $h > 2.05} {
                set kind "rock"
            } elseif {$h < 1.4 && [meadow $i $j] > 0.12} {
                set kind "meadow"
            } else {
                set kind "grass"
            }
            set u [expr {double($i) / $CELLS}]
            set v [expr {double($j) / $CELLS}]
            set w [expr {1.0 / $CELLS}]
            scene::surface $kind 0x10 \
                [list $a [expr {$a + $row}] [expr {$a + $row + 1}] [expr {$a + 1}]] \
                [list [list $u $v] [list $u [expr {$v + $w}]] \
                    [list [expr {$u + $w}] [expr {$v + $w}]] [list [expr {$u + $w}] $v]]
        }
    }
}

proc lighthouse {} {
    object group "lighthouse" [list -loc [list 4.6 [height 4.6 1.2] 1.2]] {
        object poly "tower" {} {
            set below {0.30 0}
            foreach {kind r y} {"white wall" 0.27 0.36 "red stripe" 0.245 0.70 "white wall" 0.22
                1.04
                "red stripe" 0.195 1.38} {
                lathe $kind [list $below [list $r $y]] 28
                set below [list $r $y]
            }
        }
        object poly "gallery" {} {
            lathe "dark metal" {{0.195 1.38} {0.27 1.40} edge {0.27 1.40} {0.27 1.43} edge
                {0.27 1.43}
                {0.1 1.43}} 28
            line "dark metal" [circle {0 1.53 0} {1 0 0} {0 0 1} 0.26 28] 1
            foreach p [circle {0 1.43 0} {1 0 0} {0 0 1} 0.26 14] {
                line "dark metal" [list $p [list [lindex $p 0] 1.53 [lindex $p 2]]]
            }
        }
        object poly "lantern" {} {
            lathe "lantern" {{0.13 1.43} {0.13 1.66}} 16 0
            lathe "red stripe" {{0.13 1.66} {0.17 1.66} edge {0.17 1.66} {0.09 1.77} {0.02 1.81}
                {0.012 1.92} {0 1.92}} 20
        }
        object light "lantern light" {-loc {0 1.55 0}} {}
        object poly "keeper's house" {-loc {-0.75 0 0.1} -turn {y 20}} {
            box "white wall" -0.34 -0.15 -0.22  0.34 0.30 0.22
            polygon "roof" {{-0.38 0.27 0.27} {0.38 0.27 0.27} {0.38 0.52 0} {-0.38 0.52 0}} 0x20
            polygon "roof" {{0.38 0.27 -0.27} {-0.38 0.27 -0.27} {-0.38 0.52 0} {0.38 0.52 0}} 0x20
            polygon "white wall" {{0.34 0.30 0.22} {0.34 0.30 -0.22} {0.34 0.50 0}}
            polygon "white wall" {{-0.34 0.30 -0.22} {-0.34 0.30 0.22} {-0.34 0.50 0}}
            box "red stripe" -0.22 0.42 -0.1  -0.12 0.62 0
        }
    }
}

proc tree {name x z} {
    set s [expr {0.75 + 0.5 * rand()}]
    set turn [expr {int(rand() * 360)}]
    object poly $name [list -loc [list $x [expr {[height $x $z] - 0.02}] $z] -turn [list y $turn]] {
        lathe "trunk" [list {0.022 0} [list 0.016 [expr {0.12 * $s}]]] 6
        foreach {r y top} {0.13 0.10 0.28 0.11 0.20 0.37 0.08 0.30 0.47} {
            lathe "pine" [list [list 0 [expr {$y * $s}]] [list [expr {$r * $s}] [expr {$y * $s}]] \
                edge [list [expr {$r * $s}] [expr {$y * $s}]] [list 0 [expr {$top * $s}]]] 8
        }
    }
}

proc woods {} {
    foreach {name cx cz spread count} {"wood north" -0.8 -1.2 1.3 45 "wood west" -4.4 0.4 1.1 45
            "grove" 1.6 1.6 0.8 20} {
        object group $name {} {
            for {set made 0} {$made < $count} {} {
                set a [expr {rand() * 6.2831853}]
                set r [expr {sqrt(rand()) * $spread}]
                set x [expr {$cx + $r * cos($a) * 1.3}]
                set z [expr {$cz + $r * sin($a)}]
                set h [height $x $z]
                if {$h < 0.2 || $h > 1.9} {
                    incr tries
                    if {$tries > 2000} break
                    continue
                }
                incr made
                tree "pine $made" $x $z
            }
        }
    }
}

proc boat {} {
    object group "boat" {-loc {4.2 0 6.6} -turn {y -24}} {
        object poly "hull" {} {
            # frames from stern to bow: half width at the rim, at the water, depth
            set rows {}
            foreach {x rim water depth} {-0.5 0.15 0.11 -0.06 -0.25 0.19 0.15 -0.09 0.05 0.19
                0.15 -0.1
                    0.3 0.13 0.09 -0.08 0.52 0.02 0.01 -0.02} {
                set row {}
                foreach {z y} [list $rim 0.13 $water 0 0 $depth -$water 0 -$rim 0.13] {
                    lappend row [scene::vertex $x $y $z]
                }
                lappend rows $row
            }
            foreach a [lrange $rows 0 end-1] b [lrange $rows 1 end] {
                for {set i 0} {$i < 4} {incr i} {
                    scene::surface "red stripe" 0x30 \
                        [list [lindex $a $i] [lindex $a [expr {$i + 1}]] \
                        [lindex $b [expr {$i + 1}]] [lindex $b $i]]
                }
            }
            scene::surface "red stripe" 0x20 [lindex $rows 0]
        }
        object poly "mast" {} {tube "trunk" {{0.08 -0.05 0} {0.08 1.1 0}} {0.014 0.008} 8}
        object poly "sails" {} {
            polygon "sail" {{0.05 0.25 0} {0.05 1.05 0} {-0.45 0.28 0.06}} 0x20
            polygon "sail" {{0.11 0.95 0} {0.11 0.22 0.02} {0.48 0.2 0}} 0x20
            line "dark metal" {{-0.5 0.13 0} {0.08 1.1 0} {0.52 0.13 0}}
        }
    }
}

object poly "ground" {} {ground}
object poly "sea" {} {
    for {set j 0} {$j <= 20} {incr j} {
        for {set i 0} {$i <= 20} {incr i} {
            scene::vertex [expr {$SIZE * ($i / 10.0 - 1)}] 0 [expr {$SIZE * ($j / 10.0 - 1)}]
        }
    }
    for {set j 0} {$j < 20} {incr j} {
        for {set i 0} {$i < 20} {incr i} {
            set a [expr {$j * 21 + $i}]
            scene::surface "sea" 0x10 [list $a [expr {$a + 21}] [expr {$a + 22}] [expr {$a + 1}]]
        }
    }
}
lighthouse
woods
boat
object light "sun" {-loc {-14 16 12}} {}

scene::write [lindex $argv 0]

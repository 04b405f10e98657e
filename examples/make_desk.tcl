# Makes desk.vesk, the scene of the read-me: a desk with what lies on it, a chair and a rug. The
# desk is two units wide; y is up, the front looks towards +z.
#   tclsh make_desk.tcl desk.vesk

source [file join [file dirname [info script]] scene.tcl]
foreach name {material object box lathe tube prism rounded polygon line circle curve} {
    interp alias {} $name {} scene::$name
}

material "oak"             {0.74 0.55 0.36} -spec 0.10 -shi 16
material "white lacquer"   {0.90 0.90 0.87} -spec 0.18 -shi 32
material "graphite"        {0.20 0.22 0.25} -spec 0.22 -shi 24
material "screen"          {0.10 0.15 0.21} -amb 0.8 -emis {0.05 0.08 0.12} -spec 0.25 -shi 90
material "aluminium"       {0.68 0.71 0.74} -spec 0.55 -shi 60
material "slate blue"      {0.36 0.49 0.62} -spec 0.22 -shi 30
material "terracotta"      {0.74 0.42 0.30} -spec 0.04 -shi 6
material "leaf green"      {0.34 0.52 0.31} -spec 0.12 -shi 18
material "ochre"           {0.88 0.65 0.25} -spec 0.30 -shi 48
material "paper"           {0.95 0.94 0.90} -spec 0.02 -shi 4
material "brick red"       {0.66 0.28 0.24} -spec 0.08 -shi 10
material "teal"            {0.24 0.45 0.46} -spec 0.10 -shi 12
material "glass"           {0.78 0.88 0.92} -spec 0.80 -shi 110 -trans 0.68
material "lamp glow"       {1.00 0.93 0.74} -emis 0.85 -spec 0 -shi 0
material "soil"            {0.25 0.19 0.15} -spec 0 -shi 2
material "coffee"          {0.22 0.13 0.08} -spec 0.40 -shi 70
material "blue-grey wool"  {0.38 0.44 0.50} -spec 0 -shi 2
material "cable"           {0.12 0.13 0.15} -spec 0.2 -shi 20

set TOP 0.92 ;# height of the desk's top

# ---- the desk ----

proc drawer {name y height out} {
    object group $name [list -loc [list 0 $y $out]] {
        object poly "drawer" {} {
            set inside [expr {$height - 0.03}]
            box "white lacquer" -0.275 0 0.40  0.275 $height 0.425 0.006
            box "oak" -0.25 0.02 -0.36  0.25 0.03 0.40
            box "oak" -0.25 0.03 -0.36  -0.24 $inside 0.40
            box "oak" 0.24 0.03 -0.36  0.25 $inside 0.40
            box "oak" -0.24 0.03 -0.36  0.24 $inside -0.35
        }
        object poly "handle" [list -loc [list 0 [expr {$height - 0.05}] 0.425]] {
            tube "aluminium" {{-0.09 0 0} {-0.09 0 0.022} {-0.08 0 0.03} {0.08 0 0.03}
                {0.09 0 0.022} {0.09 0 0}} 0.007 10
        }
    }
}

proc leg {name x z turn_z turn_x} {
    object poly $name [list -loc [list $x $::TOP $z] -turn [list z $turn_z x $turn_x]] {
        lathe "oak" {{0 -0.94} {0.018 -0.94} edge {0.018 -0.94} {0.034 -0.05} edge
            {0.034 -0.05} {0 -0.05}} 16
    }
}

proc desk {} {
    object group "desk" {-data "Oak and white lacquer.\nTop 200 x 95, height 92.\n"} {
        object poly "top" [list -loc [list 0 $::TOP 0]] {
            prism "oak" [rounded 1.0 0.475 0.05 6] -0.045 0
        }
        object poly "apron" {} {
            box "white lacquer" -0.86 0.79 -0.40  0.36 0.873 -0.375
        }
        object group "legs" {} {
            leg "leg \"front left\"" -0.84 0.36 -5 5
            leg "leg \"back left\"" -0.84 -0.36 -5 -5
        }
        object group "drawers" {-loc {0.64 0 0}} {
            object poly "cabinet" {} {
                box "white lacquer" -0.30 0.08 -0.40  -0.278 0.873 0.40
                box "white lacquer" 0.278 0.08 -0.40  0.30 0.873 0.40
                box "white lacquer" -0.278 0.08 -0.40  0.278 0.873 -0.385
                box "white lacquer" -0.278 0.08 -0.385  0.278 0.10 0.40
                box "white lacquer" -0.278 0.853 -0.385  0.278 0.873 0.40
            }
            object poly "plinth" {} {box "graphite" -0.27 0 -0.36  0.27 0.08 0.37}
            drawer "drawer top" 0.655 0.192 0
            drawer "drawer middle, open" 0.385 0.262 0.17
            drawer "drawer bottom" 0.105 0.272 0
        }
    }
}

# ---- on the desk ----

proc monitor {} {
    object group "monitor" {-loc {0.13 0.92 -0.2} -turn {y -4} -url "https://example.org/monitor"} {
        object poly "foot" {} {
            prism "aluminium" [rounded 0.17 0.11 0.04] 0 0.014
        }
        object poly "neck" {-turn {x -6}} {
            box "aluminium" -0.03 0.01 -0.075  0.03 0.36 -0.055 0.004
        }
        object group "panel" {-loc {0 0.40 -0.05} -turn {x -4}} {
            object poly "case" {} {
                box "graphite" -0.46 -0.265 -0.02  0.46 0.265 0.02 0.008
            }
            object poly "screen" {-loc {0 0 0.0205}} {
                polygon "screen" {{-0.445 -0.25 0} {0.445 -0.25 0} {0.445 0.25 0} {-0.445 0.25 0}}
            }
            object group "picture" {-loc {0 0 0.022}} {
                object poly "sheet" {} {
                    polygon "slate blue" {{-0.40 -0.20 0} {0.08 -0.20 0} {0.08 0.20 0}
                        {-0.40 0.20 0}}
                    polygon "blue-grey wool" {{0.12 0.02 0} {0.40 0.02 0} {0.40 0.20 0}
                        {0.12 0.20 0}}
                    polygon "ochre" {{0.12 -0.2 0} {0.17 -0.2 0} {0.17 -0.10 0} {0.12 -0.10 0}}
                    polygon "ochre" {{0.197 -0.2 0} {0.247 -0.2 0} {0.247 -0.05 0} {0.197 -0.05 0}}
                    polygon "ochre" {{0.273 -0.2 0} {0.323 -0.2 0} {0.323 -0.13 0} {0.273 -0.13 0}}
                    polygon "ochre" {{0.35 -0.2 0} {0.40 -0.2 0} {0.40 -0.02 0} {0.35 -0.02 0}}
                }
                object poly "drawing" {-loc {-0.16 -0.02 0.003}} {
                    wire_vase
                }
            }
        }
        object poly "cable" {} {
            line "cable" [concat [curve {0 0.3 -0.08} {0.02 0.1 -0.16} {0.0 0.02 -0.12} \
                {0.12 0.012 -0.15} 14] [lrange [curve {0.12 0.012 -0.15} {0.25 0.005 -0.18} \
                {0.2 0.01 -0.26} {0.24 -0.6 -0.29} 14] 1 end]]
        }
    }
}

# The vase on the screen: closed lines (rings, seen from a little above) and open ones (outline).
proc wire_vase {} {
    set left {}
    set right {}
    foreach {r y} {0.055 -0.13 0.085 -0.08 0.095 -0.03 0.08 0.03 0.05 0.08 0.045 0.11 0.06 0.14} {
        lappend left [list [expr {-$r}] $y 0]
        lappend right [list $r $y 0]
        line "paper" [circle [list 0 $y 0] {1 0 0} {0 0.22 0} $r 20] 1
    }
    line "paper" $left
    line "paper" $right
}

proc keyboard {} {
    object group "keyboard" {-loc {0.06 0.92 0.2} -turn {y -3}} {
        object poly "case" {-turn {x 3}} {
            box "aluminium" -0.29 0 -0.10  0.29 0.018 0.10 0.005
        }
        object poly "keys" {-turn {x 3}} {
            foreach {z row} {-0.072 {13*1} -0.036 {1.4 11*1 1.4 -} 0 {1.7 10*1 1.9 -}
                    0.036 {2.2 9*1 2.4 -} 0.072 {1.3 1.2 1.2 6 1.2 1.2 1.3}} {
                set widths {}
                foreach word $row {
                    if {[regexp {^(\d+)\*(.*)$} $word -> n w]} {
                        lappend widths {*}[lrepeat $n $w]
                    } elseif {$word ne "-"} {
                        lappend widths $word
                    }
                }
                set unit [expr {0.552 / [tcl::mathop::+ {*}$widths]}]
                set x -0.276
                foreach w $widths {
                    set next [expr {$x + $w * $unit}]
                    box "white lacquer" [expr {$x + 0.003}] 0.018 [expr {$z - 0.015}] \
                        [expr {$next - 0.003}] 0.028 [expr {$z + 0.015}] 0.003
                    set x $next
                }
            }
        }
    }
    object poly "mouse" {-loc {0.45 0.92 0.22} -turn {y 8}} {
        set below {}
        foreach {share y} {1.0 0 1.05 0.012 0.93 0.026 0.62 0.036} {
            set ring {}
            foreach p [rounded [expr {0.036 * $share}] [expr {0.06 * $share}] \
                    [expr {0.033 * $share}] 5] {
                lappend ring [scene::vertex [lindex $p 0] $y [lindex $p 1]]
            }
            if {$below eq ""} {
                scene::surface "white lacquer" 0 [lreverse $ring]
            } else {
                set n [llength $ring]
                for {set i 0} {$i < $n} {incr i} {
                    set k [expr {($i + 1) % $n}]
                    scene::surface "white lacquer" 0x10 [list [lindex $below $i] \
                        [lindex $below $k] [lindex $ring $k] [lindex $ring $i]]
                }
            }
            set below $ring
        }
        scene::surface "white lacquer" 0x10 $below
    }
}

# Two arms, each turned in the frame of the one below it; the head follows them.
proc lamp {} {
    object group "lamp" {-loc {-0.74 0.92 -0.22} -turn {y 22}} {
        object poly "foot" {} {
            lathe "slate blue" {{0 0} {0.115 0} edge {0.115 0} {0.115 0.014} edge {0.115 0.014}
                {0.105 0.022} {0.02 0.028} {0.014 0.06} {0 0.06}} 32
        }
        object group "lower arm" {-loc {0 0.05 0} -turn {z 18}} {
            object poly "rod" {} {tube "aluminium" {{0 0 0} {0 0.42 0}} 0.010 12}
            object poly "spring" {} {
                set points {}
                for {set i 0} {$i <= 96} {incr i} {
                    set a [expr {$i * 0.5236}]
                    lappend points [list [expr {0.016 * cos($a)}] [expr {0.10 + $i * 0.0022}] \
                        [expr {0.016 * sin($a)}]]
                }
                line "graphite" $points
            }
            object poly "joint" {-loc {0 0.42 0} -turn {x 90}} {
                lathe "slate blue" {{0 -0.02} {0.026 -0.02} edge {0.026 -0.02} {0.026 0.02} edge
                    {0.026 0.02} {0 0.02}} 24
            }
            object group "upper arm" {-loc {0 0.42 0} -turn {z -76}} {
                object poly "rod" {} {tube "aluminium" {{0 0 0} {0 0.40 0}} 0.009 12}
                object poly "joint" {-loc {0 0.40 0} -turn {x 90}} {
                    lathe "slate blue" {{0 -0.018} {0.022 -0.018} edge {0.022 -0.018} {0.022 0.018}
                        edge {0.022 0.018} {0 0.018}} 24
                }
                object group "head" {-loc {0 0.40 0} -turn {z 40}} {
                    object poly "shade" {} {
                        lathe "slate blue" {{0.120 -0.150} {0.112 -0.100} {0.088 -0.045}
                            {0.05 -0.008}
                            {0.022 0.004} edge {0.022 0.004} {0.022 0.05} {0.016 0.06} {0 0.06}} 32
                        lathe "paper" {{0 -0.002} {0.022 -0.002} {0.048 -0.014} {0.084 -0.051}
                            {0.108 -0.104} {0.120 -0.150}} 32
                    }
                    object poly "bulb" {-loc {0 -0.07 0}} {
                        lathe "lamp glow" {{0 -0.045} {0.020 -0.041} {0.035 -0.028} {0.041 -0.008}
                            {0.036 0.014} {0.022 0.034} {0.016 0.06} {0 0.06}} 20
                    }
                    object light "lamp light" {-loc {0 -0.2 0}} {}
                }
            }
        }
    }
}

proc crockery {} {
    object group "mug" {-loc {0.56 0.92 0.0} -turn {y 35}} {
        object poly "body" {} {
            lathe "ochre" {{0 0} {0.048 0} edge {0.048 0} {0.056 0.006} {0.058 0.02} {0.058 0.118}
                {0.057 0.122} {0.053 0.122} {0.052 0.118} {0.052 0.014} edge {0.052 0.014} \
                    {0 0.014}} 32
        }
        object poly "handle" {} {
            tube "ochre" [curve {0.056 0.098 0} {0.112 0.11 0} {0.112 0.012 0} {0.056 0.030 0} 14] \
                0.008 10
        }
        object poly "coffee" {-loc {0 0.098 0}} {
            polygon "coffee" [lreverse [circle {0 0 0} {1 0 0} {0 0 1} 0.052 32]]
        }
    }
    object group "glass \"half full\"" {-loc {0.70 0.92 0.22}} {
        object poly "water" {} {
            lathe "glass" {{0 0.012} {0.037 0.012} {0.040 0.075} edge {0.040 0.075} {0 0.075}} 28
        }
        object poly "wall" {} {
            lathe "glass" {{0 0} {0.040 0} edge {0.040 0} {0.047 0.145} edge {0.047 0.145}
                {0.0455 0.145} edge {0.0455 0.145} {0.0385 0.002} edge {0.0385 0.002} {0 0.002}} 28
        }
        object poly "rim" {} {
            line "paper" [circle {0 0.145 0} {1 0 0} {0 0 1} 0.047 36] 1
        }
    }
}

proc book {name cover y width depth height turn} {
    object poly $name [list -loc [list 0 $y 0] -turn [list y $turn]] {
        set w [expr {$width / 2.0}]
        set d [expr {$depth / 2.0}]
        set inside [expr {$height - 0.005}]
        box $cover [expr {-$w}] 0 [expr {-$d}] $w 0.005 $d 0.002
        box $cover [expr {-$w}] $inside [expr {-$d}] $w $height $d 0.002
        box $cover [expr {-$w}] 0.005 [expr {-$d}] [expr {-$w + 0.006}] $inside $d
        box "paper" [expr {-$w + 0.006}] 0.005 [expr {-$d + 0.008}] [expr {$w - 0.008}] $inside \
            [expr {$d - 0.008}]
    }
}

proc books {} {
    object group "books" {-loc {-0.70 0.92 0.21}} {
        book "atlas\\1" "teal" 0 0.30 0.22 0.045 4
        book "novel" "brick red" 0.045 0.24 0.17 0.038 -9
        book "poems" "paper" 0.083 0.21 0.15 0.022 14
        object group "glasses" {-loc {0.0 0.107 0.02} -turn {y -20}} {
            object poly "rims" {} {
                line "graphite" [circle {-0.038 0.026 0.02} {1 0 0} {0 1 0} 0.030 24] 1
                line "graphite" [circle {0.038 0.026 0.02} {1 0 0} {0 1 0} 0.030 24] 1
                line "graphite" [curve {-0.010 0.034 0.02} {-0.004 0.042 0.02} {0.004 0.042 0.02} \
                    {0.010 0.034 0.02} 6]
            }
            object poly "temples" {} {
                line "graphite" {{-0.068 0.03 0.02} {-0.070 0.03 -0.06} {-0.066 0.004 -0.09}}
                line "graphite" {{0.068 0.03 0.02} {0.070 0.03 -0.06} {0.066 0.004 -0.09}}
            }
            object poly "lenses" {} {
                polygon "glass" [circle {-0.038 0.026 0.02} {1 0 0} {0 1 0} 0.029 24] 0x20
                polygon "glass" [circle {0.038 0.026 0.02} {1 0 0} {0 1 0} 0.029 24] 0x20
            }
        }
    }
    object group "notebook" {-loc {-0.40 0.92 0.28} -turn {y 12}} {
        object poly "sheets" {} {box "paper" -0.075 0.002 -0.105  0.075 0.012 0.105}
        object poly "cover" {} {box "graphite" -0.08 0 -0.11  0.08 0.003 0.11}
        object poly "rings" {} {
            for {set i 0} {$i < 14} {incr i} {
                set x [expr {-0.0715 + $i * 0.011}]
                line "aluminium" [circle [list $x 0.007 -0.106] {0 1 0} {0 0 1} 0.010 12] 1
            }
        }
        object poly "pencil" {-loc {0.03 0.018 0.02} -turn {y 62}} {pencil "brick red"}
    }
}

# A pencil along x, its point at the right.
proc pencil {colour} {
    tube $colour {{-0.09 0 0} {0.06 0 0}} 0.0055 6
    tube "oak" {{0.06 0 0} {0.078 0 0}} {0.0055 0.0018} 6
    tube "graphite" {{0.078 0 0} {0.084 0 0}} {0.0018 0.0004} 6
}

proc pen_cup {} {
    object group "pen cup" {-loc {0.80 0.92 -0.06}} {
        object poly "cup" {} {
            lathe "graphite" {{0 0} {0.045 0} edge {0.045 0} {0.048 0.11} {0.044 0.11} {0.041 0.006}
                edge {0.041 0.006} {0 0.006}} 24
        }
        foreach {name colour x z lean around} {
            "pencil red" "brick red" 0.012 0.008 78 20   "pencil ochre" "ochre" -0.014 0.010 80 170
            "pencil teal" "teal" 0.0 -0.016 76 95        "pencil blue" "slate blue" -0.01 -0.01 \
                82 230
        } {
            object poly $name [list -loc [list $x 0.10 $z] -turn [list z $lean y $around]] {
                pencil $colour
            }
        }
        object poly "ruler" {-loc {0.016 0.11 -0.012} -turn {z -8 y 40}} {
            box "aluminium" -0.014 -0.1 -0.001  0.014 0.11 0.001
        }
    }
}

proc picture {} {
    object group "picture frame" {-loc {0.80 0.92 -0.30} -turn {y -24}} {
        object group "leaning" {-turn {x -14}} {
            object poly "frame" {} {
                box "oak" -0.13 0 -0.01  0.13 0.022 0.01 0.003
                box "oak" -0.13 0.308 -0.01  0.13 0.33 0.01 0.003
                box "oak" -0.13 0.022 -0.01  -0.108 0.308 0.01 0.003
                box "oak" 0.108 0.022 -0.01  0.13 0.308 0.01 0.003
            }
            object poly "mount" {} {
                box "paper" -0.108 0.022 -0.006  0.108 0.308 0
            }
            object poly "print" {-loc {0 0.165 0.002}} {
                polygon "blue-grey wool" {{-0.075 -0.10 0} {0.075 -0.10 0} {0.075 0.11 0}
                    {-0.075 0.11 0}}
                polygon "ochre" [circle {0.03 0.055 0.001} {1 0 0} {0 1 0} 0.024 24]
                polygon "teal" {{-0.075 -0.10 0.0015} {0.075 -0.10 0.0015} {0.075 -0.03 0.0015}
                    {0.035 0.01 0.0015} {0.005 -0.03 0.0015} {-0.03 0.04 0.0015} \
                        {-0.075 -0.02 0.0015}}
            }
            object poly "strut" {-loc {0 0.2 -0.012} -turn {x 32}} {
                box "graphite" -0.02 -0.205 -0.004  0.02 0.01 0
            }
        }
    }
}

# A leaf along +x, bent down towards its tip; seen from both sides.
proc leaf {length width droop} {
    set rows {}
    for {set i 0} {$i <= 7} {incr i} {
        set t [expr {$i / 7.0}]
        set x [expr {$length * $t}]
        set y [expr {$length * (0.55 * $t - $droop * $t * $t)}]
        set half [expr {$width * pow(sin(3.14159 * pow($t, 0.8)), 0.8)}]
        if {$i == 0 || $i == 7} {set half [expr {$width * 0.03}]}
        lappend rows [list \
            [scene::vertex $x [expr {$y + 0.25 * $half}] $half] [scene::vertex $x $y 0] \
            [scene::vertex $x [expr {$y + 0.25 * $half}] [expr {-$half}]]]
    }
    foreach a [lrange $rows 0 end-1] b [lrange $rows 1 end] {
        lassign $a a0 a1 a2
        lassign $b b0 b1 b2
        scene::surface "leaf green" 0x30 [list $a0 $b0 $b1 $a1]
        scene::surface "leaf green" 0x30 [list $a1 $b1 $b2 $a2]
    }
}

proc plant {} {
    object group "plant" {-loc {-0.48 0.92 -0.33}} {
        object poly "pot" {} {
            lathe "terracotta" {{0 0} {0.062 0} edge {0.062 0} {0.084 0.115} edge {0.084 0.115}
                {0.094 0.115} edge {0.094 0.115} {0.096 0.15} edge {0.096 0.15} {0.084 0.15} edge
                {0.084 0.15} {0.080 0.135} edge {0.080 0.135} {0 0.135}} 28
        }
        object poly "soil" {-loc {0 0.136 0}} {
            lathe "soil" {{0.081 0} {0.05 0.008} {0 0.012}} 20
        }
        object group "leaves" {-loc {0 0.135 0}} {
            foreach {around lean length width droop} {
                0 52 0.24 0.042 0.55   52 66 0.27 0.045 0.42   101 44 0.22 0.040 0.62
                155 58 0.26 0.044 0.50  204 40 0.21 0.038 0.66  256 62 0.26 0.046 0.46
                292 46 0.23 0.041 0.58  25 84 0.31 0.040 0.30  140 80 0.29 0.040 0.34
                270 88 0.32 0.042 0.28
            } {
                object poly "leaf $around" [list -turn [list z [expr {$lean - 20}] y $around]] {
                    leaf $length $width $droop
                }
            }
        }
    }
}

# ---- around the desk ----

proc chair {} {
    object group "chair" {-loc {-0.26 0 0.78} -turn {y 152}} {
        object group "base" {} {
            for {set i 0} {$i < 5} {incr i} {
                set around [expr {72 * $i + 18}]
                object poly "foot [expr {$i + 1}]" [list -turn [list y $around]] {
                    tube "aluminium" {{0.02 0.105 0} {0.12 0.095 0} {0.28 0.062 0}} \
                        {0.022 0.018 0.012} 12
                    tube "graphite" {{0.262 0.030 -0.018} {0.278 0.030 0.018}} 0.030 20
                }
            }
            object poly "column" {} {
                lathe "aluminium" {{0 0.08} {0.032 0.08} edge {0.032 0.08} {0.032 0.30} edge
                    {0.032 0.30} {0.02 0.30} edge {0.02 0.30} {0.02 0.47} edge {0.02 0.47} \
                        {0 0.47}} 20
            }
        }
        object group "seat" {-loc {0 0.48 0}} {
            object poly "cushion" {} {
                prism "slate blue" [rounded 0.225 0.215 0.09 6] 0.012 0.05 1
                set inner [rounded 0.205 0.195 0.08 6]
                prism "slate blue" $inner 0.05 0.066 1
            }
            object poly "pan" {} {prism "graphite" [rounded 0.215 0.205 0.085 6] -0.008 0.012 1}
            object poly "back" {-loc {0 0.10 -0.205} -turn {x -10}} {
                backrest 0.2 0.40 0.030
            }
            object poly "support" {} {
                tube "aluminium" [curve {0 -0.002 -0.1} {0 -0.01 -0.27} {0 0.06 -0.29} \
                    {0 0.22 -0.262} \
                    10] 0.015 12
            }
        }
    }
}

# A curved back: a shell with a front, a back and an edge, concave towards +z.
proc backrest {half height thick} {
    set columns 12
    set rows 8
    foreach {side shift} {front 0 back 1} {
        for {set r 0} {$r <= $rows} {incr r} {
            for {set c 0} {$c <= $columns} {incr c} {
                set t [expr {2.0 * $c / $columns - 1}]
                set v [expr {2.0 * $r / $rows - 1}]
                # a rectangle with round corners: the edge of the grid is drawn in
                set x [expr {$half * $t * sqrt(1 - 0.30 * pow($v, 6))}]
                set y [expr {$height * (0.5 + 0.5 * $v * sqrt(1 - 0.22 * pow($t, 6)))}]
                set z [expr {0.055 * $t * $t + 0.02 * $v * $v - $thick * $shift}]
                set id($side,$r,$c) [scene::vertex $x $y $z]
                set edge($side,$r,$c) [list $x $y $z]
            }
        }
    }
    set rim {}
    for {set c 0} {$c < $columns} {incr c} {lappend rim 0,$c}
    for {set r 0} {$r < $rows} {incr r} {lappend rim $r,$columns}
    for {set c $columns} {$c > 0} {incr c -1} {lappend rim $rows,$c}
    for {set r $rows} {$r > 0} {incr r -1} {lappend rim $r,0}
    for {set r 0} {$r < $rows} {incr r} {
        for {set c 0} {$c < $columns} {incr c} {
            set cells [list $r,$c $r,[expr {$c + 1}] [expr {$r + 1}],[expr {$c + 1}] \
                [expr {$r + 1}],$c]
            scene::surface "slate blue" 0x10 [lmap cell $cells {set id(front,$cell)}]
            scene::surface "slate blue" 0x10 [lreverse [lmap cell $cells {set id(back,$cell)}]]
        }
    }
    set front [lmap cell $rim {scene::vertex {*}$edge(front,$cell)}]
    set back [lmap cell $rim {scene::vertex {*}$edge(back,$cell)}]
    for {set i 0} {$i < [llength $rim]} {incr i} {
        set k [expr {($i + 1) % [llength $rim]}]
        scene::surface "graphite" 0x10 [list [lindex $back $i] [lindex $back $k] \
            [lindex $front $k] [lindex $front $i]]
    }
}

proc rug {} {
    object group "rug" {-loc {-0.2 0 0.55}} {
        object poly "wool" {} {
            set outline [lmap p [circle {0 0 0} {1 0 0} {0 0 -1} 0.80 48] {
                list [lindex $p 0] [lindex $p 2]
            }]
            prism "blue-grey wool" $outline 0 0.012
        }
        object poly "stripe" {-loc {0 0.0135 0}} {
            foreach {ring radius} {outer 0.745 inner 0.725} {
                set $ring [lmap p [circle {0 0 0} {1 0 0} {0 0 -1} $radius 48] {scene::vertex {*}$p}]
            }
            for {set i 0} {$i < 48} {incr i} {
                set k [expr {($i + 1) % 48}]
                scene::surface "paper" 0 [list [lindex $outer $i] [lindex $outer $k] [lindex $inner $k] \
                    [lindex $inner $i]]
            }
        }
    }
}

desk
object group "on the desk" {} {
    monitor
    keyboard
    lamp
    crockery
    books
    pen_cup
    picture
    plant
}
chair
rug
object light "window light" {-loc {-2.2 3.2 2.8}} {}

scene::write [lindex $argv 0]

# cubes.tcl --
#   Prints a model file: n small cubes side by side in the plan, in ten materials.

set n [lindex $argv 0]
set side [expr {int(ceil(sqrt($n)))}]
fconfigure stdout -buffersize 1000000
puts "VESKb"
for {set i 0} {$i < 10} {incr i} {
    puts "MATERIAL \"m$i\" rgb [expr {$i / 10.0}] 0.6 0.5 amb 0.2 0.2 0.2 emis 0 0 0 spec 0.5 0.5 0.5 shi 10 trans 0"
}
puts "OBJECT world\nkids $n"
for {set i 0} {$i < $n} {incr i} {
    set x [expr {4.0 * ($i % $side) / $side - 2}]
    set z [expr {4.0 * ($i / $side) / $side - 2}]
    set r [expr {1.5 / $side}]
    puts "OBJECT poly\nname \"cube $i\"\nnumvert 8"
    foreach {a b c} {-1 -1 -1 1 -1 -1 1 1 -1 -1 1 -1 -1 -1 1 1 -1 1 1 1 1 -1 1 1} {
        puts [format "%.5g %.5g %.5g" [expr {$x + $a * $r}] [expr {$b * $r}] [expr {$z + $c * $r}]]
    }
    puts "numsurf 6"
    foreach corners {{0 3 2 1} {4 5 6 7} {0 1 5 4} {2 3 7 6} {1 2 6 5} {0 4 7 3}} {
        puts "SURF 0x0\nmat [expr {$i % 10}]\nrefs 4"
        foreach corner $corners {puts "$corner 0 0"}
    }
    puts "kids 0"
}

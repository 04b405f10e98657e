# terrain.tcl --
#   Prints a model file: a smooth terrain of n by n quads, 2 n n triangles. A second argument from 0 to 1 is
#   the share of its rows that is of glass.

lassign $argv n glass
if {$glass eq ""} {set glass 0}
fconfigure stdout -buffersize 1000000
puts "VESKb\nMATERIAL \"ground\" rgb 0.6 0.7 0.5 amb 0.2 0.2 0.2 emis 0 0 0 spec 0.5 0.5 0.5 shi 10 trans 0"
if {$glass > 0} {
    puts "MATERIAL \"glass\" rgb 0.4 0.6 0.9 amb 0.2 0.2 0.2 emis 0 0 0 spec 0.5 0.5 0.5 shi 10 trans 0.5"
}
puts "OBJECT world\nkids 1\nOBJECT poly\nname \"terrain\"\nnumvert [expr {($n + 1) * ($n + 1)}]"
for {set i 0} {$i <= $n} {incr i} {
    set z [expr {4.0 * $i / $n - 2}]
    for {set j 0} {$j <= $n} {incr j} {
        set x [expr {4.0 * $j / $n - 2}]
        puts [format "%.5g %.5g %.5g" $x [expr {0.4 * sin(3 * $x) * cos(2 * $z)}] $z]
    }
}
puts "numsurf [expr {$n * $n}]"
set row [expr {$n + 1}]
for {set i 0} {$i < $n} {incr i} {
    set material [expr {$i < $glass * $n}]
    for {set j 0} {$j < $n} {incr j} {
        set a [expr {$i * $row + $j}]
        puts "SURF 0x30\nmat $material\nrefs 4\n$a 0 0\n[expr {$a + $row}] 0 0\n[expr {$a + $row + 1}] 0 0\n[expr {$a + 1}] 0 0"
    }
}
puts "kids 0"

# The jobs of topology_test.sh in Blender: blender -b -P topology_blender.py -- FILE ...
# Prints the counts of vertices, edges and faces for each job, as the test's script does, and whether
# the volumes of booleans agree.
import sys

import bmesh
import bpy


def read(name):
    bm = bmesh.new()
    with open(name) as file:
        for line in file:
            words = line.split()
            if words and words[0] == "v":
                bm.verts.new([float(w) for w in words[1:4]])
                bm.verts.ensure_lookup_table()
            elif words and words[0] == "f":
                bm.faces.new([bm.verts[int(w.split("/")[0]) - 1] for w in words[1:]])
    bm.verts.ensure_lookup_table()
    bm.faces.ensure_lookup_table()
    bm.normal_update()
    return bm


def edge(bm, a, b):
    return next(e for e in bm.verts[a].link_edges if e.other_vert(bm.verts[a]) is bm.verts[b])


def ring(first):
    found = {first}
    todo = [first]
    while todo:
        at = todo.pop()
        for loop in at.link_loops:
            if len(loop.face.verts) != 4:
                continue
            other = loop.link_loop_next.link_loop_next.edge
            if other not in found:
                found.add(other)
                todo.append(other)
    return list(found)


def told(what, bm):
    print("counts", what, len(bm.verts), len(bm.edges), len(bm.faces))


def smoothed(bm):
    mesh = bpy.data.meshes.new("mesh")
    bm.to_mesh(mesh)
    thing = bpy.data.objects.new("thing", mesh)
    bpy.context.scene.collection.objects.link(thing)
    thing.modifiers.new("smooth", "SUBSURF").levels = 1
    depsgraph = bpy.context.evaluated_depsgraph_get()
    result = bmesh.new()
    result.from_object(thing, depsgraph)
    return result


grid, cubes, mixed = sys.argv[sys.argv.index("--") + 1:]

bm = read(grid)
bmesh.ops.subdivide_edgering(bm, edges=ring(edge(bm, 1, 2)), cuts=2)
told("loop_cut", bm)

bm = read(cubes)
faces = [bm.faces[1], bm.faces[6]]
bmesh.ops.bridge_loops(bm, edges=[e for face in faces for e in face.edges])
bmesh.ops.delete(bm, geom=faces, context="FACES_ONLY")
told("bridge", bm)

bm = read(grid)
bmesh.ops.inset_region(bm, faces=[bm.faces[i] for i in (5, 6, 10)], thickness=0.1)
told("inset_region", bm)

bm = read(grid)
bmesh.ops.inset_individual(bm, faces=[bm.faces[i] for i in (5, 6, 10)], thickness=0.1)
told("inset_each", bm)

told("catmull_clark", smoothed(read(mixed)))

bm = read(grid)
bmesh.ops.dissolve_edges(bm, edges=[edge(bm, 1, 2), edge(bm, 2, 3)], use_verts=True)
told("dissolve_edges", bm)

bm = read(grid)
bmesh.ops.dissolve_faces(bm, faces=[bm.faces[i] for i in (5, 6, 9, 10)])
told("dissolve_faces", bm)

def solid(name):
    mesh = bpy.data.meshes.new(name)
    read(name).to_mesh(mesh)
    thing = bpy.data.objects.new(name, mesh)
    bpy.context.scene.collection.objects.link(thing)
    return thing


for operation in ("union", "difference", "intersection"):
    first, second = solid("first.obj"), solid("second.obj")
    modifier = first.modifiers.new("boolean", "BOOLEAN")
    modifier.solver = "EXACT"
    modifier.operation = {"intersection": "INTERSECT"}.get(operation, operation.upper())
    modifier.object = second
    result = bmesh.new()
    result.from_object(first, bpy.context.evaluated_depsgraph_get())
    ours, theirs = read(operation + ".obj").calc_volume(), result.calc_volume()
    same = theirs > 0.5 and abs(ours - theirs) < 1e-5 * theirs
    print("counts", operation, "agrees" if same else f"{ours} instead of {theirs}")

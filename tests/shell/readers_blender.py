# blender --background --factory-startup --python readers_blender.py -- FILE...
# Prints a line for each file: its suffix, how many mesh objects, polygons, corners and materials are
# in it, how many polygons are smooth, the box's rounded size by rising length, and the objects' names.
import builtins
import os
import sys

import bpy

import numpy

if 'bool' not in vars(numpy):  # names that its glTF reader needs and newer versions have not
    numpy.bool = bool

# Its VRML reader asks for a mode that newer versions have not.
python_open = builtins.open
builtins.open = lambda path, mode='r', *rest, **more: python_open(
    path, mode.replace('U', ''), *rest, **more)

importers = {
    '.obj': lambda f: bpy.ops.wm.obj_import(filepath=f),
    '.ply': lambda f: bpy.ops.import_mesh.ply(filepath=f),
    '.stl': lambda f: bpy.ops.import_mesh.stl(filepath=f),
    '.gltf': lambda f: bpy.ops.import_scene.gltf(filepath=f),
    '.glb': lambda f: bpy.ops.import_scene.gltf(filepath=f),
    '.dae': lambda f: bpy.ops.wm.collada_import(filepath=f),
    '.fbx': lambda f: bpy.ops.import_scene.fbx(filepath=f),
    '.wrl': lambda f: bpy.ops.import_scene.x3d(filepath=f),
}

for file in sys.argv[sys.argv.index('--') + 1:]:
    bpy.ops.wm.read_factory_settings(use_empty=True)
    suffix = os.path.splitext(file)[1]
    importers[suffix](file)
    bpy.context.view_layer.update()
    meshes = [o for o in bpy.data.objects if o.type == 'MESH']
    polygons = [p for o in meshes for p in o.data.polygons]
    places = [o.matrix_world @ v.co for o in meshes for v in o.data.vertices]
    size = sorted(max(p[i] for p in places) - min(p[i] for p in places) for i in range(3))
    used = {m.name for o in meshes for m in o.data.materials if m}
    print('READ', suffix, len(meshes), len(polygons), sum(len(p.vertices) for p in polygons),
          len(used), sum(p.use_smooth for p in polygons), *('%.2f' % s for s in size),
          '|'.join(sorted(o.name for o in meshes)), flush=True)

# Makes the files of this folder: blender --background --python make.py, with Blender 3.4 of Debian
# 12; then "assimp export b.obj a.3mf" and "assimp export b.obj a.3ds" with Assimp's tool 5.2.
# A cube of two materials that is turned and moved, a smooth ball below it, and a concave polygon
# with a texture; Z is upwards there.
import bpy, os

out = os.path.dirname(os.path.abspath(__file__)) + '/'
bpy.ops.wm.read_factory_settings(use_empty=True)


def material(name, colour):
    m = bpy.data.materials.new(name)
    m.use_nodes = True
    m.node_tree.nodes['Principled BSDF'].inputs['Base Color'].default_value = (*colour, 1)
    return m


red = material('red paint', (0.8, 0.1, 0.1))
blue = material('blue', (0.1, 0.2, 0.9))
wood = material('wood', (1, 1, 1))
image = bpy.data.images.new('wood', 4, 4)
image.pixels = [0.5, 0.25, 0.1, 1] * 16
image.filepath_raw = out + 'wood.png'
image.file_format = 'PNG'
image.save()
texture = wood.node_tree.nodes.new('ShaderNodeTexImage')
texture.image = image
wood.node_tree.links.new(texture.outputs['Color'],
                         wood.node_tree.nodes['Principled BSDF'].inputs['Base Color'])

bpy.ops.mesh.primitive_cube_add(size=2, location=(1, 2, 3), rotation=(0, 0, 0.5))
cube = bpy.context.object
cube.name = 'cube one'
cube.data.materials.append(red)
cube.data.materials.append(blue)
for i in (0, 3):
    cube.data.polygons[i].material_index = 1
bpy.ops.mesh.primitive_uv_sphere_add(segments=8, ring_count=4, radius=0.5, location=(0, 0, 4))
ball = bpy.context.object
ball.name = 'ball'
bpy.ops.object.shade_smooth()
ball.data.materials.append(blue)
ball.parent = cube

mesh = bpy.data.meshes.new('hexagon')
mesh.from_pydata([(0, 0, 0), (2, 0, 0), (3, 1, 0), (2, 2, 0), (1, 1, 0), (0, 2, 0)], [],
                 [(0, 1, 2, 3, 4, 5)])
hexagon = bpy.data.objects.new('hexagon', mesh)
bpy.context.collection.objects.link(hexagon)
mesh.materials.append(wood)
uv = mesh.uv_layers.new()
for i, loop in enumerate(mesh.loops):
    at = mesh.vertices[loop.vertex_index].co
    uv.data[i].uv = (at.x / 3, at.y / 2)

bpy.ops.export_scene.gltf(filepath=out + 'b.glb', export_format='GLB')
bpy.ops.export_scene.gltf(filepath=out + 'b.gltf', export_format='GLTF_SEPARATE')
bpy.ops.export_scene.fbx(filepath=out + 'b.fbx')
bpy.ops.export_scene.fbx(filepath=out + 'packed.fbx', path_mode='COPY', embed_textures=True)
bpy.ops.wm.collada_export(filepath=out + 'b.dae')
bpy.ops.wm.obj_export(filepath=out + 'b.obj')
bpy.ops.export_mesh.ply(filepath=out + 'b.ply')
bpy.ops.export_mesh.stl(filepath=out + 'b.stl')

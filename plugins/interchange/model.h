// The scene as the writers want it: frames relative to the parent, points in the object's own
// frame, materials by name with their textures.
#ifndef INTERCHANGE_MODEL_H
#define INTERCHANGE_MODEL_H

#include "work.h"

#include <plugin/vesk.h>
#include <string>
#include <utility>
#include <vector>

struct model_material {
    std::string name; // no two have the same
    material look;
    std::string picture; // the texture's file as it is to be named in the model file, "" for none
    int texture = -1;    // the same in the program's table, unless it was not found
    bool twosided = true;
    float repeat[2] = {1, 1}, offset[2] = {0, 0}; // where the coordinates do not hold them
};

struct model_surface {
    int material; // of the model's
    int kind;     // SURFACE_POLYGON, SURFACE_LINE or SURFACE_CLOSED_LINE
    bool smooth;
    int first, count; // corners
    point3_t normal;
};

struct model_node {
    std::string name;
    int parent = -1; // an earlier node
    std::vector<int> children;
    bool light = false;
    float rotation[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1}; // v x rotation + place leads to the parent
    point3_t place = {0, 0, 0};
    bool moved = false;                    // the frame is not the parent's
    std::vector<point3_t> points, normals; // in the own frame; normals when they were wished
    std::vector<model_surface> surfaces;   // without those that show nothing
    std::vector<int> corners;              // indices of points
    std::vector<int> loose;                // points that no surface uses, when they were wished
    std::vector<float> uv;                 // two a corner when it is textured, else none
    bool textured = false;
    std::vector<unsigned char> colours; // three a point when it has any and they were wished
};

struct model {
    std::vector<model_node> nodes; // parents before their children
    std::vector<model_material> materials;
    double elements = 0; // points, surfaces and nodes
};

// The elements that a format has a place for; the others are counted in the report.
struct model_wishes {
    bool lines = true;
    bool lights = true;
    bool points = false; // that no surface uses
    bool pictures = true;
    bool smooth = true;
    bool normals = true;  // of the points; those of the surfaces are always there
    bool groups = true;   // else everything stands in the world's frame, and groups are left out
    bool polygons = true; // else how many are cut into triangles is noted
    bool sides = false;   // materials say which sides are drawn
    bool placing = false; // of textures, by materials; else by the texture coordinates
    bool colours = true;  // the materials' specular colour and so on
    bool ambient = true;  // their ambient colour
    bool tints = true;    // a diffuse colour beside a texture
    bool point_colours = false;
    enum { NAMED, NAMED_FOR_WEB, PACKED } keeping = NAMED; // of pictures; for the web: PNG or JPEG
};

// The whole world, or the part of it that was taken when the user cancelled. `filename` is that of
// the file to be written.
model take_model(job &work, const char *filename, const model_wishes &wishes);

// Copies pictures beside the file to be written that could only be named by an absolute path, or
// whose format was not wished. A picture that is not there keeps its name, without folders that
// only this machine has.
void place_pictures(model &scene, export_files &files, const std::string &filename,
                    const model_wishes &wishes);

// Three corner numbers (of the node) for each triangle of a polygon.
void cut_surface(const model_node &node, const model_surface &surface, std::vector<int> &out);

// One export: takes the scene, has `make` write its files, and reports the outcome. Returns 1 or 0.
template <class Make>
int export_scene(const char *filename, const char *format, const model_wishes &wishes, Make &&make)
{
    const std::string name = filename; // the messages let scripts run
    job work;
    export_files files(work);
    model scene = take_model(work, name.c_str(), wishes);
    if (wishes.pictures && wishes.keeping != model_wishes::PACKED)
        place_pictures(scene, files, name, wishes);
    make(work, std::as_const(scene), files, name);
    return files.finish(name, format);
}

inline bool is_line(const model_surface &surface) { return surface.kind != SURFACE_POLYGON; }

#endif

#ifndef VESK_MODULES_GLTF_MATERIALS_H
#define VESK_MODULES_GLTF_MATERIALS_H

#include "fileio/scene_stream.h"
#include "modules/gltf_file.h"

// A material as the program has it, and where its picture lies on the surfaces.
struct gltf_paint {
    plain_material look;
    bool twosided = false;
    bool other_pictures = false; // for bumps, shine and the like
    int coordinates = 0;         // the set of texture coordinates
    float offset[2] = {0, 0}, scale[2] = {1, 1};
    double turn = 0; // radians

    // Coordinates of the file, with v downwards, as those of the program.
    void place(float *uv) const;
};

class gltf_painter {
public:
    explicit gltf_painter(gltf_file &file, plain_scene *out) : file_(file), out_(*out) {}

    // By the materials' numbers. Their pictures within the file go to the scene's.
    std::vector<gltf_paint> paints();

private:
    gltf_paint paint(const json &source);
    void plain_look(const json &source, plain_material *m) const;
    void glossy_look(const json &glossy, plain_material *m) const;
    void take_picture(const json &texture, gltf_paint *paint);
    std::string picture_of(std::int64_t image);

    gltf_file &file_;
    plain_scene &out_;
    std::map<std::int64_t, std::string> pictures_; // by image
};

#endif

#ifndef VESK_FILEIO_SCENE_STREAM_H
#define VESK_FILEIO_SCENE_STREAM_H

// A scene as plain arrays, and its bytes, in which the helper process hands it to the program.
// Includes nothing of the project: both are built with it.

#include <string>
#include <string_view>
#include <vector>

struct plain_material {
    std::string name;
    float diffuse[3] = {1, 1, 1}, ambient[3] = {0.2f, 0.2f, 0.2f};
    float specular[3] = {0.5f, 0.5f, 0.5f}, emissive[3] = {};
    float shininess = 10; // 0 to 128
    float transparency = 0;
    std::string picture; // the texture's file as the model names it, "" for none
    float repeat[2] = {1, 1}, offset[2] = {};
};

enum { PLAIN_GROUP, PLAIN_POLY, PLAIN_LIGHT };
// Of a surface; the values of the scene's own flag word.
enum { PLAIN_CLOSED_LINE = 1, PLAIN_LINE = 2, PLAIN_SMOOTH = 0x10, PLAIN_TWOSIDED = 0x20 };

struct plain_node {
    std::string name;
    int kind = PLAIN_GROUP;
    int parent = -1;  // an earlier node, -1 for none
    int picture = -1; // the material whose texture lies on it, -1 for none
    float centre[3] = {};
    float rotation[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1}; // world orientation, rows
    std::vector<float> points;                       // in world coordinates, three each
    std::vector<int> offsets = {0}, corners; // surface i: corners offsets[i] .. offsets[i+1]-1
    std::vector<float> uv;                   // two a corner
    std::vector<unsigned char> colours;      // three a point, or none
    std::vector<int> materials, flags;       // one a surface
};

// A picture that lies within the model's file.
struct plain_image {
    std::string name; // of a file, without folders
    std::string bytes;
};

struct plain_scene {
    std::vector<plain_material> materials;
    std::vector<plain_node> nodes;
    std::vector<plain_image> images;
    std::vector<std::string> warnings;
};

std::string encode_scene(const plain_scene &scene);

// False when the bytes are no scene: every count is compared with the bytes that are there before
// anything of that size is made, and every index with the array it points into. `scene` then holds
// nothing of use.
bool decode_scene(std::string_view bytes, plain_scene *scene);

#endif

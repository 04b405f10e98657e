#ifndef VESK_MODULES_ASSIMP_MATERIALS_H
#define VESK_MODULES_ASSIMP_MATERIALS_H

#include "fileio/scene_stream.h"

#include <assimp/scene.h>

bool is_one_of(const std::string &word, std::initializer_list<const char *> words);

// "my%20wood.png" as it is in the folder.
std::string without_escapes(const std::string &address);

// The materials of a scene from a file of some suffix.
class material_reader {
public:
    material_reader(const aiScene &scene, const std::string &suffix);

    plain_material read(const aiMaterial &source) const;

    // Only there do files say which sides are drawn; COLLADA by an extra that many programs leave
    // out.
    bool twosided(const aiMaterial &source) const;

private:
    void take_picture(const aiMaterial &source, plain_material *m) const;
    [[nodiscard]] std::string generator() const;

    const aiScene &scene_;
    const bool addresses_; // pictures are named by them
    const bool tells_sides_;
};

#endif

#ifndef VESK_FILEIO_TEXTURE_BESIDE_H
#define VESK_FILEIO_TEXTURE_BESIDE_H

#include <string>

// The name by which a model's texture is to be searched: files made elsewhere name theirs by paths of
// that machine, while the file itself often lies beside the model.
std::string texture_to_search(const std::string &filename, const std::string &name);

#endif

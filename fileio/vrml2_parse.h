#ifndef VESK_FILEIO_VRML2_PARSE_H
#define VESK_FILEIO_VRML2_PARSE_H

// VRML 2.0 texts as nodes. Numbers and texts stay where they are in the file until somebody asks for
// them, so that a file costs little more than its own size.

#include "base/progress.h"

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

struct vrml2_node;

struct vrml2_value {
    enum kind_t : std::uint8_t { NOTHING, NUMBERS, TEXTS, WORD, NODES, IS } kind = NOTHING;
    std::string_view text; // numbers and texts with all that stands between them; a word
    std::vector<const vrml2_node *> nodes;
};

using vrml2_values = std::map<std::string_view, vrml2_value>;

// A type that the file makes itself; one that stands in another file has no body.
struct vrml2_proto {
    vrml2_values defaults;
    std::vector<const vrml2_node *> body;
};

struct vrml2_node {
    std::string_view type;
    std::string_view name; // by DEF
    std::string_view told; // by the comment before it, as this program's worlds have them
    const vrml2_proto *proto = nullptr;
    vrml2_values fields;
};

struct vrml2_file {
    std::string text; // what everything refers to
    std::deque<vrml2_node> nodes;
    std::deque<vrml2_proto> protos;
    std::vector<const vrml2_node *> top;
    std::vector<std::pair<std::string_view, const vrml2_proto *>> library; // of the whole file
    int routes = 0;
    int unknown_uses = 0; // names that USE gives before any DEF
};

// Fills the file from its text. "" or why it cannot be read, with the line.
std::string vrml2_parse(vrml2_file *file, progress_t &progress);

// The numbers of a value. What stands between them is as good as a blank.
void vrml2_numbers(std::string_view text, std::vector<float> *numbers);
void vrml2_numbers(std::string_view text, std::vector<int> *numbers);
// The texts of a value, their escapes undone.
std::vector<std::string> vrml2_texts(std::string_view text);

#endif

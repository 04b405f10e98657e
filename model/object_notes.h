#ifndef VESK_MODEL_OBJECT_NOTES_H
#define VESK_MODEL_OBJECT_NOTES_H

// Lines that the program keeps at the end of an object's data text, below the user's own: each begins
// with the mark of what it is about. They travel in files as data does.

#include "model/object.h"

#include <string>
#include <string_view>
#include <vector>

constexpr std::string_view note_of_selection_set = "selection-set ";
constexpr std::string_view note_of_dimension = "dimension ";
constexpr std::string_view note_of_vertex_colours = "vertex-colours ";

// The object's data text without those lines, and the text that it becomes with another one.
std::string object_user_data(const object_t *object);
void object_set_user_data(object_t *object, const std::string &text);

// Whether there is a line with this mark.
bool object_has_note(const object_t *object, std::string_view mark);
// The lines with this mark, without it.
std::vector<std::string> object_notes(const object_t *object, std::string_view mark);
void object_set_notes(object_t *object, std::string_view mark,
                      const std::vector<std::string> &lines);

// "VERTICES/SURFACES", what the object has: places of elements in a note hold while it is the same.
std::string object_counts(const object_t *object);

#endif

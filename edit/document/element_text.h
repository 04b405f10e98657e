#ifndef VESK_EDIT_DOCUMENT_ELEMENT_TEXT_H
#define VESK_EDIT_DOCUMENT_ELEMENT_TEXT_H

#include "model/list.h"

#include <string>
#include <vector>

// Elements of the model as a text that a script can keep: objects by their numbers ("3 7"),
// vertices and surfaces by their places in an object ("3:0-5,9 7:2"), both as the select mode takes
// them.

// Adds elements as the present select mode has them, or takes them out.
void change_selection(const listitem *elements, bool on);

// Places as a text with ranges, "0-5,9", and those of a text that lie below `count`.
std::string places_text(const std::vector<int> &places);
std::vector<int> places_of_text(const char *text, int count);

// Of a list as the present select mode has it: objects, surfaces or vertices. In tree order, but
// objects in the order of the list.
std::string element_text(const listitem *elements);

// The objects, surfaces or vertices of a text, by the present select mode; the caller frees the
// list. Hidden, locked and missing elements are left out; a bare object number in surface or vertex
// mode stands for all its elements.
listitem *elements_of_text(const char *text);

// Command "select_elements": "set", "add" or "remove", then a text as above.
void command_select_elements(const char *how, const char *text);

#endif

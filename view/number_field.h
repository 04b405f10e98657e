#ifndef VESK_VIEW_NUMBER_FIELD_H
#define VESK_VIEW_NUMBER_FIELD_H

#include <vector>

// Numbers that are typed during a drag: the first digit opens a field at the pointer, Tab chooses
// the next component, and opens the field there. The tools ask for the typed numbers; the field itself is drawn by the
// scripts.

enum { NUMBER_WITHOUT_AXIS = 3 };

struct number_part_t {
    const char *label;
    int axis; // its colour, or NUMBER_WITHOUT_AXIS
};

enum class number_key { unused, changed, accepted };

// A key (keysym) of a drag with these components; an unopened field opens at component `first`.
// Return is only taken while the field is open. Does not show anything yet.
number_key number_field_key(const char *key, const std::vector<number_part_t> &parts, int first);

bool number_field_is_open();
// Chooses another component of an open field.
void number_field_choose(int part);
// The number typed for a component; false while there is none.
bool number_field_value(int part, float *value);

// Shows the field at a place of a view, and closes it.
void number_field_show(int view, int x, int y);
void number_field_close();

#endif

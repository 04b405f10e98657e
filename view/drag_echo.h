#ifndef VESK_VIEW_DRAG_ECHO_H
#define VESK_VIEW_DRAG_ECHO_H

#include "edit/document/selection.h"
#include "edit/document/step.h"
#include "edit/drag_transform.h"
#include "edit/extrude.h"

#include <string>
#include <vector>

// Drags as console lines that repeat them.

// The words of the command that equals a drag of the selection; `own` turns each object about its
// own centre.
std::vector<std::string> words_of_change(const drag_change_t &change, bool own);
std::vector<std::string> words_of_extrusion(const point3_t &offset, extrude_sides sides);

// Elements, as the select mode has them, that were added, taken out, or became the selection. Where
// they are too many to be listed, a line says that.
void echo_selection(bool on, bool replace, const listitem *elements);
// The same of any command whose last word lists elements.
void echo_elements(const std::vector<std::string> &words);

// Echoes a change of the model (no words: there was none) and keeps it as the step of the history
// that "repeat_last" repeats.
void keep_step(step_t &step, const std::vector<std::string> &words, const char *label);

// Runs a command without its watch, as a part of a drag.
void run_in_drag(const std::vector<std::string> &words);
// Runs a command as what a drag did: echoed and kept when it changed something.
void run_as_step(const std::vector<std::string> &words, const char *label);

#endif

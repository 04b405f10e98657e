#ifndef VESK_EDIT_ALIGN_H
#define VESK_EDIT_ALIGN_H

// Things put in line: each selected object with its descendants, or else each selected vertex. All
// work along one axis (x, y, z or 0, 1, 2); what moves is one undo record.

// Command "align": brings the lower end, the middle or the upper end (min, centre, max) of each to
// that of the selection or of the first selected one, to the origin, or to the nearest point of the
// grid. Undo "align".
void command_align(int count, const char *const *words);

// Command "distribute": those between the lowest and the highest get even gaps, or even distances of
// their centres. Undo "distribute".
void command_distribute(int count, const char *const *words);

#endif

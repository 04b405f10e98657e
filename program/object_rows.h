#ifndef VESK_PROGRAM_OBJECT_ROWS_H
#define VESK_PROGRAM_OBJECT_ROWS_H

// Command "object_rows": the rows of the objects panel, which is told what differs from the last time:
// of a hundred thousand objects one was renamed.
void command_object_rows(int since);
// Commands "object_rows_begin" and "object_rows_part": the same in pieces. The first one's answer has how
// many rows there are instead of the rows; the second gives some of these, nothing after another answer.
void command_object_rows_begin(int since);
void command_object_rows_part(int number, int from, int count);
// Command "object_rows_edit": how the rows of that answer come from those of the one before, where most of
// them stay.
void command_object_rows_edit(int number);
// Command "selected_objects_part": so many of the selected objects, the first one being 0.
void command_selected_objects_part(int from, int count);
// Command "objects_are_selected": 1 or 0 for each of these objects.
void command_objects_are_selected(const char *ids);

#endif

#ifndef VESK_EDIT_OBJECT_PROPERTIES_H
#define VESK_EDIT_OBJECT_PROPERTIES_H

// Handler of "objects_set": IDS KEY VALUE gives these objects a name, url, data (texts), visible or
// locked (0 or 1, with descendants), type (poly, or group for one without geometry of its own). One undo record, which puts back what each object had. Objects
// that have the value already are left alone; an unknown key is told.
void command_objects_set(int count, const char *const *words);

#endif

#ifndef VESK_BASE_UNFINISHED_FILES_H
#define VESK_BASE_UNFINISHED_FILES_H

#include <string>

// Files that a write makes beside its target and renames over it when they are whole. They have names
// of their own kind and are locked while they are written, so that those of a process that was killed
// are known later. Includes nothing of the project.

// Makes one beside `target` and opens it for writing; -1, with errno, when that cannot be done. `name`
// becomes its name.
int make_unfinished_file(const std::string &target, std::string *name);

// Removes those in a folder that nobody writes: not locked, and not touched for a minute, for where
// locks are not kept. Each folder is looked through once a process. Any thread may call it.
void remove_unfinished_files(const std::string &folder);

#endif

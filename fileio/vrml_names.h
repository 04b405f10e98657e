#ifndef VESK_FILEIO_VRML_NAMES_H
#define VESK_FILEIO_VRML_NAMES_H

#include <string>

// What stands for a name behind DEF, where not every sign may: others become "_". VRML 1.0 and
// Inventor have plain ASCII words, VRML 2.0 all but blanks and its own signs. The full name then
// stands in a node of its own, by which readers here know it again.
std::string vrml1_node_name(const std::string &name);
std::string vrml2_node_name(const std::string &name);

#endif

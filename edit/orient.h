#ifndef VESK_EDIT_ORIENT_H
#define VESK_EDIT_ORIENT_H

// Command "orient_outwards": turns selected polygons over so that they agree with all that hang
// together with them across edges of two. Closed parts face outwards by their volume; open ones away
// from their middle, or where they have no such side, as most of them did. Parts that have no two sides (a twisted
// ring) are left as they are, and the message counts them. Undo "orient outwards"; the selection
// stays. Nothing to turn: only a word.
void command_orient_outwards();

#endif

#ifndef VESK_VIEW_TOOL_CREATE_H
#define VESK_VIEW_TOOL_CREATE_H

struct pointer_event_t;

// The create tools (draw modes 20 to 31) in the orthographic views: box tools drag from corner to
// corner, outlines go click by click, a light is one click. Every point snaps when gridsnap (which
// Control toggles for outlines) or snap_near is on. The new object is selected and the tool stays; one undo record each.

bool create_press(const pointer_event_t &event); // whether the tool wants the drag
void create_motion(const pointer_event_t &event);
void create_release(const pointer_event_t &event);
void create_cancel();

// The pointer moves without a button: the next edge of an outline follows it.
void create_hover(const pointer_event_t &event);

// Return ends an outline, BackSpace takes its last point back, Escape drops it; digits open the
// number field (sizes of a box, the way to an outline's next point), X, Y, Z lock an outline's next
// edge to an axis. `key` is a keysym. True when it was used.
bool create_key(const char *key);
void create_forget();

// While an outline is half drawn.
bool create_is_half_drawn();

void tool_create_reset_for_test();

#endif

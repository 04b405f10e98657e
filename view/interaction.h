#ifndef VESK_VIEW_INTERACTION_H
#define VESK_VIEW_INTERACTION_H

// The one state machine of the mouse in the views: positions, buttons, modifiers and times in;
// camera moves, model edits and redraw requests out. It knows no toolkit and is tested by feeding
// it events.

struct tool_t;

struct pointer_event_t {
    int view;
    int x, y;
    int button;     // of a press or release: 1 left, 2 middle, 3 right
    int state;      // modifiers
    double seconds; // monotonic
};

// Whether the pointer is still so near to a press that it is a click.
bool is_click(const pointer_event_t &press, const pointer_event_t &event);

enum class drag_kind {
    none,
    pan,        // flat views: the view; spin mode: the offset
    zoom,       // of the view, or of the viewer in spin mode
    turn,       // spin mode: the model
    walk,       // walk mode: forward, back, turns; speed by distance
    look,       // walk mode: looks around
    slide,      // walk mode: up, down, sideways
    axis_cross, // pressed on an end of the cross
    tool,       // taken by the tool of the left button
};

void interaction_press(const pointer_event_t &event);
void interaction_motion(const pointer_event_t &event);
void interaction_release(const pointer_event_t &event);
void interaction_leave(int view);

// One notch of the wheel, positive away from the user.
void interaction_wheel(int view, int direction);

// Continuous motion (walking, a flicked model): the shell calls this every interaction_tick_msecs
// while that is not 0.
void interaction_tick(double seconds);
int interaction_tick_msecs();

drag_kind interaction_drag();
int interaction_drag_view(); // VIEW_NONE without one

// Where the pointer was seen last in a view.
const pointer_event_t &interaction_pointer();

// Ends whatever runs and puts the view or the model back as it was before the drag.
void interaction_cancel();
// Ends a tool's drag as a release of the button would, where the pointer was last.
void interaction_accept();
// After a fault: ends whatever runs and touches nothing.
void interaction_forget();

// Whether view `view` moves now, or did a moment ago: it is then drawn within the budget.
bool view_is_moving(int view, double seconds);
void view_note_motion(int view, double seconds);

// Asks which tool has the left button where neither the camera nor the cross takes it (null: none).
// A drag stays with the tool that it began with; a press of the right button cancels it.
void interaction_set_tools(const tool_t *(*now)());

// Gives the pointer the shape that the tool names where it rests: something has changed there.
void interaction_show_pointer();

// Interface scale that the shell reports (1 at 96 dpi).
void view_set_interface_scale(double scale);
double view_interface_scale();

void interaction_reset_for_test();

#endif

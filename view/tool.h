#ifndef VESK_VIEW_TOOL_H
#define VESK_VIEW_TOOL_H

struct pointer_event_t;

// A tool of the left button: its answers to the pointer, in any view. A new tool is one file that
// fills such a record, and a row of the table in view/tools.cpp. Null functions do nothing.
struct tool_t {
    // Of "set_view_tool"; null for a tool of the draw modes, which `wanted` knows.
    const char *name = nullptr;
    bool (*wanted)() = nullptr;

    // Whether the tool wants the drag; else the press is the camera's.
    bool (*press)(const pointer_event_t &event) = nullptr;
    void (*motion)(const pointer_event_t &event) = nullptr;
    void (*release)(const pointer_event_t &event) = nullptr;
    // Ends a drag and takes its changes back.
    void (*cancel)() = nullptr;
    // A left click in the 3D view that was neither a drag nor on the axis cross.
    void (*click)(const pointer_event_t &event) = nullptr;
    // The shape of the pointer where a press would do that, by its Tk name ("glass" is a magnifying
    // glass); null where a click selects.
    const char *(*pointer)(const pointer_event_t &event) = nullptr;
    // Motion without a button; the pointer left the views.
    void (*hover)(const pointer_event_t &event) = nullptr;
    void (*outside)() = nullptr;
    // A key (a keysym) before the views' own keys; whether it was used.
    bool (*key)(const char *keysym) = nullptr;
    // A notch of the wheel, positive away from the user, before the view zooms; whether it was used.
    bool (*wheel)(int direction) = nullptr;
    // Another tool takes its place; drops unfinished work.
    void (*leave)() = nullptr;
    // Whether a drag is changing the model: an edit from elsewhere takes it back first.
    bool (*runs)() = nullptr;
    // After a fault: drops everything it remembers and touches nothing.
    void (*forget)() = nullptr;
};

// Pointers of tools that create, cut and measure: in every view, or in the flat ones.
const char *cross_pointer(const pointer_event_t &event);
const char *flat_cross_pointer(const pointer_event_t &event);

#endif

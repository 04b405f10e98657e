#ifndef VESK_VIEW_TOOL_EXTRA_H
#define VESK_VIEW_TOOL_EXTRA_H

struct pointer_event_t;

// Tools of the left button beside those of the draw modes: while one is on, the draw mode rests. A
// change of the draw mode ends it.

struct extra_tool_t {
    const char *name;
    bool (*press)(const pointer_event_t &event); // whether the tool wants the drag
    void (*motion)(const pointer_event_t &event);
    void (*release)(const pointer_event_t &event);
    void (*cancel)();
    void (*hover)(const pointer_event_t &event);
    bool (*key)(const char *keysym); // whether it was used
    void (*leave)();                 // the tool is put away
    void (*outside)();               // the pointer went out of the views; may be null
};

// The tool that is on; null for none.
const extra_tool_t *extra_tool();

// Command "set_view_tool": a name, or "none". Tells the scripts ("set_view_tool_ui").
void command_set_view_tool(const char *name);

void extra_tool_install();
void extra_tool_reset_for_test();

#endif

#ifndef VESK_EDIT_DOCUMENT_STEP_H
#define VESK_EDIT_DOCUMENT_STEP_H

#include <string>
#include <vector>

// One step of the history, made alike by commands and by drags: begun before the first change and
// kept after the last. A step that is dropped, because its drag was cancelled, leaves the history
// as it was; putting the model back is its owner's.
class step_t {
public:
    // The present selection is remembered: undo brings it back. A drag holds the history: whoever
    // asks meanwhile takes no state of a model on its way. A question, and what only selects, changes
    // nothing as a rule.
    enum class of { question, command, drag };
    explicit step_t(of maker);
    ~step_t();
    step_t(const step_t &) = delete;
    step_t &operator=(const step_t &) = delete;

    // Takes the new state, when something changed or an undo record was opened. `label` names it
    // unless a record does, `words` are the command that repeats it.
    void keep(const char *label, const std::vector<std::string> &words = {});
    // Model, selection and undo records as they were when the step began, which goes on.
    void take_back();
    // As keep, for a command that faulted: "take back" goes to the state before it.
    void keep_faulted(const char *label);

private:
    void end();

    bool holds_;
};

#endif

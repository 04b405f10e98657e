#include "edit/document/step.h"

#include "edit/document/journal.h"

#include <utility>

step_t::step_t(of maker) : holds_(maker == of::drag)
{
    journal_before_step(maker != of::question);
    if (holds_)
        journal_hold(true);
}

step_t::~step_t() { end(); }

void step_t::end()
{
    if (std::exchange(holds_, false))
        journal_hold(false);
}

void step_t::keep(const char *label, const std::vector<std::string> &words)
{
    end();
    journal_step(label, words);
}

void step_t::take_back() { journal_rewind(); }

void step_t::keep_faulted(const char *label)
{
    end();
    journal_step_after_fault(label);
}

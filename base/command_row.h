#ifndef VESK_BASE_COMMAND_ROW_H
#define VESK_BASE_COMMAND_ROW_H

#include "base/command_registry.h"

// Makes a row whose arity and letters are derived from the handler's signature, so that a row
// cannot disagree with its handler.

namespace command_row_detail {

template <class T>
constexpr char letter_of()
{
    if constexpr (std::is_same_v<T, int>) {
        return 'd';
    } else if constexpr (std::is_same_v<T, float>) {
        return 'f';
    } else {
        static_assert(std::is_same_v<T, const char *> || std::is_same_v<T, char *>);
        return 's';
    }
}
template <class... A>
struct letters {
    static constexpr char text[] = {letter_of<A>()..., '\0'};
};

} // namespace command_row_detail

template <class R, class... A>
own_command_t command_row(const char *name, R (*handler)(A...), command_kind kind,
                          const char *usage = nullptr, const char *help = nullptr)
{
    return {{name, reinterpret_cast<vesk_command_func_t>(handler), static_cast<int>(sizeof...(A)),
             sizeof...(A) == 0 ? nullptr : command_row_detail::letters<A...>::text, usage, help},
            kind};
}

// A row whose handler gets between `fewest` and `most` words.
inline own_command_t command_row(const char *name, command_words_t handler, command_kind kind,
                                 int fewest, int most, const char *usage, const char *help)
{
    return {{name, reinterpret_cast<vesk_command_func_t>(handler), fewest, nullptr, usage, help},
            kind,
            true,
            most};
}

#endif

#include "base/tokens.h"

#include "base/numbers.h"

namespace {

// Both return the place after the token's terminator, or of the end of the text.
char *end_plain(char *p)
{
    while (*p != '\0' && !is_blank(*p))
        ++p;
    if (*p != '\0')
        *p++ = '\0';
    return p;
}

char *end_quoted(char *p)
{
    char *out = p;
    while (*p != '\0' && *p != '"' && *p != '\n' && *p != '\r') {
        if (*p == '\\' && *++p == '\0') // a backslash at the very end stands for nothing
            break;
        *out++ = *p++;
    }
    const bool more = *p != '\0';
    *out = '\0';
    return more ? p + 1 : p;
}

} // namespace

int vesk_get_tokens(char *line, int *count, char **tokens)
{
    int n = 0;
    for (char *p = line;;) {
        while (is_blank(*p))
            ++p;
        if (*p == '\0')
            break;
        const bool quoted = *p == '"';
        char *token = quoted ? p + 1 : p;
        p = quoted ? end_quoted(token) : end_plain(token);
        if (n < VESK_MAX_TOKENS)
            tokens[n] = token;
        ++n;
    }
    if (count != nullptr)
        *count = n;
    return n;
}

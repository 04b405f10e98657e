#include "base/counted.h"

std::string counted(int count, std::string_view plural)
{
    std::string word(plural);
    if (count == 1 && word.ends_with("vertices"))
        word.replace(word.size() - 4, 4, "ex");
    else if (count == 1 && word.ends_with("ies"))
        word.replace(word.size() - 3, 3, "y");
    else if (count == 1 && word.ends_with("s"))
        word.pop_back();
    return std::to_string(count) + " " + word;
}

#include "tests/support/damage.h"

#include <cstdlib>

int damage_setting(const char *name, int fallback)
{
    const char *text = std::getenv(name);
    return text != nullptr ? std::atoi(text) : fallback;
}

int fewer_when_checked(int all)
{
#ifdef VESK_INSTRUMENTED
    return all / 3;
#else
    return all;
#endif
}

std::string damaged(std::string bytes, std::mt19937 &random)
{
    constexpr char likely[] = "0123456789-./ \n\x7f\xff";
    for (unsigned changes = 1 + random() % 4; changes > 0 && !bytes.empty(); --changes) {
        const std::size_t at = random() % bytes.size();
        switch (random() % 5) {
        case 0:
            bytes[at] = static_cast<char>(random());
            break;
        case 1:
            bytes[at] = likely[random() % (sizeof likely - 1)];
            break;
        case 2:
            if (random() % 3 == 0)
                bytes.resize(at);
            break;
        case 3:
            bytes.erase(at, 1 + random() % 4);
            break;
        default:
            bytes.insert(at, bytes.substr(random() % bytes.size(), 8));
            break;
        }
    }
    return bytes;
}

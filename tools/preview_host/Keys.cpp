/// Looking keys up, and listing them.
#include "Keys.h"

namespace preview_host {

std::optional<Action> actionOf(char character)
{
    for (const Key& key : kKeys)
        if (key.character == character)
            return key.action;
    return std::nullopt;
}

std::string keyList()
{
    std::string list;
    for (const Key& key : kKeys)
        list += std::string("  ") + key.character + "  " + key.effect + '\n';
    return list;
}

} // namespace preview_host

/// Identifiers by libuuid.
#include "support/KSXuuid.h"

#include <uuid/uuid.h>

#include <cstdio>

static_assert(sizeof(KSXuuid::bytes) == sizeof(uuid_t));

KSXuuid KSXuuid_Generate()
{
    KSXuuid uuid{};
    uuid_generate(uuid.bytes);
    return uuid;
}

std::string KSXuuidToStdString(KSXuuid uuid)
{
    std::string text;
    for (const std::uint8_t byte : uuid.bytes) {
        char digits[3];
        std::snprintf(digits, sizeof(digits), "%02X", byte);
        text += digits;
    }
    return text;
}

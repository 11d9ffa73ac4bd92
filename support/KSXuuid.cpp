/// Makes identifiers with libuuid.
#include "support/KSXuuid.h"

#include <uuid/uuid.h>

static_assert(sizeof(KSXuuid::bytes) == sizeof(uuid_t));

KSXuuid KSXuuid_Generate()
{
    KSXuuid uuid{};
    uuid_generate(uuid.bytes);
    return uuid;
}

std::string KSXuuidToStdString(KSXuuid uuid)
{
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (const std::uint8_t byte : uuid.bytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0xf];
    }
    return text;
}

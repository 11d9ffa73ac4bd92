/// Identifiers that are unique in the world.
#pragma once

#include <cstdint>
#include <string>

/// An identifier of 16 bytes, in the byte order of RFC 4122.
struct KSXuuid {
    std::uint8_t bytes[16];
};

/// Makes an identifier that no one else has: random where the system has good random numbers, by
/// clock and network address otherwise. Any thread.
KSXuuid KSXuuid_Generate();

/// The bytes in order as 32 upper-case hexadecimal digits, no hyphens. Throws `std::bad_alloc`.
std::string KSXuuidToStdString(KSXuuid uuid);

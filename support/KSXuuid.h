/// Universally unique identifiers.
#pragma once

#include <cstdint>
#include <string>

/// An identifier of 16 bytes, in the byte order of RFC 4122.
struct KSXuuid {
    std::uint8_t bytes[16];
};

/// Makes a unique identifier: random if the system has good random numbers, and otherwise from the
/// clock and the network address. May be called on any thread.
KSXuuid KSXuuid_Generate();

/// The bytes in order as 32 upper-case hexadecimal digits, without hyphens. Throws
/// `std::bad_alloc`.
std::string KSXuuidToStdString(KSXuuid uuid);

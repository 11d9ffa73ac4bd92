/// Structs that cross the interface and may be of another version than the library.
#pragma once

#include "convert/KestrixPixelConversion.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace kestrix {

/// No version of a struct is larger. Bytes that a caller may not have are not read.
constexpr std::size_t kLargestStruct = 4096;

/// Copies a caller's struct. Every version so far has all members.
template<class STRUCT>
kestrix_status readStruct(const STRUCT* given, STRUCT& own)
{
    if (!given)
        return KESTRIX_NULL_POINTER;
    const std::size_t size = given->struct_size;
    if (size < sizeof(STRUCT) || size > kLargestStruct)
        return KESTRIX_BAD_STRUCT_SIZE;
    const auto* const bytes = reinterpret_cast<const unsigned char*>(given);
    if (std::any_of(bytes + sizeof(STRUCT), bytes + size, [](auto byte) { return byte != 0; }))
        return KESTRIX_BAD_STRUCT_SIZE;
    own = *given;
    return KESTRIX_OK;
}

/// Whether a caller's struct can be filled.
template<class STRUCT>
kestrix_status canFill(const STRUCT* given)
{
    if (!given)
        return KESTRIX_NULL_POINTER;
    const bool known = given->struct_size >= sizeof(STRUCT) && given->struct_size <= kLargestStruct;
    return known ? KESTRIX_OK : KESTRIX_BAD_STRUCT_SIZE;
}

/// Fills a caller's struct. Its size stays.
template<class STRUCT>
void fillStruct(const STRUCT& own, STRUCT* given)
{
    const std::size_t size = given->struct_size;
    std::memset(reinterpret_cast<unsigned char*>(given) + sizeof(STRUCT), 0, size - sizeof(STRUCT));
    *given = own;
    given->struct_size = size;
}

} // namespace kestrix

/// Strings that are passed through an interface. They are plain `char` pointers from `strdup`, and
/// the receiver frees them with `free`.
///
/// Reentrant. No pointer may be null.
#pragma once

#include <cstddef>
#include <string>

/// Bytes that a copy of `source` needs, with its terminating 0.
std::size_t KSXstringBytesRequired(const char* source);

/// Stores a copy of `source` in `out` and returns it. Null if allocation fails.
const char* KSXstringFromCharArray(const char** out, const char* source);

/// The same for the characters of `source` up to the first 0.
const char* KSXstringFromStdString(const char** out, const std::string& source);

/// Copies `source` to the `length` bytes at `destination`. Truncates it to `length` - 1 characters
/// if it is longer, and fills the rest with 0 if it is shorter. The result always ends with a 0.
/// `length` is at least 1.
void KSXstringToCharArray(const char* source, char* destination, unsigned length);

/// Makes `destination` equal to `source`. Throws `std::bad_alloc`.
void KSXstringToStdString(const char* source, std::string& destination);

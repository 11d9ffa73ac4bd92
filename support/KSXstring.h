/// Strings that cross an interface: plain `char` pointers, made by `strdup`, which the receiver
/// gives back by `free`.
///
/// Reentrant. No pointer may be null.
#pragma once

#include <cstddef>
#include <string>

/// Bytes that a copy of `source` takes, the terminating 0 counted.
std::size_t KSXstringBytesRequired(const char* source);

/// Stores a copy of `source` in `out` and returns it. Null where memory is short.
const char* KSXstringFromCharArray(const char** out, const char* source);

/// The same of the characters of `source`, up to the first 0.
const char* KSXstringFromStdString(const char** out, const std::string& source);

/// Copies `source` to the `length` bytes at `destination`, cut to `length` - 1 characters where it
/// is longer, filled with 0 where it is shorter; always terminated. `length` is 1 or more.
void KSXstringToCharArray(const char* source, char* destination, unsigned length);

/// Makes `destination` equal to `source`. Throws `std::bad_alloc`.
void KSXstringToStdString(const char* source, std::string& destination);

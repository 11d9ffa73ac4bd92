/// Copies of strings.
#include "support/KSXstring.h"

#include <cstring>

std::size_t KSXstringBytesRequired(const char* source)
{
    return std::strlen(source) + 1;
}

const char* KSXstringFromCharArray(const char** out, const char* source)
{
    return *out = strdup(source);
}

const char* KSXstringFromStdString(const char** out, const std::string& source)
{
    return KSXstringFromCharArray(out, source.c_str());
}

void KSXstringToCharArray(const char* source, char* destination, unsigned length)
{
    std::strncpy(destination, source, length);
    destination[length - 1] = '\0';
}

void KSXstringToStdString(const char* source, std::string& destination)
{
    destination.assign(source);
}

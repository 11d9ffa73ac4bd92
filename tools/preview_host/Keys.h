/// The keys, and what each of them does.
#pragma once

#include <algorithm>
#include <iterator>
#include <string>

namespace preview_host {

enum class Action {
    NextFormat,
    PreviousFormat,
    OtherRange,
    NextColorspace,
    Next3D,
    OtherHelper,
    OtherCapture,
    TellTimes,
    TellKeys,
    Quit,
};

struct Key {
    char character;
    Action action;
    const char* effect;
};

inline constexpr Key kKeys[] = {
    {'f', Action::NextFormat, "show the picture in the next pixel format that the helper shows"},
    {'F', Action::PreviousFormat, "show it in the previous one"},
    {'r', Action::OtherRange, "show it in the other range, full or studio, if the format has both"},
    {'c', Action::NextColorspace, "let the frames state r601, r709, 2020 or none, in turn"},
    {'3', Action::Next3D, "use the next 3D mode: default, left, right, side, topbottom"},
    {'h', Action::OtherHelper, "use the other helper, gl or gl3"},
    {'m', Action::OtherCapture, "mark the frames as captured, or not"},
    {'t', Action::TellTimes, "print the frame times"},
    {'?', Action::TellKeys, "print the keys"},
    {'q', Action::Quit, "quit; so does Escape"},
};

/// The key with that character, or null.
inline const Key* findKey(char character)
{
    const Key* key = std::find_if(std::begin(kKeys), std::end(kKeys),
                                  [=](const Key& each) { return each.character == character; });
    return key == std::end(kKeys) ? nullptr : key;
}

/// A line for each key.
inline std::string keyList()
{
    std::string list;
    for (const Key& key : kKeys)
        list += std::string("  ") + key.character + "  " + key.effect + '\n';
    return list;
}

} // namespace preview_host

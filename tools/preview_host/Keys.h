/// The keys: which there are, what each does, and how they are told to the user.
#pragma once

#include <optional>
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
    {'f', Action::NextFormat, "show the picture in the next pixel format"},
    {'F', Action::PreviousFormat, "in the one before"},
    {'r', Action::OtherRange, "in the other range, full or studio, where the format has both"},
    {'c', Action::NextColorspace, "have the frames state r601, r709, 2020 or none, in turn"},
    {'3', Action::Next3D, "the next 3D mode: default, left, right, side, topbottom"},
    {'h', Action::OtherHelper, "the other helper, gl or gl3"},
    {'m', Action::OtherCapture, "mark the frames as captured, or not"},
    {'t', Action::TellTimes, "print the frame times"},
    {'?', Action::TellKeys, "print the keys"},
    {'q', Action::Quit, "quit; so does Escape"},
};

/// What the key does, if it does anything.
std::optional<Action> actionOf(char character);

/// A line for each key.
std::string keyList();

} // namespace preview_host

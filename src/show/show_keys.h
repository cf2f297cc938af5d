#pragma once

#include <QtCore/qnamespace.h>

#include <cstdint>

namespace varnholt {

class Show;

/// What a key was for.
enum class ShowKey : std::int8_t
{
    /// Nothing.
    Unknown,
    /// Something that the show has done.
    Done,
    /// The pupils' window is to go to the other screen.
    SwapScreens,
    /// The show is to end.
    End
};

/// So many seconds more or fewer are one press.
inline constexpr int stretchSeconds = 15;

/// Does in a show what a key stands for, as keyboards and the remote controls of lecturers send
/// it.
ShowKey PressShowKey(Show& show, int key, Qt::KeyboardModifiers modifiers);

} // namespace varnholt

/// Keys that we press in the user's stead. Synchronous and short.
#pragma once

#include "platform/Pasteboard.h"
#include "platform/RunningApplication.h"

#include <QStringList>

namespace velorin {

enum class Chord { copy, paste };

class SyntheticKeyboard {
public:
    virtual ~SyntheticKeyboard() = default;

    /// Posts the key combination by which this application copies or pastes; none stands for an unknown
    /// application. Programs of one kin may differ in their keys, so the whole application is asked for.
    /// Modifiers that the user holds do not take part. False when nothing could be posted.
    [[nodiscard]] virtual bool chord(Chord chord, const std::optional<RunningApplication>& application) = 0;

    /// Types the characters, each of one or more code points, into what has the keyboard, whatever the
    /// layout. Modifiers that the user holds do not take part. Gives how many were posted; nothing, with
    /// nothing posted, when they cannot all be typed well: no server, too many for the pace that
    /// applications keep up with, too many that the keyboard lacks, a tab, which leaves the field in many
    /// places, or characters that this application is known to cut.
    [[nodiscard]] virtual std::optional<qsizetype>
    type(const QStringList& characters, const std::optional<RunningApplication>& application) = 0;

    /// What the application will read when it gets the paste chord.
    [[nodiscard]] virtual PasteboardSelection
    pasteSource(const std::optional<RunningApplication>& application) const = 0;
};

} // namespace velorin

/// Keys that we press in the user's stead. Synchronous and short.
#pragma once

#include <QString>

namespace velorin {

enum class Chord { copy, paste };

class SyntheticKeyboard {
public:
    virtual ~SyntheticKeyboard() = default;

    /// Posts the key combination for which the application of this kin copies or pastes; an empty kin
    /// is that of an unknown application. Modifiers that the user holds do not take part in it. False when
    /// nothing could be posted.
    [[nodiscard]] virtual bool chord(Chord chord, const QString& kin) = 0;
};

} // namespace velorin

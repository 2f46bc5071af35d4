/// Types a text on one connection.
///
///     Typist typist(connection, state, spares);
///     const auto posted = typist.type({u"a"_s, u"ß"_s, u"漢"_s});
///
/// Of the layouts that the user has, the text is typed in the one that has most of its characters, the
/// present one before others. Whoever reads keys looks them up in the layout of that moment, so each handful
/// goes out while the server listens to nobody else, after a look at what the layout is.
#pragma once

#include "platform/linux/x11/KeyWriter.h"
#include "platform/linux/x11/LayoutCharacters.h"
#include "platform/linux/x11/SpareKeys.h"

#include <QStringList>

namespace velorin {

class Typist final {
public:
    /// A key a millisecond is what slow programs keep up with; nobody waits longer than this for a text.
    static constexpr std::chrono::milliseconds pace{1};
    static constexpr std::chrono::milliseconds longestTyping{300};
    static constexpr int handful = 8;
    /// How much longer than the longest it may take to bring what has begun to its end: half a text is the
    /// worst of all, and whoever tries another road would bring the beginning twice.
    static constexpr std::chrono::milliseconds patience{300};

    /// Connections without what this takes make `type` decline.
    Typist(XConnection& connection, SharedKeyState& state, SpareKeys& spares);

    /// As SyntheticKeyboard::type.
    [[nodiscard]] std::optional<qsizetype> type(const QStringList& characters);

private:
    using Characters = std::vector<std::u32string>;

    [[nodiscard]] bool refreshLayout(std::span<const std::u32string> characters, Deadline deadline);
    [[nodiscard]] bool mapHasChanged();
    void lockGroup(std::uint32_t group);
    [[nodiscard]] bool makeTypable(std::span<const std::u32string> characters, Deadline deadline);
    [[nodiscard]] bool postHandful(KeyWriter& keys, std::span<const std::u32string> characters,
                                   std::span<const std::u32string> rest);
    void post(KeyWriter& keys, std::span<const std::u32string> characters);

    XConnection& connection_;
    SharedKeyState& state_;
    SpareKeys& spares_;
    bool hasKeyboardExtension_ = false;
    std::optional<KeyboardMap> map_;
    std::optional<LayoutCharacters> layout_;
    bool isStale_ = false; ///< The keyboard is another than these two tell.
};

} // namespace velorin

/// What applications exchange by copy and paste, as far as a paste in the user's stead needs it: the user's
/// content is saved, text of ours takes its place for a moment, and the content comes back.
///
///     auto saved = pasteboard.save(PasteboardSelection::clipboard, 300ms);   // before it is ours
///     auto count = pasteboard.write(PasteboardSelection::clipboard, text);
///     …                                                                      // the application pastes
///     pasteboard.restore(PasteboardSelection::clipboard, *saved, *count);    // only if it is still ours
///
/// May be called from any thread; each operation waits for its answer, within a deadline. An operation on a
/// desktop that is gone fails as each says.
#pragma once

#include <QByteArray>
#include <QString>

#include <algorithm>
#include <chrono>
#include <optional>
#include <vector>

namespace velorin {

/// `primary` is what has been selected with the mouse, which some programs paste from.
enum class PasteboardSelection { clipboard, primary };

/// The published marks of content that only passes through, and of content that nobody should keep.
inline constexpr char transientType[] = "org.nspasteboard.TransientType";
inline constexpr char concealedType[] = "org.nspasteboard.ConcealedType";

/// One form in which content is offered, byte for byte as its owner gave it. `valueType` and `unitBits`
/// (8, 16 or 32) belong to the bytes as much as a name does.
struct PasteboardEntry {
    QByteArray type;
    QByteArray valueType;
    int unitBits = 8;
    QByteArray data;

    bool operator==(const PasteboardEntry&) const = default;
};

/// All forms, in the order in which they are offered. Empty: there was nothing on the pasteboard.
using PasteboardContents = std::vector<PasteboardEntry>;

/// The mark that password managers here set for clipboard managers.
inline constexpr char passwordHintType[] = "x-kde-passwordManagerHint";

/// Whether its owner wants nobody to keep it.
[[nodiscard]] inline bool isSecret(const PasteboardContents& contents) {
    return std::ranges::any_of(contents, [](const PasteboardEntry& entry) {
        return entry.type == concealedType || (entry.type == passwordHintType && entry.data == "secret");
    });
}

/// Somebody who has read what we wrote, to the last byte.
struct PasteboardFetch {
    qint64 processIdentifier = 0; ///< 0 where it cannot be told.
    bool isClipboardManager = false;

    bool operator==(const PasteboardFetch&) const = default;
};

class Pasteboard {
public:
    virtual ~Pasteboard() = default;

    /// Everything that is offered now. Nothing when it cannot be had whole within the deadline, or is more
    /// than anybody would want held in memory.
    [[nodiscard]] virtual std::optional<PasteboardContents> save(PasteboardSelection selection,
                                                                 std::chrono::milliseconds deadline) = 0;

    /// Offers the text, marked transient and concealed; gives the change count that belongs to it. Nothing
    /// when the selection could not be had: then it is as it was.
    [[nodiscard]] virtual std::optional<quint64> write(PasteboardSelection selection,
                                                       const QString& text) = 0;

    /// Offers the text as if the user had copied it: without any mark, and to stay. False when the selection
    /// could not be had: then it is as it was.
    virtual bool copy(PasteboardSelection selection, const QString& text) = 0;

    /// Offers what was saved again, marked transient; what cannot be offered is left out. Does nothing and
    /// answers false when the change count is another than `expected`: somebody's newer content wins.
    /// Empty contents clear the selection.
    virtual bool restore(PasteboardSelection selection, const PasteboardContents& contents,
                         quint64 expected) = 0;

    /// Grows with each change of owner, whoever caused it; our own takeover counts before `write` returns.
    [[nodiscard]] virtual quint64 changeCount(PasteboardSelection selection) = 0;

    /// The content as text; nothing when it has no such form or the deadline passes.
    [[nodiscard]] virtual std::optional<QString> read(PasteboardSelection selection,
                                                      std::chrono::milliseconds deadline) = 0;

    /// Gives whoever has asked for what we wrote last a reason to wake up. Some programs fall asleep over an
    /// answer that has reached them already. Does not wait.
    virtual void stirReaders(PasteboardSelection selection) = 0;

    /// Who has read our text since the last `write`, in order, also when it is no longer there.
    [[nodiscard]] virtual std::vector<PasteboardFetch> fetches(PasteboardSelection selection) = 0;

    /// Waits until there are more than `known` fetches since the last `write`. False when the deadline
    /// passes.
    [[nodiscard]] virtual bool awaitFetch(PasteboardSelection selection, std::size_t known,
                                          std::chrono::milliseconds deadline) = 0;
};

} // namespace velorin

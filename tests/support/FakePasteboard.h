/// Records what was asked of it, one line a call, and answers what the test set.
#pragma once

#include "platform/Pasteboard.h"

#include <QStringList>

namespace velorin {

class FakePasteboard final : public Pasteboard {
public:
    struct Restored {
        PasteboardSelection selection;
        PasteboardContents contents;
        quint64 expected;
    };

    QStringList calls;
    std::optional<PasteboardContents> saved = PasteboardContents{};
    std::optional<quint64> written = 1;
    quint64 count = 1;
    std::optional<QString> text;
    std::vector<PasteboardFetch> fetched;
    /// What happens while somebody waits for a fetch; false when the deadline passes.
    std::function<bool()> onAwaitFetch = [] { return false; };
    /// Called with each call, on its thread, before it is answered.
    std::function<void(const QString&)> onCall = [](const QString&) {};
    std::vector<QString> texts;
    std::vector<Restored> restored;
    std::vector<QString> copied;

    std::optional<PasteboardContents> save(PasteboardSelection selection,
                                           std::chrono::milliseconds) override {
        note("save", selection);
        return saved;
    }
    std::optional<quint64> write(PasteboardSelection selection, const QString& value) override {
        note("write", selection);
        texts.push_back(value);
        return written;
    }
    bool copy(PasteboardSelection selection, const QString& value) override {
        note("copy", selection);
        copied.push_back(value);
        return written.has_value();
    }
    bool restore(PasteboardSelection selection, const PasteboardContents& contents,
                 quint64 expected) override {
        note("restore", selection);
        restored.push_back({selection, contents, expected});
        return expected == count;
    }
    quint64 changeCount(PasteboardSelection) override { return count; }
    std::optional<QString> read(PasteboardSelection selection, std::chrono::milliseconds) override {
        note("read", selection);
        return text;
    }
    void stirReaders(PasteboardSelection selection) override { note("stir", selection); }
    std::vector<PasteboardFetch> fetches(PasteboardSelection) override { return fetched; }
    bool awaitFetch(PasteboardSelection selection, std::size_t, std::chrono::milliseconds) override {
        note("awaitFetch", selection);
        return onAwaitFetch();
    }

private:
    void note(const char* what, PasteboardSelection selection) {
        const bool isPrimary = selection == PasteboardSelection::primary;
        calls.append(QString::fromLatin1(what) + QString::fromLatin1(isPrimary ? " primary" : " clipboard"));
        onCall(calls.last());
    }
};

} // namespace velorin

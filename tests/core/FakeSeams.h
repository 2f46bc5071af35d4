/// The neighbours of a dictation session, told by the test what to answer.
#pragma once

#include "core/FinishingOperations.h"
#include "core/Overlay.h"
#include "core/SelectionOperations.h"
#include "platform/Gate.h"

#include <QStringList>

namespace velorin {

class FakeFinishing final : public FinishingOperations {
public:
    bool configured = false;
    bool transcribes = false;
    /// Where all four wait, whoever overtakes them.
    Gate gate{true};
    /// One line a flow, such as "generate a poem | context".
    QStringList flows;
    std::vector<qint64> generations;
    /// What they come to; a text for none, so that nothing is kept or inserted.
    Transcription transcription;
    QString answer;

    bool aiConfigured() const override { return configured; }
    bool providerTranscriptionActive() const override { return transcribes; }
    QCoro::Task<Transcription> transcribed(SharedDictation dictation, Asking asking) override {
        note(QStringLiteral("transcribe ") + dictation->recording->path(), *dictation);
        asking(AIProcessing::transcribe);
        co_await gate.opened();
        co_return std::as_const(transcription); // a task moves what is not const
    }
    QCoro::Task<Ending> generated(SharedDictation dictation, QString instruction,
                                  std::optional<QString> context, Asking asking) override {
        note(QStringLiteral("generate ") + instruction + QStringLiteral(" | ") +
                 context.value_or(QStringLiteral("none")),
             *dictation);
        asking(AIProcessing::generate);
        co_await gate.opened();
        co_return ending(QStringLiteral("generate"), instruction);
    }
    QCoro::Task<Ending> edited(SharedDictation dictation, QString instruction, Asking asking) override {
        note(QStringLiteral("edit ") + dictation->selection->text, *dictation);
        asking(AIProcessing::edit);
        co_await gate.opened();
        Ending edit = ending(QStringLiteral("edit"), instruction);
        edit.replaces = dictation->selection;
        co_return edit;
    }
    QCoro::Task<Ending> polished(SharedDictation dictation, QString base, Asking asking) override {
        note(QStringLiteral("polish ") + base + QStringLiteral(" | ") + dictation->transcript(), *dictation);
        asking(AIProcessing::polish);
        co_await gate.opened();
        co_return ending(QStringLiteral("dictation"), dictation->transcript());
    }

private:
    void note(const QString& flow, const Dictation& dictation) {
        flows.append(flow);
        generations.push_back(dictation.generation);
    }
    [[nodiscard]] Ending ending(const QString& kind, const QString& raw) const {
        return {.text = answer, .raw = raw, .kind = kind, .problem = {}, .replaces = {}};
    }
};

class FakeSelection final : public SelectionOperations {
public:
    std::optional<SelectionSnapshot> answer;
    std::optional<QString> context;
    Gate gate{true};
    bool stillSelected = true;
    int snapshots = 0;
    int contextReads = 0;

    QCoro::Task<std::optional<SelectionSnapshot>> snapshot(RunningApplication) override {
        ++snapshots;
        co_await gate.opened();
        co_return std::as_const(answer); // a task moves what is not const
    }
    QCoro::Task<bool> isStillSelected(SelectionSnapshot) override {
        co_await gate.opened();
        co_return stillSelected;
    }
    std::optional<QString> contextText() override {
        ++contextReads;
        return context;
    }
};

class FakeOverlay final : public Overlay {
public:
    QStringList calls;

    void show(AppModel&) override { calls.append(QStringLiteral("show")); }
    void hide() override { calls.append(QStringLiteral("hide")); }
};

} // namespace velorin

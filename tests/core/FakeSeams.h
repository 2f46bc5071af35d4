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
    Gate gate{true};
    /// One line a flow, such as "generate a poem | context".
    QStringList flows;
    std::vector<qint64> generations;

    bool aiConfigured() const override { return configured; }
    bool providerTranscriptionActive() const override { return transcribes; }
    QCoro::Task<> transcribeWithProvider(QString audioPath, qint64 generation) override {
        note(QStringLiteral("transcribe ") + audioPath, generation);
        co_await gate.opened();
    }
    QCoro::Task<> finishGenerate(QString instruction, std::optional<QString> context,
                                 qint64 generation) override {
        note(QStringLiteral("generate ") + instruction + QStringLiteral(" | ") +
                 context.value_or(QStringLiteral("none")),
             generation);
        co_await gate.opened();
    }
    QCoro::Task<> finishEdit(SelectionSnapshot selection) override {
        note(QStringLiteral("edit ") + selection.text, -1);
        co_await gate.opened();
    }
    QCoro::Task<> finishPolish(QString base, QString raw, qint64 generation) override {
        note(QStringLiteral("polish ") + base + QStringLiteral(" | ") + raw, generation);
        co_await gate.opened();
    }

private:
    void note(const QString& flow, qint64 generation) {
        flows.append(flow);
        generations.push_back(generation);
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
        co_return answer;
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

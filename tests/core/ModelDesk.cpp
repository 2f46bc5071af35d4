#include "tests/core/ModelDesk.h"

#include <QCoreApplication>

namespace velorin {

ModelDesk::ModelDesk() {
    folders.data = home.path();
    folders.temporary = home.path();
    workspace.frontmost = editor();
    keyboard.canType = false; // what is delivered is looked for on the clipboard
}

ModelDesk::~ModelDesk() { endModel(); }

RunningApplication ModelDesk::editor() {
    return {.processIdentifier = 42,
            .bundleIdentifier = QStringLiteral("org.xfce.mousepad"),
            .kin = QStringLiteral("com.apple.TextEdit"),
            .localizedName = QStringLiteral("Mousepad"),
            .executablePath = {},
            .window = 7};
}

AppModel& ModelDesk::start() {
    auto newFinishing = std::make_unique<FakeFinishing>();
    finishing = newFinishing.get();
    return start(std::move(newFinishing));
}

AppModel& ModelDesk::startWithFlows() {
    finishing = nullptr;
    return start(nullptr);
}

AppModel& ModelDesk::start(std::unique_ptr<FakeFinishing> newFinishing) {
    auto newSelection = std::make_unique<FakeSelection>();
    selection = newSelection.get();
    model = std::make_unique<AppModel>(platform, AppModel::Seams{.finishing = std::move(newFinishing),
                                                                 .selection = std::move(newSelection),
                                                                 .hud = hud});
    return *model;
}

void ModelDesk::endModel() {
    if (!model)
        return;
    openGates();
    settle();
    if (model->isRecording()) {
        model->toggleDictation();
        settle();
    }
    waitUntilSettled();
    model.reset();
}

void ModelDesk::openGates() {
    for (Gate* gate : {&trust.microphoneGate, &recognition.statusGate, &recognition.downloadGate,
                       &recognition.finalizationGate, &audioInput.formatGate, &audioInput.startGate,
                       &audioInput.stopGate, &selection->gate, &chatSession.gate, &transcriptionSession.gate})
        gate->open();
    for (const auto& transcriber : recognition.transcribers)
        transcriber->isRecognised.open();
    for (auto* session : {&chatSession, &transcriptionSession})
        while (!session->pending.empty())
            session->answerPending(0, session->answer);
    if (finishing)
        finishing->gate.open();
}

bool ModelDesk::waitUntilSettled() const {
    return waitUntil([this] { return model->isSettled(); });
}

void ModelDesk::settle() {
    for (int round = 0; round < 8; ++round)
        QCoreApplication::sendPostedEvents();
}

void ModelDesk::edge(ShortcutEvent event) {
    model->handleShortcutEvent(event);
    settle();
}

void ModelDesk::chooseMenuItem() {
    model->toggleDictation();
    settle();
}

void ModelDesk::hear(const QString& text, bool isFinal) {
    recognition.deliver(text, isFinal);
    settle();
}

void ModelDesk::tapToggle() {
    edge(ShortcutEvent::toggleActivated);
    edge(ShortcutEvent::toggleDeactivated);
}

void ModelDesk::dictate(const QString& text) {
    pressHold();
    hear(text, true);
    releaseHold();
}

AudioBuffer ModelDesk::someSound() const {
    return {.format = audioInput.format, .samples = std::vector<float>(8), .unreadableFrames = 0};
}

} // namespace velorin

#include "ui/OverlayLabels.h"

#include "core/AppState.h"
#include "text/WhiteSpace.h"

#include <QCoreApplication>

using namespace Qt::Literals::StringLiterals;

namespace velorin::OverlayLabels {
namespace {

QString translated(const char* text) { return QCoreApplication::translate("Overlay", text); }

QString processingState(std::optional<AIProcessing> processing) {
    if (!processing)
        return translated(QT_TRANSLATE_NOOP("Overlay", "Finishing"));
    switch (*processing) {
    case AIProcessing::polish:
        return translated(QT_TRANSLATE_NOOP("Overlay", "Polishing"));
    case AIProcessing::edit:
        return translated(QT_TRANSLATE_NOOP("Overlay", "Rewriting"));
    case AIProcessing::generate:
        return translated(QT_TRANSLATE_NOOP("Overlay", "Generating"));
    case AIProcessing::transcribe:
        return translated(QT_TRANSLATE_NOOP("Overlay", "Transcribing"));
    }
    Q_UNREACHABLE();
}

QString doneState(const AppState& model) {
    if (model.isGenerateSession())
        return translated(QT_TRANSLATE_NOOP("Overlay", "Generated"));
    if (model.isEditSession())
        return translated(QT_TRANSLATE_NOOP("Overlay", "Rewritten"));
    return model.autoInsert() ? translated(QT_TRANSLATE_NOOP("Overlay", "Inserted"))
                              : translated(QT_TRANSLATE_NOOP("Overlay", "Ready"));
}

QString processingPlaceholder(const AppState& model) {
    const auto processing = model.aiProcessing();
    if (!processing)
        return translated(QT_TRANSLATE_NOOP("Overlay", "Finishing…"));
    switch (*processing) {
    case AIProcessing::polish:
        return translated(QT_TRANSLATE_NOOP("Overlay", "Polishing the dictation…"));
    case AIProcessing::edit:
        return translated(QT_TRANSLATE_NOOP("Overlay", "Rewriting the selection…"));
    case AIProcessing::generate:
        return translated(QT_TRANSLATE_NOOP("Overlay", "Writing with AI…"));
    case AIProcessing::transcribe:
        return translated(QT_TRANSLATE_NOOP("Overlay", "Transcribing with %1…"))
            .arg(label(model.aiProvider()));
    }
    Q_UNREACHABLE();
}

QString donePlaceholder(const AppState& model) {
    if (model.isGenerateSession())
        return translated(QT_TRANSLATE_NOOP("Overlay", "Generated"));
    if (model.isEditSession())
        return translated(QT_TRANSLATE_NOOP("Overlay", "Rewritten"));
    return translated(QT_TRANSLATE_NOOP("Overlay", "Done"));
}

QString trimmed(const QString& text) {
    return WhiteSpace::trimmed(text, WhiteSpace::Set::whitespacesAndNewlines).toString();
}

} // namespace

QString state(const AppState& model) {
    switch (model.overlayPhase()) {
    case OverlayPhase::listening:
        return model.isEditSession() ? translated(QT_TRANSLATE_NOOP("Overlay", "Editing"))
                                     : translated(QT_TRANSLATE_NOOP("Overlay", "Listening"));
    case OverlayPhase::processing:
        return processingState(model.aiProcessing());
    case OverlayPhase::done:
        return doneState(model);
    case OverlayPhase::error:
        return translated(QT_TRANSLATE_NOOP("Overlay", "Error"));
    }
    Q_UNREACHABLE();
}

QString placeholder(const AppState& model) {
    switch (model.overlayPhase()) {
    case OverlayPhase::listening:
        return model.isEditSession() ? translated(QT_TRANSLATE_NOOP("Overlay", "Say how to change it…"))
                                     : translated(QT_TRANSLATE_NOOP("Overlay", "Speak now…"));
    case OverlayPhase::processing:
        return processingPlaceholder(model);
    case OverlayPhase::done:
        return donePlaceholder(model);
    case OverlayPhase::error:
        return translated(QT_TRANSLATE_NOOP("Overlay", "Couldn't finish"));
    }
    Q_UNREACHABLE();
}

QString liveText(const AppState& model) {
    if (const auto preview = model.previewText())
        return *preview;
    if (const QString cleaned = model.cleanedText(); !cleaned.isEmpty())
        return trimmed(cleaned);
    return trimmed(model.finalizedText() + model.volatileText());
}

QString elapsed(double seconds) {
    const auto whole = static_cast<qint64>(seconds);
    return u"%1:%2"_s.arg(whole / 60).arg(whole % 60, 2, 10, QLatin1Char('0'));
}

QString elapsed(const std::optional<QDateTime>& recordingStartedAt, const QDateTime& now) {
    if (!recordingStartedAt)
        return elapsed(0);
    // A clock that was set back must not show a negative time.
    return elapsed(static_cast<double>(std::max<qint64>(0, recordingStartedAt->msecsTo(now))) / 1000);
}

QString title(ContextProfile profile) {
    switch (profile) {
    case ContextProfile::generic:
        return label(ContextMode::generic);
    case ContextProfile::code:
        return label(ContextMode::code);
    case ContextProfile::terminal:
        return label(ContextMode::terminal);
    case ContextProfile::email:
        return label(ContextMode::email);
    case ContextProfile::chat:
        return label(ContextMode::chat);
    case ContextProfile::document:
        return label(ContextMode::document);
    }
    Q_UNREACHABLE();
}

QString sessionTag(const AppState& model) {
    if (model.isEditSession())
        return translated(QT_TRANSLATE_NOOP("Overlay", "EDIT"));
    if (model.isGenerateSession())
        return translated(QT_TRANSLATE_NOOP("Overlay", "GEN"));
    return {};
}

} // namespace velorin::OverlayLabels

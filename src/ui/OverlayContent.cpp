#include "ui/OverlayContent.h"

#include "platform/Clock.h"
#include "ui/OverlayLabels.h"
#include "ui/Theme.h"

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

/// Longer text is out of view anyway, and laying it out at every word would cost frames.
constexpr qsizetype longestText = 600;

/// The end of a text on one line, cut between characters.
QString endOnOneLine(const QString& text) {
    qsizetype from = std::max<qsizetype>(0, text.size() - longestText);
    while (from < text.size() && from > 0 && (text[from].isLowSurrogate() || text[from].isMark()))
        ++from;
    QString line = from > 0 ? u'…' + text.mid(from) : text;
    for (auto& c : line)
        if (c == u'\n' || c == u'\r' || c == u'\t' || c == QChar::LineSeparator ||
            c == QChar::ParagraphSeparator)
            c = u' ';
    return line;
}

qint64 caretPeriod() { return static_cast<qint64>(themeNumber(u"caretPeriod")); }

/// Milliseconds since the first moment of 2001, from which the caret's periods are counted.
qint64 sinceReferenceDate(const QDateTime& time) {
    constexpr qint64 referenceDate = 978'307'200'000;
    return time.toMSecsSinceEpoch() - referenceDate;
}

} // namespace

OverlayContent::OverlayContent(Clock& clock) : clock_(clock), elapsed_(OverlayLabels::elapsed(0)) {}

void OverlayContent::follow(AppModel& model) {
    rest();
    model_ = &model;
    for (const auto signal :
         {&AppState::overlayPhaseChanged, &AppState::aiProcessingChanged, &AppState::isEditSessionChanged,
          &AppState::isGenerateSessionChanged, &AppState::autoInsertChanged, &AppState::aiProviderChanged,
          &AppState::activeProfileChanged, &AppState::targetAppChanged})
        connect(&model, signal, this, &OverlayContent::refreshState);
    for (const auto signal : {&AppState::previewTextChanged, &AppState::cleanedTextChanged,
                              &AppState::finalizedTextChanged, &AppState::volatileTextChanged})
        connect(&model, signal, this, &OverlayContent::refreshText);
    for (const auto signal : {&AppState::levelsChanged, &AppState::previewLevelsChanged})
        connect(&model, signal, this, &OverlayContent::levelsChanged);
    connect(&model, &AppState::recordingStartedAtChanged, this, [this] {
        refreshElapsed();
        Q_EMIT restarted();
    });
    refreshState();
    refreshElapsed();
    setShown(true);
    Q_EMIT levelsChanged();
}

void OverlayContent::rest() {
    if (model_)
        model_->disconnect(this);
    model_.clear();
    setShown(false);
}

void OverlayContent::setShown(bool value) {
    if (std::exchange(isShown_, value) != value)
        Q_EMIT isShownChanged();
}

void OverlayContent::setComposited(bool value) {
    if (std::exchange(isComposited_, value) != value)
        Q_EMIT isCompositedChanged();
}

void OverlayContent::setLook(OverlayStyle style) {
    if (std::exchange(style_, style) != style)
        Q_EMIT lookChanged();
}

QString OverlayContent::phase() const {
    switch (phase_) {
    case OverlayPhase::listening:
        return u"listening"_s;
    case OverlayPhase::processing:
        return u"processing"_s;
    case OverlayPhase::done:
        return u"done"_s;
    case OverlayPhase::error:
        return u"error"_s;
    }
    Q_UNREACHABLE();
}

QString OverlayContent::appName() const {
    if (!app_)
        return tr("Frontmost app");
    return app_->localizedName.value_or(app_->bundleIdentifier.value_or(QString()));
}

QString OverlayContent::appIcon() const { return app_ ? app_->icon.value_or(QString()) : QString(); }

QList<float> OverlayContent::levels() const {
    return model_ ? model_->previewLevels().value_or(model_->levels()) : QList<float>();
}

void OverlayContent::refreshState() {
    phase_ = model_->overlayPhase();
    stateLabel_ = OverlayLabels::state(*model_);
    profileTitle_ = OverlayLabels::title(model_->activeProfile());
    sessionTag_ = OverlayLabels::sessionTag(*model_);
    app_ = model_->targetApp();
    Q_EMIT stateChanged();
    // An animation that the news has started brings all others up to date; one of them may have been the last
    // of a fade, after which we rest.
    if (model_)
        refreshText(); // the placeholder follows the phase
}

void OverlayContent::refreshText() {
    const QString live = OverlayLabels::liveText(*model_);
    const bool isLive = !live.isEmpty();
    const QString text = endOnOneLine(isLive ? live : OverlayLabels::placeholder(*model_));
    if (text == text_ && isLive == isLive_)
        return;
    text_ = text;
    isLive_ = isLive;
    Q_EMIT textChanged();
}

void OverlayContent::refreshElapsed() {
    const QString text =
        model_ ? OverlayLabels::elapsed(model_->recordingStartedAt(), clock_.now()) : elapsed_;
    if (std::exchange(elapsed_, text) != text)
        Q_EMIT elapsedChanged();
}

int OverlayContent::caretRest() const {
    return static_cast<int>(caretPeriod() - sinceReferenceDate(clock_.now()) % caretPeriod());
}

bool OverlayContent::isCaretLit() const { return sinceReferenceDate(clock_.now()) / caretPeriod() % 2 == 0; }

} // namespace velorin

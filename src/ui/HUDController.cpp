#include "ui/HUDController.h"

#include "platform/FloatingWindows.h"
#include "ui/OverlayPanel.h"
#include "ui/ViewEngine.h"

using namespace Qt::Literals::StringLiterals;

namespace velorin {

void drawViewsInSoftware() {
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    // By default a frame waits 5 ms for further changes. A level between two frames of an animation would
    // then draw the one frame near and put the next off to where the eye sees it.
    constexpr auto patience = "QT_QPA_UPDATE_IDLE_TIME";
    if (!qEnvironmentVariableIsSet(patience))
        qputenv(patience, "1");
}

HUDController::HUDController(const Surroundings& surroundings)
    : surroundings_(surroundings), content_(surroundings.clock) {
    compositing_ = surroundings_.windows.onCompositingChanged([this] {
        content_.setComposited(surroundings_.windows.isComposited());
        if (panel_)
            panel_->refreshShape();
    });
}

HUDController::~HUDController() = default;

void HUDController::makePanel() {
    hostedStyle_.reset();
    surroundings_.views.tell(u"overlay"_s, content_);
    panel_ = std::make_unique<OverlayPanel>(surroundings_.views.get(), surroundings_.windows);
    connect(panel_.get(), &OverlayPanel::disappeared, this, [this] { content_.rest(); });
    connect(panel_.get(), &OverlayPanel::outgrown, this, &HUDController::remakePanel, Qt::QueuedConnection);
    connect(panel_.get(), &QQuickWindow::frameSwapped, this, [this] {
        if (std::exchange(isFrameAwaited_, false))
            Q_EMIT painted();
    });
}

void HUDController::remakePanel() {
    const bool isWanted = panel_->isWanted();
    panel_.reset();
    if (isWanted && model_)
        show(*model_);
    else
        content_.rest();
}

void HUDController::layOut(const AppModel& model) {
    if (!panel_)
        makePanel();
    if (const auto style = model.overlayStyle(); hostedStyle_ != style) {
        hostedStyle_ = style;
        panel_->host(style);
    }
    panel_->place(model.targetApp());
}

void HUDController::show(AppModel& model) {
    model_ = &model;
    if (panel_)
        panel_->stay();
    content_.setComposited(surroundings_.windows.isComposited());
    content_.setLook(model.overlayStyle());
    content_.follow(model);
    layOut(model);
    if (panel_->isOutgrown()) {
        panel_.reset();
        layOut(model);
    }
    isFrameAwaited_ = true;
    panel_->appear();
    // A window that was there already has nothing new to paint by itself.
    panel_->update();
}

void HUDController::hide() {
    if (panel_)
        panel_->disappear();
}

} // namespace velorin

#include "ui/HUDController.h"

#include "platform/FloatingWindows.h"
#include "ui/OverlayPanel.h"
#include "ui/ViewEngine.h"

using namespace Qt::Literals::StringLiterals;

namespace velorin {

void drawViewsInSoftware() { QQuickWindow::setGraphicsApi(QSGRendererInterface::Software); }

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
    surroundings_.views.tell(u"overlay"_s, content_);
    panel_ = std::make_unique<OverlayPanel>(surroundings_.views.get(), surroundings_.windows);
    connect(panel_.get(), &OverlayPanel::disappeared, this, [this] { content_.rest(); });
    connect(panel_.get(), &QQuickWindow::frameSwapped, this, [this] {
        if (std::exchange(isFrameAwaited_, false))
            Q_EMIT painted();
    });
}

void HUDController::show(AppModel& model) {
    model_ = &model;
    const auto style = model.overlayStyle();
    content_.setComposited(surroundings_.windows.isComposited());
    content_.setLook(style);
    content_.follow(model);
    if (!panel_)
        makePanel();
    if (hostedStyle_ != style) {
        hostedStyle_ = style;
        panel_->host(style);
    }
    panel_->place(model.targetApp());
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

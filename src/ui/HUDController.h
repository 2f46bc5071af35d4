/// The overlay that shows a dictation: a panel made at its first use, then shown and hidden. It reads the
/// model and decides nothing.
///
///     HUDController hud({windows, views, clock});
///     AppModel model(platform, {…, .hud = hud});       // the model shows and hides it
///
/// Everything it is given outlives it; it outlives the model. Main thread.
#pragma once

#include "core/Overlay.h"
#include "platform/Subscription.h"
#include "ui/OverlayContent.h"

#include <functional>
#include <memory>

namespace velorin {

class FloatingWindows;
class OverlayPanel;
class ViewEngine;

class HUDController final : public QObject, public Overlay {
    Q_OBJECT
public:
    struct Surroundings {
        FloatingWindows& windows;
        ViewEngine& views;
        Clock& clock;
    };
    explicit HUDController(const Surroundings& surroundings);
    ~HUDController() override;

    void show(AppModel& model) override;
    void hide() override;

    /// The panel, null before the first `show()`.
    [[nodiscard]] OverlayPanel* panel() const { return panel_.get(); }
    [[nodiscard]] const OverlayContent& content() const { return content_; }

Q_SIGNALS:
    /// The first frame after a `show()` is on the screen.
    void painted();

private:
    void makePanel();
    void remakePanel();
    /// The panel with the right views at the right place.
    void layOut(const AppModel& model);

    Surroundings surroundings_;
    OverlayContent content_;
    std::unique_ptr<OverlayPanel> panel_;
    QPointer<AppModel> model_;
    std::optional<OverlayStyle> hostedStyle_;
    Subscription compositing_;
    bool isFrameAwaited_ = false;
};

/// The back end with which all views are drawn: in software, since OpenGL without a graphics card costs three
/// times the memory and fifty times the time to the first frame. Before the first window.
void drawViewsInSoftware();

} // namespace velorin

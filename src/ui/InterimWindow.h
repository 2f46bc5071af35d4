/// A window that tells what the program can do and how: shown as the settings and as the introduction until
/// those have views of their own. Made at its first showing; closing hides it. Main thread.
#pragma once

#include "ui/ViewEngine.h"

#include <QQuickView>

#include <memory>

namespace velorin {

class InterimWindow final : public QObject {
    Q_OBJECT
public:
    enum class Kind {
        settings,    ///< "Done" completes the introduction; the window stays.
        introduction ///< "Done" closes the window.
    };

    /// The engine outlives it; its views find the status under the name "status".
    InterimWindow(ViewEngine& views, Kind kind);

    /// Shows it in front of everything, with the keyboard.
    void open();
    void activate();
    [[nodiscard]] bool isOpen() const { return view_ && view_->isVisible(); }
    [[nodiscard]] QQuickView* view() const { return view_.get(); }

private:
    void make();

    ViewEngine& views_;
    Kind kind_;
    std::unique_ptr<QQuickView> view_;
};

} // namespace velorin

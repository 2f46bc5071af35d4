#include "ui/InterimWindow.h"

#include <QQmlError>
#include <QQuickItem>

using namespace Qt::Literals::StringLiterals;

namespace velorin {

InterimWindow::InterimWindow(ViewEngine& views, Kind kind) : views_(views), kind_(kind) {}

void InterimWindow::make() {
    const bool isIntroduction = kind_ == Kind::introduction;
    view_ = std::make_unique<QQuickView>(&views_.get(), nullptr);
    view_->setTitle(isIntroduction ? tr("Welcome to Velorin") : tr("Velorin"));
    view_->setResizeMode(QQuickView::SizeRootObjectToView);
    view_->setMinimumSize({420, 360});
    view_->resize(isIntroduction ? QSize(620, 580) : QSize(560, 640));
    view_->setInitialProperties({{u"isIntroduction"_s, isIntroduction}});
    view_->setSource(QUrl(u"qrc:/velorin/views/InterimView.qml"_s));
    for (const auto& error : view_->errors())
        qWarning("%s", qUtf8Printable(error.toString()));
    if (view_->rootObject() != nullptr)
        connect(view_->rootObject(), SIGNAL(finished()), view_.get(), SLOT(hide()));
}

void InterimWindow::open() {
    if (!view_)
        make();
    view_->show();
    activate();
}

void InterimWindow::activate() {
    view_->raise();
    view_->requestActivate();
}

} // namespace velorin

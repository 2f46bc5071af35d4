#include "ui/ViewEngine.h"

#include "ui/OverlayItems.h"
#include "ui/Theme.h"

#include <QQmlContext>

using namespace Qt::Literals::StringLiterals;

// The views lie in a library that is linked statically; without this word they would be left out.
static void initViews() { Q_INIT_RESOURCE(views); }

namespace velorin {

QQmlEngine& ViewEngine::get() {
    if (!engine_) {
        initViews();
        registerOverlayItems();
        engine_ = std::make_unique<QQmlEngine>();
        tell(u"theme"_s, theme_);
    }
    return *engine_;
}

void ViewEngine::tell(const QString& name, QObject& object) {
    get().rootContext()->setContextProperty(name, &object);
}

} // namespace velorin

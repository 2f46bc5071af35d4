/// The engine that all windows of the program share, made when the first one is needed. Views find the theme
/// in it under the name "theme". Main thread.
#pragma once

#include <QQmlEngine>

#include <memory>

namespace velorin {

class Theme;

class ViewEngine final {
public:
    /// The theme outlives it.
    explicit ViewEngine(Theme& theme) : theme_(theme) {}

    [[nodiscard]] QQmlEngine& get();
    /// Makes an object known to all views under a name.
    void tell(const QString& name, QObject& object);

private:
    Theme& theme_;
    std::unique_ptr<QQmlEngine> engine_;
};

} // namespace velorin

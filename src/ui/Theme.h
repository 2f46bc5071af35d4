/// The looks of all windows as one set of values: colours for light and dark, sizes and times. Views read
/// them by name and follow a change at once; nothing else in the program names a colour.
///
///     Rectangle { color: theme.card; border.color: theme.border }      // in a view
///     painter.fillRect(rect, theme.color(u"accent"_s));                  // where one paints
///
/// Main thread.
#pragma once

#include "platform/Appearance.h"

#include <QColor>
#include <QQmlPropertyMap>

#include <span>

namespace velorin {

/// One colour of the theme, as it is in light and in dark surroundings.
struct ThemeColor {
    const char* name;
    QRgb light;
    QRgb dark;
};
[[nodiscard]] std::span<const ThemeColor> themeColors();

/// A size in units of the view or a time in milliseconds.
struct ThemeNumber {
    const char* name;
    double value;
};
[[nodiscard]] std::span<const ThemeNumber> themeNumbers();
[[nodiscard]] double themeNumber(QStringView name);

class Theme final : public QQmlPropertyMap {
    Q_OBJECT
public:
    explicit Theme(Appearance& appearance);

    [[nodiscard]] bool isDark() const { return isDark_; }
    [[nodiscard]] bool reducesMotion() const { return appearance_.reducesMotion(); }
    [[nodiscard]] QColor color(const QString& name) const { return value(name).value<QColor>(); }

Q_SIGNALS:
    /// After all values changed.
    void changed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void refresh();

    Appearance& appearance_;
    bool isDark_ = false;
    Subscription following_;
};

} // namespace velorin

#include "ui/Theme.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

constexpr QRgb part(double value, int shift) { return static_cast<QRgb>(value * 255 + 0.5) << shift; }
constexpr QRgb srgb(double red, double green, double blue, double alpha = 1) {
    return part(alpha, 24) | part(red, 16) | part(green, 8) | part(blue, 0);
}
constexpr QRgb white(double alpha = 1) { return srgb(1, 1, 1, alpha); }
constexpr QRgb black(double alpha = 1) { return srgb(0, 0, 0, alpha); }

constexpr std::array colors{
    ThemeColor{"accent", srgb(0.055, 0.561, 0.639), srgb(0.361, 0.882, 0.902)},
    ThemeColor{"accentSoft", srgb(0.055, 0.561, 0.639, 0.11), srgb(0.361, 0.882, 0.902, 0.11)},
    ThemeColor{"accentRing", srgb(0.055, 0.561, 0.639, 0.22), srgb(0.361, 0.882, 0.902, 0.22)},
    ThemeColor{"accentFill", srgb(0.043, 0.498, 0.573), srgb(0.361, 0.882, 0.902)},
    ThemeColor{"accentPress", srgb(0.035, 0.424, 0.49), srgb(0.271, 0.788, 0.812)},
    ThemeColor{"overlayBorder", white(0.62), white(0.12)},
    ThemeColor{"onAccent", white(), srgb(0.02, 0.165, 0.2)},
    ThemeColor{"sidebarSelected", srgb(0.043, 0.498, 0.573), srgb(0.047, 0.227, 0.275)},
    ThemeColor{"sidebarSelectedText", white(), white()},
    ThemeColor{"window", srgb(0.969, 0.973, 0.984), srgb(0.039, 0.078, 0.106)},
    ThemeColor{"sidebar", srgb(0.957, 0.961, 0.973), srgb(0.043, 0.094, 0.125)},
    ThemeColor{"card", white(), srgb(0.071, 0.122, 0.153)},
    ThemeColor{"cardMuted", srgb(0.969, 0.973, 0.98), srgb(0.09, 0.149, 0.188)},
    ThemeColor{"field", white(), srgb(0.047, 0.094, 0.122)},
    ThemeColor{"segmentTrack", black(0.065), white(0.08)},
    ThemeColor{"border", black(0.08), white(0.08)},
    ThemeColor{"borderStrong", black(0.13), white(0.14)},
    ThemeColor{"faintText", srgb(0.545, 0.576, 0.631), srgb(0.475, 0.51, 0.561)},
    ThemeColor{"green", srgb(0.082, 0.612, 0.388), srgb(0.239, 0.863, 0.58)},
    ThemeColor{"amber", srgb(0.812, 0.518, 0.063), srgb(0.878, 0.651, 0.227)},
    ThemeColor{"red", srgb(0.851, 0.275, 0.247), srgb(1, 0.42, 0.384)},
    ThemeColor{"blue", srgb(0.231, 0.498, 0.965), srgb(0.42, 0.62, 1)},
    ThemeColor{"violet", srgb(0.545, 0.361, 0.965), srgb(0.647, 0.494, 0.98)},
    // Text, and the glass of the overlay: hardly translucent, since nobody knows what lies below it and
    // nothing here blurs that.
    ThemeColor{"primary", black(), white()},
    ThemeColor{"secondary", srgb(0, 0, 0, 0.62), srgb(1, 1, 1, 0.68)},
    ThemeColor{"overlayFill", srgb(0.969, 0.973, 0.984, 0.94), srgb(0.075, 0.106, 0.133, 0.93)},
    // Around the light glass, which a white border alone would not part from a white page.
    ThemeColor{"overlayEdge", black(0.10), black(0.45)},
};

constexpr std::array numbers{
    ThemeNumber{"overlayPadding", 30},
    ThemeNumber{"overlayBottom", 24}, // above the bottom of the work area
    ThemeNumber{"capsuleWidth", 380},
    ThemeNumber{"capsuleHeight", 54},
    ThemeNumber{"capsuleRadius", 27},
    ThemeNumber{"cardWidth", 360},
    ThemeNumber{"cardHeight", 102},
    ThemeNumber{"cardRadius", 16},
    ThemeNumber{"overlayFadeIn", 160},
    ThemeNumber{"overlayFadeOut", 220},
    ThemeNumber{"entranceResponse", 300},
    ThemeNumber{"entranceDamping", 0.86},
    ThemeNumber{"pulsePeriod", 1500},
    ThemeNumber{"caretPeriod", 530},
    ThemeNumber{"elapsedPeriod", 200},
    ThemeNumber{"shadowOpacity", 0.34},
    ThemeNumber{"shadowRadius", 16},
    ThemeNumber{"shadowOffset", 7},
};

bool isPaletteDark() {
    const auto palette = QGuiApplication::palette();
    return palette.color(QPalette::WindowText).lightness() > palette.color(QPalette::Window).lightness();
}

} // namespace

std::span<const ThemeColor> themeColors() { return colors; }
std::span<const ThemeNumber> themeNumbers() { return numbers; }

double themeNumber(QStringView name) {
    for (const auto& number : numbers)
        if (name == QLatin1StringView(number.name))
            return number.value;
    Q_UNREACHABLE();
}

Theme::Theme(Appearance& appearance) : QQmlPropertyMap(this, nullptr), appearance_(appearance) {
    for (const auto& number : numbers)
        insert(QString::fromLatin1(number.name), number.value);
    refresh();
    following_ = appearance.onChange([this] { refresh(); });
    qApp->installEventFilter(this);
}

bool Theme::eventFilter(QObject* watched, QEvent* event) {
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange)
        refresh();
    return false;
}

void Theme::refresh() {
    isDark_ = appearance_.prefersDark().value_or(isPaletteDark());
    for (const auto& color : colors)
        insert(QString::fromLatin1(color.name), QColor::fromRgba(isDark_ ? color.dark : color.light));
    insert(u"isDark"_s, isDark_);
    insert(u"movesThings"_s, !appearance_.reducesMotion());
    Q_EMIT changed();
}

} // namespace velorin

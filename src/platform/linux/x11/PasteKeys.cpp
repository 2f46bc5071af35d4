#include "platform/linux/x11/PasteKeys.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace velorin {

namespace {

constexpr std::array<std::string_view, 9> terminalKins{
    "com.apple.Terminal",    "com.googlecode.iterm2",  "dev.warp.Warp-Stable",
    "com.mitchellh.ghostty", "com.github.wez.wezterm", "net.kovidgoyal.kitty",
    "org.alacritty",         "co.zeit.hyper",          "org.tabby"};

/// Terminals from before the clipboard: they paste what was selected last.
constexpr std::array<std::string_view, 5> primaryTerminals{"xterm", "rxvt-unicode", "st", "mlterm", "eterm"};

/// Terminals on GNOME's widget have their paste command switched off for a moment whenever the clipboard gets
/// another owner, and keys that come meanwhile are lost; the widget's own key is always there.
constexpr std::array<std::string_view, 14> widgetTerminals{"org.gnome.Terminal",
                                                           "org.gnome.Console",
                                                           "org.gnome.Ptyxis",
                                                           "xfce4-terminal",
                                                           "mate-terminal",
                                                           "lxterminal",
                                                           "terminator",
                                                           "tilix",
                                                           "guake",
                                                           "tilda",
                                                           "sakura",
                                                           "roxterm",
                                                           "termit",
                                                           "io.elementary.terminal"};

template <std::size_t N>
bool contains(const std::array<std::string_view, N>& names, const std::optional<QString>& name) {
    return name && std::ranges::any_of(names, [&](std::string_view other) {
               return *name == QLatin1StringView(other.data(), static_cast<qsizetype>(other.size()));
           });
}

} // namespace

PasteKeys pasteKeysOf(const std::optional<RunningApplication>& application) {
    using enum PasteKeys::Paste;
    if (!application)
        return {};
    if (contains(primaryTerminals, application->bundleIdentifier))
        return {shiftInsert, PasteboardSelection::primary, false};
    if (contains(widgetTerminals, application->bundleIdentifier))
        return {controlShiftInsert, PasteboardSelection::clipboard, false};
    if (contains(terminalKins, application->kin))
        return {controlShiftV, PasteboardSelection::clipboard, false};
    if (application->kin == QLatin1StringView("org.gnu.Emacs"))
        return {shiftInsert, PasteboardSelection::clipboard, true};
    return {};
}

} // namespace velorin

#include "delivery/ContextDetector.h"

#include "text/CaseMapping.h"
#include "text/Graphemes.h"

#include <algorithm>
#include <array>
#include <span>

namespace velorin::ContextDetector {

namespace {

constexpr std::array<QStringView, 9> terminalIDs{
    u"com.apple.Terminal",    u"com.googlecode.iterm2",  u"dev.warp.Warp-Stable",
    u"com.mitchellh.ghostty", u"com.github.wez.wezterm", u"net.kovidgoyal.kitty",
    u"org.alacritty",         u"co.zeit.hyper",          u"org.tabby",
};

constexpr std::array<QStringView, 12> codeIDs{
    u"com.apple.dt.Xcode",
    u"com.microsoft.VSCode",
    u"com.todesktop.230313mzl4w4u92",
    u"dev.zed.Zed",
    u"com.sublimetext.4",
    u"com.sublimetext.3",
    u"com.panic.Nova",
    u"com.barebones.bbedit",
    u"com.macromates.TextMate",
    u"com.google.android.studio",
    u"org.gnu.Emacs",
    u"com.github.atom",
};

/// All tools of this maker count as editors of code.
constexpr QStringView codePrefix = u"com.jetbrains.";

constexpr std::array<QStringView, 5> emailIDs{
    u"com.apple.mail",
    u"com.microsoft.Outlook",
    u"com.readdle.smartemail-Mac",
    u"com.mimestream.Mimestream",
    u"com.superhuman.electron",
};

constexpr std::array<QStringView, 8> chatIDs{
    u"com.tinyspeck.slackmacgap", u"com.hnc.Discord",       u"com.apple.MobileSMS",  u"net.whatsapp.WhatsApp",
    u"org.telegram.desktop",      u"ru.keepcoder.Telegram", u"com.microsoft.teams2", u"com.microsoft.teams",
};

constexpr std::array<QStringView, 9> documentIDs{
    u"com.apple.Notes",         u"notion.id",          u"md.obsidian",        u"com.apple.TextEdit",
    u"com.apple.iWork.Pages",   u"com.microsoft.Word", u"net.shinyfrog.bear", u"com.apple.iWork.Keynote",
    u"com.apple.iWork.Numbers",
};

constexpr std::array<QStringView, 8> browserPrefixes{
    u"com.google.Chrome",          u"com.apple.Safari",  u"org.mozilla.firefox", u"com.microsoft.edgemac",
    u"company.thebrowser.Browser", u"com.brave.Browser", u"com.vivaldi.Vivaldi", u"com.operasoftware.Opera",
};

constexpr std::array<QStringView, 8> emailKeywords{
    u"gmail",       u"outlook",    u" - mail",   u"protonmail",
    u"proton mail", u"yahoo mail", u"zoho mail", u"superhuman",
};

constexpr std::array<QStringView, 6> chatKeywords{
    u"slack", u"discord", u"whatsapp", u"telegram", u"teams", u"messenger",
};

constexpr std::array<QStringView, 7> documentKeywords{
    u"google docs", u"google sheets", u"google slides", u"notion", u"confluence", u"coda", u"quip",
};

bool isIn(std::span<const QStringView> identifiers, QStringView bundleID) {
    return std::ranges::find(identifiers, bundleID) != identifiers.end();
}

bool holdsOneOf(QStringView title, std::span<const QStringView> keywords) {
    return std::ranges::any_of(keywords, [&](QStringView keyword) { return title.contains(keyword); });
}

} // namespace

ContextProfile detect(const std::optional<QString>& bundleID, const WindowTitle& windowTitle) {
    if (!bundleID)
        return ContextProfile::generic;
    if (const auto profile = profileForBundleID(*bundleID))
        return *profile;
    if (!isBrowser(*bundleID))
        return ContextProfile::generic;
    const std::optional<QString> title = windowTitle();
    if (!title)
        return ContextProfile::generic;
    return profileForBrowserTitle(CaseMapping::lower(*title)).value_or(ContextProfile::generic);
}

std::optional<ContextProfile> profileForBundleID(QStringView bundleID) {
    if (isIn(terminalIDs, bundleID))
        return ContextProfile::terminal;
    if (isIn(codeIDs, bundleID) || Graphemes::beginsWith(bundleID, codePrefix))
        return ContextProfile::code;
    if (isIn(emailIDs, bundleID))
        return ContextProfile::email;
    if (isIn(chatIDs, bundleID))
        return ContextProfile::chat;
    if (isIn(documentIDs, bundleID))
        return ContextProfile::document;
    return std::nullopt;
}

std::optional<ContextProfile> profileForBrowserTitle(QStringView title) {
    if (holdsOneOf(title, emailKeywords))
        return ContextProfile::email;
    if (holdsOneOf(title, chatKeywords))
        return ContextProfile::chat;
    if (holdsOneOf(title, documentKeywords))
        return ContextProfile::document;
    return std::nullopt;
}

bool isBrowser(QStringView bundleID) {
    return std::ranges::any_of(browserPrefixes,
                               [&](QStringView prefix) { return Graphemes::beginsWith(bundleID, prefix); });
}

} // namespace velorin::ContextDetector

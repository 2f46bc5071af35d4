#include "delivery/ContextDetector.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

/// A window with this title, or none; it counts how often it was asked.
struct Window {
    std::optional<QString> title;
    int timesAsked = 0;

    ContextProfile detected(const std::optional<QString>& bundleID) {
        return ContextDetector::detect(bundleID, [this] {
            ++timesAsked;
            return title;
        });
    }
};

TEST(ContextDetector, IsGenericWithoutAnApplication) {
    Window window{u"Gmail"_s};
    EXPECT_EQ(window.detected(std::nullopt), ContextProfile::generic);
    EXPECT_EQ(window.detected(u""_s), ContextProfile::generic);
    EXPECT_EQ(window.timesAsked, 0);
}

TEST(ContextDetector, KnowsApplicationsByTheirIdentifier) {
    Window window{u"Gmail"_s};
    EXPECT_EQ(window.detected(u"net.kovidgoyal.kitty"_s), ContextProfile::terminal);
    EXPECT_EQ(window.detected(u"org.gnu.Emacs"_s), ContextProfile::code);
    EXPECT_EQ(window.detected(u"com.jetbrains.anything"_s), ContextProfile::code);
    EXPECT_EQ(window.detected(u"com.apple.mail"_s), ContextProfile::email);
    EXPECT_EQ(window.detected(u"com.microsoft.teams"_s), ContextProfile::chat);
    EXPECT_EQ(window.detected(u"com.microsoft.Word"_s), ContextProfile::document);
    EXPECT_EQ(window.timesAsked, 0) << "a known application's title is nobody's business";
}

TEST(ContextDetector, DoesNotAskForTheTitleOfAnUnknownApplication) {
    Window window{u"Gmail"_s};
    EXPECT_EQ(window.detected(u"org.example.unknown"_s), ContextProfile::generic);
    EXPECT_EQ(window.detected(u"com.apple.terminal"_s), ContextProfile::generic) << "case counts";
    EXPECT_EQ(window.detected(u"com.jetbrains"_s), ContextProfile::generic);
    EXPECT_EQ(window.timesAsked, 0);
}

TEST(ContextDetector, AsksABrowserForItsTitleOnce) {
    Window window{u"Inbox - GMAIL - Google Chrome"_s};
    EXPECT_EQ(window.detected(u"com.google.Chrome.beta"_s), ContextProfile::email);
    EXPECT_EQ(window.timesAsked, 1);
    EXPECT_FALSE(ContextDetector::isBrowser(u"COM.google.Chrome"));
}

TEST(ContextDetector, IsGenericForABrowserWithoutATitle) {
    Window window;
    EXPECT_EQ(window.detected(u"org.mozilla.firefox"_s), ContextProfile::generic);
    window.title = u"Example Domain"_s;
    EXPECT_EQ(window.detected(u"org.mozilla.firefox"_s), ContextProfile::generic);
}

TEST(ContextDetector, AsksTheListsOfKeywordsInOrder) {
    using ContextDetector::profileForBrowserTitle;
    EXPECT_EQ(profileForBrowserTitle(u"slack for gmail"), ContextProfile::email);
    EXPECT_EQ(profileForBrowserTitle(u"notion and discord"), ContextProfile::chat);
    EXPECT_EQ(profileForBrowserTitle(u"rent equipment"), ContextProfile::document) << "holds quip";
    EXPECT_EQ(profileForBrowserTitle(u"jo - mailbox"), ContextProfile::email);
    EXPECT_FALSE(profileForBrowserTitle(u"terminal code"));
    EXPECT_FALSE(profileForBrowserTitle(u""));
}

} // namespace
} // namespace velorin

#include "platform/linux/x11/XTestSyntheticKeyboard.h"

#include "tests/platform/linux/x11/support/PhysicalKeyboard.h"
#include "tests/platform/linux/x11/support/PrivateServer.h"
#include "tests/platform/linux/x11/support/TestWindow.h"

#include <gmock/gmock.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace velorin {
namespace {

constexpr int leftControl = 37;
constexpr int rightControl = 105;
constexpr int leftShift = 50;
constexpr int letterV = 55;
constexpr int letterA = 38;

RunningApplication application(const char* identifier, const char* kin) {
    RunningApplication made;
    made.bundleIdentifier = QString::fromLatin1(identifier);
    made.kin = QString::fromLatin1(kin);
    return made;
}

class XTestSyntheticKeyboardTest : public testing::Test {
protected:
    XTestSyntheticKeyboardTest() { window.focus(); }

    KeySet down() { return keysDown(user.connection(), Deadline(5s)).value(); }

    PrivateServer server;
    SharedKeyState state;
    XTestSyntheticKeyboard keyboard{state};
    PhysicalKeyboard user;
    TestWindow window;
};

TEST_F(XTestSyntheticKeyboardTest, PastesWithControlAndV) {
    EXPECT_TRUE(keyboard.chord(Chord::paste, std::nullopt));
    EXPECT_EQ(toString(window.keys(4)), "37+ 55+/4 55-/4 37-/4");
    EXPECT_TRUE(down().none());
}

TEST_F(XTestSyntheticKeyboardTest, PastesIntoTerminalsWithShiftAsWell) {
    const auto terminal = application("org.kde.konsole", "com.apple.Terminal");
    EXPECT_TRUE(keyboard.chord(Chord::paste, terminal));
    EXPECT_EQ(toString(window.keys(6)), "37+ 50+/4 55+/5 55-/5 50-/5 37-/4");
    EXPECT_EQ(keyboard.pasteSource(terminal), PasteboardSelection::clipboard);
}

TEST_F(XTestSyntheticKeyboardTest, PastesIntoTerminalsOfGnomesWidgetWithItsOwnKey) {
    const auto terminal = application("org.gnome.Terminal", "com.apple.Terminal");
    EXPECT_TRUE(keyboard.chord(Chord::paste, terminal));
    EXPECT_EQ(toString(window.keys(6)), "37+ 50+/4 118+/5 118-/5 50-/5 37-/4");
    EXPECT_EQ(keyboard.pasteSource(terminal), PasteboardSelection::clipboard);
}

TEST_F(XTestSyntheticKeyboardTest, PastesIntoXtermFromWhatIsSelected) {
    const auto xterm = application("xterm", "com.apple.Terminal");
    EXPECT_TRUE(keyboard.chord(Chord::paste, xterm));
    EXPECT_EQ(toString(window.keys(4)), "50+ 118+/1 118-/1 50-/1");
    EXPECT_EQ(keyboard.pasteSource(xterm), PasteboardSelection::primary);
}

TEST_F(XTestSyntheticKeyboardTest, CopiesWithControlAndInsertButNeverInATerminal) {
    EXPECT_TRUE(keyboard.chord(Chord::copy, application("gedit", "com.apple.TextEdit")));
    EXPECT_EQ(toString(window.keys(4)), "37+ 118+/4 118-/4 37-/4");
    EXPECT_FALSE(keyboard.chord(Chord::copy, application("kitty", "net.kovidgoyal.kitty")));
    EXPECT_FALSE(keyboard.chord(Chord::copy, application("xterm", "com.apple.Terminal")));
    EXPECT_THAT(window.keys(), testing::IsEmpty());
}

TEST_F(XTestSyntheticKeyboardTest, KeepsHeldModifiersOutOfTheChord) {
    user.press(leftShift);
    user.press(rightControl);
    user.sync();
    (void)window.keys(2);
    EXPECT_TRUE(keyboard.chord(Chord::paste, std::nullopt));
    EXPECT_EQ(toString(window.keys(6)), "50-/5 105-/4 37+ 55+/4 55-/4 37-/4");
    EXPECT_TRUE(down().none()) << "nobody watches for the release, so nothing is given back";
}

TEST_F(XTestSyntheticKeyboardTest, GivesHeldModifiersBackWhereTheirReleaseIsSeen) {
    state->isWatched = 1;
    user.press(leftShift);
    user.sync();
    (void)window.keys(1);
    EXPECT_TRUE(keyboard.chord(Chord::paste, std::nullopt));
    EXPECT_EQ(toString(window.keys(6)), "50-/1 37+ 55+/4 55-/4 37-/4 50+");
    EXPECT_EQ(state->keys[leftShift], KeyState::givenBack);

    // A second chord meets its own gift.
    EXPECT_TRUE(keyboard.chord(Chord::paste, std::nullopt));
    EXPECT_EQ(toString(window.keys(6)), "50-/1 37+ 55+/4 55-/4 37-/4 50+");
    user.tap(letterA);
    user.sync();
    EXPECT_EQ(toString(window.keys(2)), "38+/1 38-/1");
}

TEST_F(XTestSyntheticKeyboardTest, ReleasesFirstWhatItWasLeftHolding) {
    state->isWatched = 1;
    state->keys[leftControl] = KeyState::givenBack;
    EXPECT_TRUE(keyboard.chord(Chord::paste, std::nullopt));
    EXPECT_EQ(toString(window.keys(4)), "37+ 55+/4 55-/4 37-/4");
    EXPECT_EQ(state->keys[leftControl], 0);
}

TEST_F(XTestSyntheticKeyboardTest, FindsTheKeysOfTheLayout) {
    PrivateServer& desktop = server;
    auto& change = desktop.start({"setxkbmap", "-layout", "us", "-variant", "dvorak"});
    change.wait();
    EXPECT_TRUE(keyboard.chord(Chord::paste, std::nullopt));
    EXPECT_EQ(toString(window.keys(4)), "37+ 60+/4 60-/4 37-/4")
        << "v is where American keyboards have the dot";
}

TEST_F(XTestSyntheticKeyboardTest, PressesTheUsualPlaceWhereTheLayoutHasNoLatinLetters) {
    server.start({"setxkbmap", "-layout", "gr"}).wait();
    EXPECT_TRUE(keyboard.chord(Chord::paste, std::nullopt));
    EXPECT_EQ(toString(window.keys(4)), "37+ 55+/4 55-/4 37-/4");
}

TEST(XTestSyntheticKeyboard, PostsNothingWithoutAServer) {
    unsetenv("DISPLAY");
    SharedKeyState state;
    XTestSyntheticKeyboard keyboard(state);
    EXPECT_FALSE(keyboard.chord(Chord::paste, std::nullopt));
}

} // namespace
} // namespace velorin

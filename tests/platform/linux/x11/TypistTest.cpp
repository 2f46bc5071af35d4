#include "platform/linux/x11/XTestSyntheticKeyboard.h"

#include "tests/platform/linux/x11/support/PhysicalKeyboard.h"
#include "tests/platform/linux/x11/support/PrivateServer.h"
#include "tests/platform/linux/x11/support/TypingWindow.h"
#include "tests/support/WaitUntil.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <thread>

#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace velorin {
namespace {

constexpr int leftShift = 50;
constexpr int leftControl = 37;
constexpr int capsLock = 66;
constexpr int numLock = 77;

QStringList charactersOf(const QString& text) {
    QStringList characters;
    for (const auto codePoint : text.toUcs4())
        characters.append(QString::fromUcs4(reinterpret_cast<const char32_t*>(&codePoint), 1));
    return characters;
}

/// The whole map as the server tells it.
std::vector<xcb_keysym_t> wholeMap(XConnection& connection) {
    const auto map = KeyboardMap::read(connection, Deadline(5s)).value();
    std::vector<xcb_keysym_t> symbols;
    for (unsigned key = 8; key < 256; ++key)
        for (std::size_t column = 0; column < 8; ++column)
            symbols.push_back(map.symbol(static_cast<xcb_keycode_t>(key), column));
    return symbols;
}

class TypistTest : public testing::Test {
protected:
    TypistTest() { window.focus(); }

    void useLayout(const std::vector<std::string>& options) {
        std::vector<std::string> command{"setxkbmap"};
        command.insert(command.end(), options.begin(), options.end());
        ASSERT_EQ(server.start(command).wait(), 0);
    }

    QString typed(const QString& text) {
        const auto characters = charactersOf(text);
        const auto posted = keyboard.type(characters, std::nullopt);
        return posted == characters.size() ? window.text(text.size()) : u"declined"_s;
    }

    PrivateServer server;
    SharedKeyState state;
    XTestSyntheticKeyboard keyboard{state};
    PhysicalKeyboard user;
    TypingWindow window;
};

TEST_F(TypistTest, TypesWhatTheLayoutHas) {
    EXPECT_EQ(typed(u"Hello, World! 123 {a|b} ~\n"_s), u"Hello, World! 123 {a|b} ~\n"_s);
    EXPECT_FALSE(keyboard.isLendingKeys());
    EXPECT_TRUE(keysDown(user.connection(), Deadline(5s)).value().none());
}

TEST_F(TypistTest, LendsKeysToWhatTheLayoutLacks) {
    const auto before = wholeMap(user.connection());
    EXPECT_EQ(typed(u"„Grüße“ — naïve 漢字 😀"_s), u"„Grüße“ — naïve 漢字 😀"_s);
    EXPECT_TRUE(keyboard.isLendingKeys());
    EXPECT_TRUE(waitUntil([&] { return !keyboard.isLendingKeys(); }));
    EXPECT_EQ(wholeMap(user.connection()), before);
}

TEST_F(TypistTest, TypesTheCodePointsOfACharacterInARow) {
    const QStringList characters{u"👩‍👧"_s, u"e\u0301"_s};
    EXPECT_EQ(keyboard.type(characters, std::nullopt), 2);
    EXPECT_EQ(window.text(7), u"👩‍👧e\u0301"_s);
}

TEST_F(TypistTest, DeclinesMoreForeignCharactersThanThereAreSpareKeys) {
    const auto before = wholeMap(user.connection());
    QString text;
    for (char16_t c = 0x4e00; c < 0x4e00 + 200; ++c)
        text += QChar(c);
    EXPECT_EQ(keyboard.type(charactersOf(text), std::nullopt), std::nullopt);
    EXPECT_EQ(wholeMap(user.connection()), before);
    EXPECT_FALSE(window.hasMore());
}

TEST_F(TypistTest, DeclinesWhatWouldTakeTooLong) {
    EXPECT_EQ(keyboard.type(charactersOf(QString(301, u'x')), std::nullopt), std::nullopt);
    EXPECT_FALSE(window.hasMore());
    EXPECT_EQ(typed(QString(300, u'x')), QString(300, u'x'));
}

TEST_F(TypistTest, DeclinesControlCharacters) {
    EXPECT_EQ(keyboard.type(charactersOf(u"a\u0007b"_s), std::nullopt), std::nullopt);
    EXPECT_FALSE(window.hasMore());
}

TEST_F(TypistTest, DeclinesATabWhichWouldLeaveTheField) {
    EXPECT_EQ(keyboard.type(charactersOf(u"one\ttwo"_s), std::nullopt), std::nullopt);
    EXPECT_FALSE(window.hasMore());
}

TEST_F(TypistTest, DeclinesWhatJavaWouldCut) {
    const QTemporaryDir folder;
    QFile machine(folder.filePath(u"libjvm.so"_s));
    ASSERT_TRUE(machine.open(QIODevice::ReadWrite) && machine.resize(1) && machine.map(0, 1));
    RunningApplication java;
    java.processIdentifier = getpid(); // which has loaded the machine now
    EXPECT_EQ(keyboard.type(charactersOf(u"a👋"_s), java), std::nullopt);
    EXPECT_FALSE(window.hasMore());
    EXPECT_EQ(keyboard.type(charactersOf(u"漢"_s), java), 1);
    EXPECT_EQ(window.text(1), u"漢"_s);
}

TEST_F(TypistTest, TypesOnADvorakKeyboard) {
    useLayout({"-layout", "us", "-variant", "dvorak"});
    EXPECT_EQ(typed(u"The quick brown fox; it's 5 > 3."_s), u"The quick brown fox; it's 5 > 3."_s);
}

TEST_F(TypistTest, TypesWithTheThirdLevelAndWithoutDeadKeys) {
    useLayout({"-layout", "de"});
    EXPECT_EQ(typed(u"ich@haus.de {1^2} `a` €5 straße"_s), u"ich@haus.de {1^2} `a` €5 straße"_s);
    useLayout({"-layout", "us", "-variant", "intl"});
    EXPECT_EQ(typed(u"it's \"so\" ~ ^ ` é"_s), u"it's \"so\" ~ ^ ` é"_s);
}

TEST_F(TypistTest, TypesInLayoutsWithoutLatinLetters) {
    useLayout({"-layout", "ru"});
    EXPECT_EQ(typed(u"Привет, Go!"_s), u"Привет, Go!"_s);
    useLayout({"-layout", "gr"});
    EXPECT_EQ(typed(u"αβγ and ABC"_s), u"αβγ and ABC"_s);
}

TEST_F(TypistTest, TypesInTheSecondLayoutWhenThatIsOn) {
    useLayout({"-layout", "us,ru"});
    lockGroup(user.connection(), 1);
    EXPECT_EQ(typed(u"Да, yes"_s), u"Да, yes"_s);
    lockGroup(user.connection(), 0);
    EXPECT_EQ(typed(u"Да, yes"_s), u"Да, yes"_s);
}

TEST_F(TypistTest, TypesTheRightCaseWithCapsLockOn) {
    user.tap(capsLock);
    user.tap(numLock);
    user.sync();
    EXPECT_EQ(typed(u"Hello Éé ßñ 漢 1"_s), u"Hello Éé ßñ 漢 1"_s);
    EXPECT_EQ(window.text(0), QString()) << "and leaves the locks as they were";
    user.tap(capsLock);
    user.tap(numLock);
    user.sync();
    EXPECT_EQ(typed(u"Hello Éé ßñ 漢 1"_s), u"Hello Éé ßñ 漢 1"_s);
}

TEST_F(TypistTest, KeepsHeldModifiersOutOfTheText) {
    state->isWatched = 1;
    user.press(leftShift);
    user.press(leftControl);
    user.sync();
    EXPECT_EQ(typed(u"quiet Loud"_s), u"quiet Loud"_s);
    const auto down = keysDown(user.connection(), Deadline(5s)).value();
    EXPECT_TRUE(down[leftShift] && down[leftControl]) << "given back";
    EXPECT_EQ(state->keys[leftShift], KeyState::givenBack);
    for (const int key : {leftShift, leftControl})
        user.release(key);
    user.sync();
}

TEST_F(TypistTest, FollowsALayoutThatIsSwitchedWhileItTypes) {
    useLayout({"-layout", "us,ru"});
    std::jthread switcher([&](const std::stop_token& stop) {
        const auto connection = XConnection::open();
        for (int group = 1; !stop.stop_requested(); group = 1 - group) {
            lockGroup(*connection, group);
            std::this_thread::sleep_for(3ms);
        }
    });
    const QString text = u"The quick brown fox jumps over the lazy dog. "_s.repeated(5) + u"Да"_s;
    EXPECT_EQ(typed(text), text);
}

TEST_F(TypistTest, BringsToItsEndWhatItHasBegunWhenTheServerIsHeldUp) {
    const QString text = u"the quick brown fox jumps over the lazy dog and "_s.repeated(6);
    QString first;
    std::jthread disturber([&] {
        first = window.text(1);
        server.holdUp(350ms);
    });
    EXPECT_EQ(keyboard.type(charactersOf(text), std::nullopt), text.size());
    disturber.join();
    EXPECT_EQ(first + window.text(text.size() - first.size()), text);
}

TEST_F(TypistTest, GivesBackAtTheNextStartWhatAKilledProcessLeft) {
    const auto before = wholeMap(user.connection());
    const std::array<std::uint32_t, 3> loan{93, 0x01004e2d, 0x01004e2d};
    auto& left = user.connection();
    xcb_change_property(left.get(), XCB_PROP_MODE_REPLACE, left.root(), left.atom("_VELORIN_SPARE_KEYS"),
                        XCB_ATOM_CARDINAL, 32, loan.size(), loan.data());
    xcb_change_keyboard_mapping(left.get(), 1, 93, 2, &loan[1]);
    left.sync(Deadline(5s));
    ASSERT_NE(wholeMap(left), before);
    SharedKeyState otherState;
    const XTestSyntheticKeyboard next(otherState);
    EXPECT_TRUE(waitUntil([&] { return wholeMap(left) == before; }));
}

TEST(Typist, TypesNothingWithoutAServer) {
    unsetenv("DISPLAY");
    SharedKeyState state;
    XTestSyntheticKeyboard keyboard(state);
    EXPECT_EQ(keyboard.type({u"a"_s}, std::nullopt), std::nullopt);
}

TEST(Typist, TypesNothingWithoutTheExtensionForIt) {
    const PrivateServer server({"-extension", "XTEST"});
    SharedKeyState state;
    XTestSyntheticKeyboard keyboard(state);
    EXPECT_EQ(keyboard.type({u"a"_s}, std::nullopt), std::nullopt);
    EXPECT_FALSE(keyboard.chord(Chord::paste, std::nullopt));
}

} // namespace
} // namespace velorin

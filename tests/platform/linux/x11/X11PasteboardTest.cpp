#include "platform/linux/x11/X11Pasteboard.h"

#include "platform/linux/x11/XEventLoop.h"

#include "tests/platform/linux/x11/support/PrivateServer.h"
#include "tests/platform/linux/x11/support/TestOwner.h"
#include "tests/platform/linux/x11/support/Xclip.h"

#include <gmock/gmock.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace velorin {
namespace {

constexpr auto clipboard = PasteboardSelection::clipboard;
constexpr auto primary = PasteboardSelection::primary;

QByteArray noise(qsizetype bytes) {
    QByteArray data(bytes, Qt::Uninitialized);
    std::uint32_t state = 1;
    for (auto& byte : data) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<char>(state >> 24U);
    }
    return data;
}

PasteboardContents textAndImage() {
    return {{"UTF8_STRING", "UTF8_STRING", 8, "Grüße"},
            {"STRING", "STRING", 8,
             "Gr\xfc\xdf"
             "e"},
            {"text/html", "text/html", 8, QByteArray("<b>a\0b</b>", 10)},
            {"image/png", "image/png", 8, noise(3'000'000)},
            {"x-numbers", "INTEGER", 32, noise(40)},
            {"x-empty", "STRING", 8, QByteArray()}};
}

template <typename Predicate>
bool eventually(Predicate predicate) {
    const Deadline deadline(5s);
    while (!predicate()) {
        if (deadline.hasPassed())
            return false;
        std::this_thread::sleep_for(1ms);
    }
    return true;
}

class X11PasteboardTest : public testing::Test {
protected:
    PrivateServer server;
    X11Pasteboard pasteboard;
};

TEST_F(X11PasteboardTest, CopiesAsAUserWouldWithoutAnyMark) {
    ASSERT_TRUE(pasteboard.copy(clipboard, u"Grüße"_s));
    EXPECT_EQ(pasteboard.read(clipboard, 300ms), u"Grüße"_s);
    const auto contents = X11Pasteboard().save(clipboard, 300ms);
    ASSERT_TRUE(contents);
    EXPECT_FALSE(contents->empty());
    for (const auto& entry : *contents)
        EXPECT_THAT(entry.type.toStdString(),
                    testing::Not(testing::AnyOf(transientType, concealedType, "x-kde-passwordManagerHint")));
}

TEST_F(X11PasteboardTest, SavesNothingWhereNothingIs) {
    EXPECT_EQ(pasteboard.save(clipboard, 300ms), PasteboardContents{});
    EXPECT_EQ(pasteboard.save(primary, 300ms), PasteboardContents{});
}

TEST_F(X11PasteboardTest, SavesEveryFormByteForByte) {
    const TestOwner owner("CLIPBOARD", textAndImage());
    const auto saved = pasteboard.save(clipboard, 5s);
    ASSERT_TRUE(saved);
    EXPECT_EQ(*saved, textAndImage());
    EXPECT_TRUE(owner.isOwner());
}

TEST_F(X11PasteboardTest, SavesAHundredForms) {
    PasteboardContents forms;
    for (int i = 0; i < 100; ++i)
        forms.push_back({"application/x-form-" + QByteArray::number(i), "STRING", 8, noise(1 + i * 37)});
    const TestOwner owner("CLIPBOARD", forms);
    EXPECT_EQ(pasteboard.save(clipboard, 5s), forms);
}

TEST_F(X11PasteboardTest, OffersTheTextWithTheMarks) {
    const auto text = u"Grüße, 世界 👋"_s;
    ASSERT_TRUE(pasteboard.write(clipboard, text));
    EXPECT_EQ(readWithXclip(u"clipboard"_s, u"UTF8_STRING"_s), text.toUtf8());
    EXPECT_EQ(readWithXclip(u"clipboard"_s, u"text/plain;charset=utf-8"_s), text.toUtf8());
    EXPECT_EQ(readWithXclip(u"clipboard"_s, u"x-kde-passwordManagerHint"_s), "secret");
    const auto targets = readWithXclip(u"clipboard"_s, u"TARGETS"_s).value_or(QByteArray()).split('\n');
    for (const char* type : {transientType, concealedType, "TARGETS", "MULTIPLE", "TIMESTAMP"})
        EXPECT_TRUE(targets.contains(type)) << type;
    EXPECT_FALSE(targets.contains("STRING")) << "it cannot hold this text";
}

TEST_F(X11PasteboardTest, RestoresEveryFormByteForByteWithTheTransientMarkAlone) {
    PasteboardContents saved;
    {
        const TestOwner owner("CLIPBOARD", textAndImage());
        saved = pasteboard.save(clipboard, 5s).value();
    }
    const auto count = pasteboard.write(clipboard, u"dictated"_s);
    ASSERT_TRUE(count);
    ASSERT_TRUE(pasteboard.restore(clipboard, saved, *count));
    for (const auto& entry : textAndImage())
        if (entry.unitBits == 8) {
            EXPECT_EQ(readWithXclip(u"clipboard"_s, QString::fromLatin1(entry.type)), entry.data)
                << entry.type.constData();
        }
    const auto targets = readWithXclip(u"clipboard"_s, u"TARGETS"_s).value_or(QByteArray()).split('\n');
    EXPECT_TRUE(targets.contains(transientType));
    EXPECT_FALSE(targets.contains(concealedType));
    EXPECT_FALSE(targets.contains("DELETE"));

    X11Pasteboard another; // reads as a stranger: in pieces, and with the types of the values
    auto expected = textAndImage();
    expected.push_back({transientType, "STRING", 8, {}});
    EXPECT_EQ(another.save(clipboard, 5s), expected);
}

TEST_F(X11PasteboardTest, CountsItsOwnTakeoverAtOnceAndThatOfOthers) {
    const auto before = pasteboard.changeCount(clipboard);
    const auto count = pasteboard.write(clipboard, u"one"_s);
    ASSERT_TRUE(count);
    EXPECT_EQ(*count, before + 1);
    EXPECT_EQ(pasteboard.changeCount(clipboard), before + 1);
    ASSERT_TRUE(copyWithXclip(u"clipboard"_s, "user's"));
    EXPECT_EQ(pasteboard.changeCount(clipboard), before + 2);
    EXPECT_EQ(pasteboard.changeCount(primary), 0u);
}

TEST_F(X11PasteboardTest, KeepsWhatTheUserCopiedMeanwhile) {
    const auto count = pasteboard.write(clipboard, u"dictated"_s);
    ASSERT_TRUE(copyWithXclip(u"clipboard"_s, "user's"));
    EXPECT_FALSE(pasteboard.restore(clipboard, textAndImage(), count.value()));
    EXPECT_EQ(readWithXclip(u"clipboard"_s, u"UTF8_STRING"_s), "user's");
}

TEST_F(X11PasteboardTest, ClearsWhatWasEmpty) {
    const auto count = pasteboard.write(clipboard, u"dictated"_s);
    EXPECT_TRUE(pasteboard.restore(clipboard, {}, count.value()));
    EXPECT_EQ(pasteboard.save(clipboard, 300ms), PasteboardContents{});
    EXPECT_EQ(pasteboard.changeCount(clipboard), *count + 1);
}

TEST_F(X11PasteboardTest, LeavesTheClipboardToAnOwnerThatHangs) {
    TestOwnerHabits habits;
    habits.hangs = true;
    const TestOwner owner("CLIPBOARD", textAndImage(), habits);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(pasteboard.save(clipboard, 300ms), std::nullopt);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 450ms);
    EXPECT_TRUE(owner.isOwner());
}

TEST_F(X11PasteboardTest, DeclinesAnOwnerThatIsTooSlowForAllOfIt) {
    TestOwnerHabits habits;
    habits.delay = 100ms;
    const TestOwner owner("CLIPBOARD", textAndImage(), habits);
    EXPECT_EQ(pasteboard.save(clipboard, 300ms), std::nullopt);
    EXPECT_TRUE(owner.isOwner());
}

TEST_F(X11PasteboardTest, AnOwnerThatAnswersLateStillFindsTheWindowThatAsked) {
    TestOwnerHabits habits;
    habits.delay = 150ms;
    const TestOwner owner("CLIPBOARD", textAndImage(), habits);
    for (int answered = 1; answered <= 2; ++answered) {
        EXPECT_EQ(pasteboard.save(clipboard, 50ms), std::nullopt);
        EXPECT_TRUE(eventually([&] { return owner.answers() == answered; }));
        EXPECT_EQ(owner.errors(), 0);
    }
}

TEST_F(X11PasteboardTest, DeclinesAnEndlessTransfer) {
    TestOwnerHabits habits;
    habits.isEndless = true;
    const TestOwner owner("CLIPBOARD", {{"image/png", "image/png", 8, noise(100'000)}}, habits);
    EXPECT_EQ(pasteboard.save(clipboard, 300ms), std::nullopt);
}

/// How long it takes until nothing was saved and the thread is back, to answer something else.
std::chrono::steady_clock::duration timeOfSaving(X11Pasteboard& pasteboard) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(pasteboard.save(clipboard, 300ms), std::nullopt);
    (void)pasteboard.changeCount(clipboard);
    return std::chrono::steady_clock::now() - start;
}

TEST_F(X11PasteboardTest, DeclinesTwoHundredThousandFormsAtOnce) {
    TestOwnerHabits habits;
    habits.invented = 200'000;
    const TestOwner owner("CLIPBOARD", textAndImage(), habits);
    EXPECT_LT(timeOfSaving(pasteboard), 300ms);
    EXPECT_TRUE(owner.isOwner());
}

TEST_F(X11PasteboardTest, SeveralHundredFormsThatAreNoneDoNotHideThoseThatAreSome) {
    TestOwnerHabits habits;
    habits.invented = 900;
    const TestOwner owner("CLIPBOARD", {{"UTF8_STRING", "UTF8_STRING", 8, "text"}}, habits);
    const auto saved = pasteboard.save(clipboard, 5s);
    ASSERT_TRUE(saved);
    EXPECT_THAT(*saved, testing::Contains(PasteboardEntry{"UTF8_STRING", "UTF8_STRING", 8, "text"}));
}

TEST_F(X11PasteboardTest, PiecesThatComeFasterThanTheyAreReadEndWithTheDeadline) {
    TestOwnerHabits habits;
    habits.pushes = true;
    const TestOwner owner("CLIPBOARD", {{"image/png", "image/png", 8, noise(100'000)}}, habits);
    EXPECT_LT(timeOfSaving(pasteboard), 450ms);
}

/// Sends a message that means nothing to every window there is, again and again.
void flood(const std::atomic<bool>& isOver) {
    const auto connection = XConnection::open();
    while (!isOver && connection) {
        const auto tree = connection->reply<xcb_query_tree_reply_t>(
            xcb_query_tree(connection->get(), connection->root()), Deadline(5s));
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        for (int i = 0; tree && i < 200 * xcb_query_tree_children_length(tree.get()); ++i) {
            message.window = xcb_query_tree_children(tree.get())[i / 200];
            xcb_send_event(connection->get(), false, message.window, XCB_EVENT_MASK_NO_EVENT,
                           reinterpret_cast<const char*>(&message));
        }
        connection->sync(Deadline(5s));
    }
}

TEST_F(X11PasteboardTest, AFloodOfMessagesKeepsNobodyWaiting) {
    TestOwnerHabits habits;
    habits.hangs = true;
    const TestOwner owner("CLIPBOARD", textAndImage(), habits);
    std::atomic<bool> isOver = false;
    std::thread flooding([&] { flood(isOver); });
    for (int i = 0; i < 5; ++i)
        EXPECT_LT(timeOfSaving(pasteboard), 1s) << "the server has its hands full as well";
    isOver = true;
    flooding.join();
    EXPECT_TRUE(eventually([&] { return pasteboard.write(clipboard, u"text"_s).has_value(); }));
}

TEST_F(X11PasteboardTest, DeclinesWhatIsTooLarge) {
    const TestOwner owner("CLIPBOARD", {{"image/bmp", "image/bmp", 8, noise(65 * 1024 * 1024)}});
    EXPECT_EQ(pasteboard.save(clipboard, 30s), std::nullopt);
}

TEST_F(X11PasteboardTest, TakesAnOwnerThatDiesMidwayForAnEmptyClipboard) {
    TestOwnerHabits habits;
    habits.diesAtRequest = 2;
    const TestOwner owner("CLIPBOARD", textAndImage(), habits);
    const auto saved = pasteboard.save(clipboard, 2s);
    EXPECT_EQ(saved, PasteboardContents{}) << "nothing is left that could be restored";
}

TEST_F(X11PasteboardTest, ReadsText) {
    EXPECT_EQ(pasteboard.read(clipboard, 300ms), std::nullopt);
    ASSERT_TRUE(copyWithXclip(u"clipboard"_s, "Grüße"));
    EXPECT_EQ(pasteboard.read(clipboard, 300ms), u"Grüße"_s);
    ASSERT_TRUE(pasteboard.write(clipboard, u"ours"_s));
    EXPECT_EQ(pasteboard.read(clipboard, 300ms), u"ours"_s);
    const TestOwner owner("CLIPBOARD", {{"image/png", "image/png", 8, noise(10)}});
    EXPECT_EQ(pasteboard.read(clipboard, 300ms), std::nullopt);
}

TEST_F(X11PasteboardTest, TellsWhichProcessFetched) {
    ASSERT_TRUE(pasteboard.write(clipboard, u"dictated"_s));
    EXPECT_TRUE(pasteboard.fetches(clipboard).empty());
    QProcess reader;
    reader.start(u"xclip"_s, {u"-o"_s, u"-selection"_s, u"clipboard"_s});
    ASSERT_TRUE(reader.waitForStarted());
    const auto process = reader.processId();
    EXPECT_TRUE(pasteboard.awaitFetch(clipboard, 0, 5s));
    EXPECT_THAT(pasteboard.fetches(clipboard), testing::ElementsAre(PasteboardFetch{process, false}));
    ASSERT_TRUE(reader.waitForFinished());
    ASSERT_TRUE(pasteboard.write(clipboard, u"another"_s));
    EXPECT_TRUE(pasteboard.fetches(clipboard).empty());
}

TEST_F(X11PasteboardTest, DoesNotCountQuestionsAndMarksAsFetches) {
    ASSERT_TRUE(pasteboard.write(clipboard, u"dictated"_s));
    EXPECT_TRUE(readWithXclip(u"clipboard"_s, u"TARGETS"_s));
    EXPECT_TRUE(readWithXclip(u"clipboard"_s, u"x-kde-passwordManagerHint"_s));
    EXPECT_TRUE(pasteboard.fetches(clipboard).empty());
    EXPECT_FALSE(pasteboard.awaitFetch(clipboard, 0, 10ms));
}

TEST_F(X11PasteboardTest, StirsThoseWhoHaveAskedForTheText) {
    const auto reader = XConnection::open();
    ASSERT_TRUE(reader);
    XEventLoop loop(*reader);
    int stirred = 0;
    bool isAnswered = false;
    const auto listening = loop.listen([&](const xcb_generic_event_t& event) {
        stirred += typeOf(event) == XCB_CLIENT_MESSAGE;
        isAnswered = isAnswered || typeOf(event) == XCB_SELECTION_NOTIFY;
    });
    ASSERT_TRUE(pasteboard.write(clipboard, u"text"_s));
    pasteboard.stirReaders(clipboard);
    EXPECT_TRUE(pasteboard.changeCount(clipboard)) << "done behind the stirring";
    EXPECT_TRUE(loop.catchUp(Deadline(5s)));
    EXPECT_EQ(stirred, 0) << "has not asked yet";

    xcb_convert_selection(reader->get(), loop.window(), reader->atom("CLIPBOARD"), reader->atom("TARGETS"),
                          reader->atom("_ANSWER"), XCB_CURRENT_TIME);
    ASSERT_TRUE(loop.waitFor([&] { return isAnswered; }, Deadline(5s)));
    pasteboard.stirReaders(clipboard);
    EXPECT_TRUE(loop.waitFor([&] { return stirred == 1; }, Deadline(5s)));

    // A text of its own later, the asking is to be done again.
    ASSERT_TRUE(pasteboard.write(clipboard, u"another text"_s));
    pasteboard.stirReaders(clipboard);
    EXPECT_TRUE(pasteboard.changeCount(clipboard));
    EXPECT_TRUE(loop.catchUp(Deadline(5s)));
    EXPECT_EQ(stirred, 1);
}

TEST_F(X11PasteboardTest, KnowsTheClipboardManager) {
    ASSERT_TRUE(pasteboard.write(clipboard, u"dictated"_s));
    X11Pasteboard manager; // whoever owns this selection is the manager, whatever its name
    ASSERT_TRUE(manager.write(primary, QString()));
    const auto connection = XConnection::open();
    const auto window = xcb_generate_id(connection->get());
    xcb_create_window(connection->get(), 0, window, connection->root(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_set_selection_owner(connection->get(), window, connection->atom("CLIPBOARD_MANAGER"), 0);
    xcb_convert_selection(connection->get(), window, connection->atom("CLIPBOARD"),
                          connection->atom("UTF8_STRING"), XCB_ATOM_CUT_BUFFER0, 0);
    connection->flush();
    ASSERT_TRUE(pasteboard.awaitFetch(clipboard, 0, 5s));
    EXPECT_THAT(pasteboard.fetches(clipboard), testing::ElementsAre(PasteboardFetch{getpid(), true}));
}

TEST_F(X11PasteboardTest, SendsLongTextInPieces) {
    QString text;
    for (int i = 0; i < 200'000; ++i)
        text += u"äöü%1 "_s.arg(i % 10);
    ASSERT_TRUE(pasteboard.write(clipboard, text));
    EXPECT_EQ(readWithXclip(u"clipboard"_s, u"UTF8_STRING"_s), text.toUtf8());
    EXPECT_EQ(pasteboard.fetches(clipboard).size(), 1u);
}

TEST_F(X11PasteboardTest, KeepsTheSelectionsApart) {
    ASSERT_TRUE(copyWithXclip(u"clipboard"_s, "user's"));
    ASSERT_TRUE(pasteboard.write(primary, u"dictated"_s));
    EXPECT_EQ(readWithXclip(u"primary"_s, u"UTF8_STRING"_s), "dictated");
    EXPECT_EQ(readWithXclip(u"clipboard"_s, u"UTF8_STRING"_s), "user's");
}

TEST(X11Pasteboard, HandsWhatIsLeftToTheClipboardManagerAtTheEnd) {
    PrivateServer server;
    const auto manager = XConnection::open();
    const auto window = xcb_generate_id(manager->get());
    xcb_create_window(manager->get(), 0, window, manager->root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_set_selection_owner(manager->get(), window, manager->atom("CLIPBOARD_MANAGER"), 0);
    ASSERT_TRUE(manager->sync(Deadline(5s)));
    std::thread ending([] {
        X11Pasteboard pasteboard;
        EXPECT_TRUE(pasteboard.copy(clipboard, u"kept"_s));
    });
    std::optional<xcb_selection_request_event_t> request;
    EXPECT_TRUE(eventually([&] {
        const XcbPtr<xcb_generic_event_t> event(xcb_poll_for_event(manager->get()));
        if (event && (event->response_type & 0x7f) == XCB_SELECTION_REQUEST)
            request = reinterpret_cast<const xcb_selection_request_event_t&>(*event);
        return request.has_value();
    }));
    ASSERT_TRUE(request);
    EXPECT_EQ(request->target, manager->atom("SAVE_TARGETS"));
    EXPECT_EQ(readWithXclip(u"clipboard"_s, u"UTF8_STRING"_s), "kept") << "it still answers";
    xcb_selection_notify_event_t notify{};
    notify.response_type = XCB_SELECTION_NOTIFY;
    notify.requestor = request->requestor;
    notify.selection = request->selection;
    notify.target = request->target;
    notify.property = request->property;
    xcb_send_event(manager->get(), 0, request->requestor, 0, reinterpret_cast<const char*>(&notify));
    manager->flush();
    ending.join();
}

TEST(X11Pasteboard, HandsNoSecretToTheClipboardManagerAtTheEnd) {
    PrivateServer server;
    const auto manager = XConnection::open();
    const auto window = xcb_generate_id(manager->get());
    xcb_create_window(manager->get(), 0, window, manager->root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_set_selection_owner(manager->get(), window, manager->atom("CLIPBOARD_MANAGER"), 0);
    ASSERT_TRUE(manager->sync(Deadline(5s)));
    {
        X11Pasteboard pasteboard;
        EXPECT_TRUE(pasteboard.restore(
            clipboard,
            {{"UTF8_STRING", "UTF8_STRING", 8, "hunter2"}, {passwordHintType, passwordHintType, 8, "secret"}},
            pasteboard.changeCount(clipboard)));
    }
    ASSERT_TRUE(manager->sync(Deadline(5s)));
    while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(manager->get())})
        EXPECT_NE(event->response_type & 0x7f, XCB_SELECTION_REQUEST);
}

TEST(X11Pasteboard, FailsInEveryOperationWithoutAServer) {
    unsetenv("DISPLAY");
    X11Pasteboard pasteboard;
    EXPECT_EQ(pasteboard.save(clipboard, 300ms), std::nullopt);
    EXPECT_EQ(pasteboard.write(clipboard, u"text"_s), std::nullopt);
    EXPECT_FALSE(pasteboard.restore(clipboard, textAndImage(), 0));
    EXPECT_EQ(pasteboard.read(clipboard, 300ms), std::nullopt);
    EXPECT_EQ(pasteboard.changeCount(clipboard), 0u);
}

TEST(X11Pasteboard, FailsAndEndsCleanlyOnceTheServerIsGone) {
    PrivateServer server;
    X11Pasteboard pasteboard;
    ASSERT_TRUE(pasteboard.write(clipboard, u"text"_s));
    server.kill();
    EXPECT_EQ(pasteboard.write(clipboard, u"text"_s), std::nullopt);
    EXPECT_EQ(pasteboard.save(clipboard, 300ms), std::nullopt);
}

} // namespace
} // namespace velorin

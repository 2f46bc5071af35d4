#include "platform/linux/x11/X11Windows.h"

#include "platform/linux/Applications.h"
#include "text/ForeignText.h"

#include <QFile>
#include <QFileInfo>

#include <cstring>
#include <poll.h>

namespace velorin {

using namespace Qt::Literals::StringLiterals;

namespace {

/// A list of windows may be long; the topmost come last.
constexpr std::uint32_t mostWindows = 65536;
constexpr qsizetype longestTitle = 1024;

std::vector<std::uint32_t> numbersOf(const QByteArray& bytes) {
    std::vector<std::uint32_t> numbers(static_cast<std::size_t>(bytes.size()) / sizeof(std::uint32_t));
    if (!numbers.empty())
        std::memcpy(numbers.data(), bytes.constData(), numbers.size() * sizeof(std::uint32_t));
    return numbers;
}

/// A window says of itself whatever it likes.
QString nameOf(const QByteArray& told) {
    return ForeignText::oneLine(QString::fromUtf8(told), ForeignText::longestName);
}

std::optional<QString> presentOrNothing(const QString& text) {
    return text.isEmpty() ? std::nullopt : std::optional(text);
}

} // namespace

X11Windows::X11Windows() : connection_(XConnection::open()) {
    if (connection_)
        processes_ = std::make_unique<ClientProcesses>(*connection_);
}

std::optional<RunningApplication> X11Windows::frontmostApplication() {
    if (!connection_)
        return std::nullopt;
    connection_->dropEvents();
    const Deadline deadline(serverDeadline);
    const auto window = activeWindow(deadline);
    if (window == XCB_WINDOW_NONE)
        return std::nullopt;
    return applicationOf(window, deadline);
}

xcb_window_t X11Windows::activeWindow(Deadline deadline) {
    if (const auto window = numberIn(connection_->root(), "_NET_ACTIVE_WINDOW", deadline))
        return window;
    return focusedTopLevel(deadline); // without a window manager, or with one that does not tell
}

xcb_window_t X11Windows::focusedTopLevel(Deadline deadline) {
    auto* c = connection_->get();
    auto window = focusedWindow(deadline);
    while (window > XCB_INPUT_FOCUS_POINTER_ROOT && window != connection_->root()) {
        if (!property(window, "WM_CLASS", deadline).isEmpty())
            return window;
        const auto tree = connection_->reply<xcb_query_tree_reply_t>(xcb_query_tree(c, window), deadline);
        window = tree ? tree->parent : xcb_window_t{XCB_WINDOW_NONE};
    }
    return XCB_WINDOW_NONE;
}

RunningApplication X11Windows::applicationOf(xcb_window_t window, Deadline deadline) {
    RunningApplication application;
    application.window = window;
    application.processIdentifier = processOf(window, deadline);
    const auto process = QString::number(application.processIdentifier);
    application.executablePath = QFile::symLinkTarget(u"/proc/"_s + process + u"/exe"_s);
    const auto names = property(window, "WM_CLASS", deadline).split('\0');
    Applications::Traces traces;
    traces.windowInstance = nameOf(names.value(0));
    traces.windowClass = nameOf(names.value(1));
    traces.applicationId = nameOf(property(window, "_GTK_APPLICATION_ID", deadline));
    if (traces.applicationId.isEmpty())
        traces.applicationId = nameOf(property(window, "_KDE_NET_WM_DESKTOP_FILE", deadline));
    traces.executable = application.executablePath;
    if (const auto identity = Applications::identify(traces)) {
        application.bundleIdentifier = identity->bundleIdentifier;
        application.kin = identity->kin;
    }
    const auto program = QFileInfo(traces.executable).fileName();
    const auto entry =
        desktopFiles_.find({traces.applicationId, traces.windowClass, traces.windowInstance, program});
    application.localizedName = entry ? presentOrNothing(entry->name) : presentOrNothing(traces.windowClass);
    if (entry)
        application.icon = presentOrNothing(entry->icon);
    return application;
}

void X11Windows::activate(const RunningApplication& application) {
    if (!connection_)
        return;
    const auto window = windowOf(application, Deadline(serverDeadline));
    if (window == XCB_WINDOW_NONE)
        return;
    constexpr std::uint32_t onBehalfOfTheUser = 2; // window managers refuse programs that push themselves
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = connection_->atom("_NET_ACTIVE_WINDOW");
    message.data.data32[0] = onBehalfOfTheUser;
    message.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(connection_->get(), false, connection_->root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
    connection_->flush();
}

bool X11Windows::awaitFrontmost(const RunningApplication& application, Deadline deadline) {
    if (!connection_)
        return false;
    listenToRoot(XCB_EVENT_MASK_PROPERTY_CHANGE);
    const bool isThere = lookUntilFront(application, deadline);
    listenToRoot(XCB_EVENT_MASK_NO_EVENT);
    return isThere;
}

void X11Windows::listenToRoot(std::uint32_t events) {
    xcb_change_window_attributes(connection_->get(), connection_->root(), XCB_CW_EVENT_MASK, &events);
    connection_->flush();
}

bool X11Windows::lookUntilFront(const RunningApplication& application, Deadline deadline) {
    // The focus itself comes with no event that we could ask for, but close behind the window manager's note.
    constexpr int lookInterval = 5;
    while (!isInFront(application, Deadline(serverDeadline))) {
        if (connection_->isBroken() || deadline.hasPassed())
            return false;
        connection_->dropEvents();
        pollfd waiting{connection_->fileDescriptor(), POLLIN, 0};
        poll(&waiting, 1, std::min(lookInterval, deadline.pollTimeout()));
    }
    return true;
}

bool X11Windows::isInFront(const RunningApplication& application, Deadline deadline) {
    const auto window = activeWindow(deadline);
    if (window == XCB_WINDOW_NONE || processOf(window, deadline) != application.processIdentifier)
        return false;
    const auto focus = focusedWindow(deadline);
    return focus == XCB_INPUT_FOCUS_POINTER_ROOT ||
           (focus != XCB_WINDOW_NONE && processOf(focus, deadline) == application.processIdentifier);
}

xcb_window_t X11Windows::focusedWindow(Deadline deadline) {
    const auto focus =
        connection_->reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(connection_->get()), deadline);
    return focus ? focus->focus : xcb_window_t{XCB_WINDOW_NONE};
}

std::optional<QString> X11Windows::titleOf(const RunningApplication& application) {
    if (!connection_)
        return std::nullopt;
    const Deadline deadline(serverDeadline);
    const auto window = windowOf(application, deadline);
    if (window == XCB_WINDOW_NONE)
        return std::nullopt;
    auto title = QString::fromUtf8(property(window, "_NET_WM_NAME", deadline));
    if (title.isEmpty())
        title = QString::fromUtf8(property(window, "WM_NAME", deadline));
    return presentOrNothing(ForeignText::oneLine(title, longestTitle));
}

xcb_window_t X11Windows::windowOf(const RunningApplication& application, Deadline deadline) {
    const auto window = static_cast<xcb_window_t>(application.window);
    return window != XCB_WINDOW_NONE ? window : topmostWindowOf(application.processIdentifier, deadline);
}

xcb_window_t X11Windows::topmostWindowOf(qint64 process, Deadline deadline) {
    const auto windows =
        numbersOf(property(connection_->root(), "_NET_CLIENT_LIST_STACKING", deadline, mostWindows));
    const bool isKnown = process != 0;
    for (auto window = windows.rbegin(); window != windows.rend() && isKnown && !deadline.hasPassed();
         ++window)
        if (processOf(*window, deadline) == process)
            return *window;
    return XCB_WINDOW_NONE;
}

qint64 X11Windows::processOf(xcb_window_t window, Deadline deadline) {
    // The server's word first: what a window claims is a number in the program's own sandbox or machine.
    if (const auto process = processes_->processOf(window, deadline))
        return process;
    return numberIn(window, "_NET_WM_PID", deadline);
}

QByteArray X11Windows::property(xcb_window_t window, const char* name, Deadline deadline,
                                std::uint32_t longest) {
    const auto answer = connection_->reply<xcb_get_property_reply_t>(
        xcb_get_property(connection_->get(), false, window, connection_->atom(name), XCB_ATOM_ANY, 0,
                         longest),
        deadline);
    if (!answer)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(answer.get())),
            xcb_get_property_value_length(answer.get())};
}

std::uint32_t X11Windows::numberIn(xcb_window_t window, const char* name, Deadline deadline) {
    const auto numbers = numbersOf(property(window, name, deadline));
    return numbers.empty() ? 0 : numbers.front();
}

} // namespace velorin

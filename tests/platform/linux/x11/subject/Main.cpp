// tap-subject [CONFIGURATION]: the shortcuts of the program, alone: the tap with its guard, the backend and
// synthetic chords, so that tests may stop and kill it. The configuration is its stored form.
//
// Writes a line for each thing that happens: "ready PROCESS", "edge NAME NANOSECONDS", "pasted", "lost".
// Reads the commands "paste" and "quit"; an end of its input ends it as well.
#include "platform/linux/desktop/SystemClock.h"
#include "platform/linux/x11/X11EventTap.h"
#include "platform/linux/x11/XTestSyntheticKeyboard.h"
#include "shortcuts/ShortcutBackend.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace {

long long now() {
    return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void say(const QByteArray& line) {
    std::puts(line.constData());
    std::fflush(stdout);
}

} // namespace

int main(int argc, char* argv[]) {
    using namespace velorin;
    QCoreApplication application(argc, argv);
    SharedKeyState keys;
    X11EventTap tap(keys);
    XTestSyntheticKeyboard keyboard(keys);
    SystemClock clock;
    ShortcutBackend backend(tap, clock);
    if (argc > 1)
        backend.setConfiguration(ShortcutConfiguration::fromJson(QByteArray(argv[1])).value());
    backend.onEvent = [](ShortcutEvent event) {
        say("edge " + name(event).toUtf8() + ' ' + QByteArray::number(now()));
    };
    backend.onTapStatusChanged = [](bool isActive) {
        if (!isActive)
            say("lost");
    };
    if (!backend.ensureTap())
        return 1;
    const Deadline deadline(std::chrono::seconds(10));
    const auto hasGrabs = [&] {
        return std::ranges::any_of(keys->grabbed, [](const auto& word) { return word != 0; });
    };
    while (!hasGrabs() && !backend.configuration().isDisabled() && !deadline.hasPassed())
        usleep(1000);
    say("ready " + QByteArray::number(getpid()));

    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &application, [&] {
        char commands[4096];
        const auto bytes = read(STDIN_FILENO, commands, sizeof commands);
        if (bytes <= 0) {
            QCoreApplication::quit();
            return;
        }
        for (const auto& command : QByteArray(commands, bytes).split('\n')) {
            if (command == "quit")
                QCoreApplication::quit();
            else if (command == "paste" && keyboard.chord(Chord::paste, std::nullopt))
                say("pasted");
        }
    });
    return QCoreApplication::exec();
}

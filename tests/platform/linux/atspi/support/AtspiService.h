/// The accessibility bus, its registry and one application with one field of text, all by one test: it
/// answers as told, which may be late, never, or with nonsense.
///
///     AtspiService service(bus.address());
///     service.change([](auto& s) { s.text = u"Hello"_s; });
///     service.tellFocus(true);
#pragma once

#include "tests/platform/linux/atspi/support/Nonsense.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <thread>

namespace velorin {

class AtspiService final {
public:
    struct State {
        QString text;
        int caret = 0; ///< In what this toolkit counts in, like the selection.
        int start = 0;
        int end = 0;
        unsigned role = 61;
        bool isFocused = true;
        bool isEditable = true;
        bool hasText = true;
        bool isWindow = false; ///< The field is the window itself, and a part of it has the focus as well.
        int closedItems = 0;   ///< In a closed menu that stands before the field.
        std::string toolkit = "gtk";
        std::chrono::milliseconds delay{0}; ///< Of each answer.
        qsizetype boast = 0;                ///< How many letters a text really has that is told to be short.
        std::set<std::string> silent;       ///< Methods that are never answered.
        std::set<std::string> garbled;      ///< Methods that are answered with bytes that are no UTF-8.
        std::set<std::string> nonsense;     ///< Methods that are answered with something else.
        std::set<std::string> strange; ///< Methods that are answered with anything, now and then too late.
        std::map<std::string, int> strangers; ///< How many such answers there have been.
        /// Said to be among the children of everything: names and paths, in which is anything.
        std::vector<std::pair<std::string, std::string>> references;
        bool floods = false;           ///< With events that it has the focus.
        std::set<std::string> lies;    ///< Methods that say yes and do nothing.
        std::set<std::string> refuses; ///< Methods that say no.
        bool isEnabled = false;
        QStringList calls;
    };

    explicit AtspiService(const std::string& address);
    ~AtspiService();
    AtspiService(const AtspiService&) = delete;
    AtspiService& operator=(const AtspiService&) = delete;

    void change(const std::function<void(State&)>& change);
    [[nodiscard]] State state();
    /// The event that a field sends when it gets the keyboard, or loses it.
    void tellFocus(bool isThere);
    /// What only the bus may say: that this application has left it.
    void tellDeath();

private:
    void run();
    void flood();
    void sendSignal(const char* interface, const char* name, const std::vector<std::string>& words);
    void answer(DBusMessage& call);
    void answerGarbled(DBusMessage& reply);
    void answerStrangely(DBusMessage& reply, DBusMessage& call, const std::string& method);
    bool fill(DBusMessage& reply, DBusMessage& call, const std::string& method);
    void property(DBusMessage& reply, DBusMessage& call);
    bool write(DBusMessage& call, const std::string& method);
    [[nodiscard]] QString between(int start, int end) const;
    [[nodiscard]] int count() const;

    std::mutex mutex_;
    State state_;
    Nonsense nonsense_{1};
    DBusConnection* connection_ = nullptr;
    bool isStopping_ = false;
    std::thread thread_;
};

} // namespace velorin

#include "platform/linux/x11/SpareKeys.h"

#include "platform/linux/x11/ThreadSetup.h"
#include "platform/linux/x11/WindowPing.h"

#include <QChar>

#include <algorithm>

namespace velorin {

using namespace std::chrono_literals;

namespace {

constexpr char loansProperty[] = "_VELORIN_SPARE_KEYS";
/// The last ones are left alone: the tap uses them as keys that mean nothing.
constexpr std::size_t keysOfTheTap = 2;
constexpr auto pingDeadline = 500ms;

xcb_keysym_t symbolOf(char32_t character) {
    const bool isLatin1 = (character >= 0x20 && character < 0x7f) || (character >= 0xa0 && character < 0x100);
    return isLatin1 ? character : 0x01000000 | character;
}

/// Lower and upper case where they are each other's, else the character twice: every level gives it.
std::pair<char32_t, char32_t> casesOf(char32_t character) {
    const char32_t lower = QChar::toLower(character);
    const char32_t upper = QChar::toUpper(character);
    const bool isPair = lower != upper && QChar::toUpper(lower) == upper && QChar::toLower(upper) == lower;
    return isPair ? std::pair(lower, upper) : std::pair(character, character);
}

void bindKey(const XConnection& connection, std::uint32_t key, const std::array<std::uint32_t, 2>& symbols) {
    xcb_change_keyboard_mapping(connection.get(), 1, static_cast<xcb_keycode_t>(key), 2, symbols.data());
}

} // namespace

SpareKeys::SpareKeys() : thread_([this] { run(); }) {}

SpareKeys::~SpareKeys() {
    {
        const std::scoped_lock lock(mutex_);
        isStopping_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

bool SpareKeys::lend(const XConnection& connection, const KeyboardMap& map,
                     std::span<const char32_t> characters, bool inBothCases) {
    std::vector<std::array<std::uint32_t, 2>> wanted;
    for (const auto character : characters) {
        const auto [lower, upper] = inBothCases ? casesOf(character) : std::pair(character, character);
        const std::array symbols{symbolOf(lower), symbolOf(upper)};
        if (std::ranges::find(wanted, symbols) == wanted.end())
            wanted.push_back(symbols);
    }
    const auto free = map.freeKeys();
    if (wanted.size() + keysOfTheTap > free.size())
        return false;
    const std::scoped_lock lock(mutex_);
    for (std::size_t i = 0; i < wanted.size(); ++i)
        loans_.push_back({free[i], wanted[i]});
    auto* c = connection.get();
    const auto name = xcb_intern_atom(c, false, sizeof loansProperty - 1, loansProperty);
    const auto atom = connection.reply<xcb_intern_atom_reply_t>(name, Deadline(serverDeadline));
    if (!atom) {
        loans_.clear();
        return false;
    }
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, connection.root(), atom->atom, XCB_ATOM_CARDINAL, 32,
                        static_cast<std::uint32_t>(loans_.size() * sizeof(Loan) / 4), loans_.data());
    for (std::size_t i = 0; i < wanted.size(); ++i)
        bindKey(connection, free[i], wanted[i]);
    connection.flush();
    lastUse_ = Deadline::Clock::now();
    changed_.notify_all();
    return true;
}

void SpareKeys::wereUsed(const std::optional<RunningApplication>& application) {
    const std::scoped_lock lock(mutex_);
    reader_ = application;
    lastUse_ = Deadline::Clock::now();
}

bool SpareKeys::isLending() {
    const std::scoped_lock lock(mutex_);
    return !loans_.empty();
}

void SpareKeys::run() {
    setUpThread("velorin-keys");
    const auto connection = XConnection::open();
    if (!connection)
        return;
    giveBack(*connection, loansIn(*connection));
    std::unique_lock lock(mutex_);
    while (!isStopping_ && !connection->isBroken()) {
        if (loans_.empty()) {
            changed_.wait(lock);
            continue;
        }
        const auto use = lastUse_;
        const auto isDisturbed = [&] { return isStopping_ || lastUse_ != use; };
        if (changed_.wait_until(lock, std::max(use + shortestLoan, Deadline::Clock::now() + 100ms),
                                isDisturbed))
            continue;
        const auto reader = reader_;
        lock.unlock();
        const bool isRead = !reader || hasReadItsEvents(*connection, *reader, Deadline(pingDeadline));
        connection->dropEvents();
        lock.lock();
        if (!isDisturbed() && (isRead || Deadline::Clock::now() >= use + longestLoan)) {
            giveBack(*connection, loans_);
            loans_.clear();
        }
    }
    giveBack(*connection, loans_);
}

std::vector<SpareKeys::Loan> SpareKeys::loansIn(XConnection& connection) {
    const auto property = connection.reply<xcb_get_property_reply_t>(
        xcb_get_property(connection.get(), false, connection.root(), connection.atom(loansProperty),
                         XCB_ATOM_CARDINAL, 0, 1024),
        Deadline(serverDeadline));
    if (!property || property->format != 32)
        return {};
    const std::span numbers(static_cast<const std::uint32_t*>(xcb_get_property_value(property.get())),
                            property->value_len);
    std::vector<Loan> loans;
    for (std::size_t i = 0; i + 2 < numbers.size(); i += 3)
        loans.push_back({numbers[i], {numbers[i + 1], numbers[i + 2]}});
    return loans;
}

void SpareKeys::giveBack(XConnection& connection, const std::vector<Loan>& loans) {
    if (loans.empty())
        return;
    const Deadline deadline(serverDeadline);
    const auto map = KeyboardMap::read(connection, deadline);
    if (!map)
        return;
    for (const auto& loan : loans) {
        const auto key = static_cast<xcb_keycode_t>(loan.key);
        // Somebody may have loaded another layout meanwhile.
        if (loan.key < 256 && map->symbol(key, 0) == loan.symbols[0])
            bindKey(connection, key, {XCB_NO_SYMBOL, XCB_NO_SYMBOL});
    }
    xcb_delete_property(connection.get(), connection.root(), connection.atom(loansProperty));
    (void)connection.sync(deadline);
}

} // namespace velorin

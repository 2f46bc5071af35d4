#include "platform/linux/x11/X11FloatingWindows.h"

#include <array>
#include <cstring>
#include <xcb/xfixes.h>

namespace velorin {
namespace {

constexpr auto compositor = "_NET_WM_CM_S0";
constexpr std::uint32_t longestProperty = 4096; // in units of four bytes

std::vector<std::uint32_t> numbersOf(const xcb_get_property_reply_t* reply) {
    if (reply == nullptr || reply->format != 32)
        return {};
    const auto length = static_cast<std::size_t>(xcb_get_property_value_length(reply));
    std::vector<std::uint32_t> numbers(length / sizeof(std::uint32_t));
    if (!numbers.empty())
        std::memcpy(numbers.data(), xcb_get_property_value(reply), numbers.size() * sizeof(std::uint32_t));
    return numbers;
}

bool overlaps(int firstA, int lastA, std::uint32_t firstB, std::uint32_t lastB) {
    return firstA <= static_cast<int>(lastB) && static_cast<int>(firstB) <= lastA;
}

} // namespace

QRect withoutStruts(const QRect& monitor, const QSize& screen,
                    const std::vector<std::vector<std::uint32_t>>& struts) {
    QRect left = monitor;
    for (const auto& strut : struts) {
        if (strut.size() < 12)
            continue;
        const auto width = [&strut](std::size_t side) { return static_cast<int>(strut[side]); };
        if (width(0) > 0 && overlaps(monitor.top(), monitor.bottom(), strut[4], strut[5]))
            left.setLeft(std::max(left.left(), width(0)));
        if (width(1) > 0 && overlaps(monitor.top(), monitor.bottom(), strut[6], strut[7]))
            left.setRight(std::min(left.right(), screen.width() - width(1) - 1));
        if (width(2) > 0 && overlaps(monitor.left(), monitor.right(), strut[8], strut[9]))
            left.setTop(std::max(left.top(), width(2)));
        if (width(3) > 0 && overlaps(monitor.left(), monitor.right(), strut[10], strut[11]))
            left.setBottom(std::min(left.bottom(), screen.height() - width(3) - 1));
    }
    // A panel in the middle of two monitors leaves nothing of this one: better on the panel than nowhere.
    return left.isValid() && monitor.contains(left) ? left : monitor;
}

X11FloatingWindows::X11FloatingWindows() : connection_(XConnection::open()), owners_({compositor}) {
    if (connection_ && connection_->extension(xcb_xfixes_id) != nullptr)
        (void)connection_->reply<xcb_xfixes_query_version_reply_t>(
            xcb_xfixes_query_version(connection_->get(), 5, 0), Deadline(serverDeadline));
}

void X11FloatingWindows::adopt(quint64 window) {
    if (!connection_)
        return;
    auto* c = connection_->get();
    const auto id = static_cast<xcb_window_t>(window);
    const auto set = [&](const char* name, xcb_atom_t type, std::uint32_t value) {
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, id, connection_->atom(name), type, 32, 1, &value);
    };
    set("_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, connection_->atom("_NET_WM_WINDOW_TYPE_NOTIFICATION"));
    set("_COMPTON_SHADOW", XCB_ATOM_CARDINAL, 0); // the view draws its own
    // An empty region for the pointer: every click goes to what lies below.
    const xcb_xfixes_region_t nothing = xcb_generate_id(c);
    xcb_xfixes_create_region(c, nothing, 0, nullptr);
    constexpr xcb_shape_kind_t input = 2;
    xcb_xfixes_set_window_shape_region(c, id, input, 0, 0, nothing);
    xcb_xfixes_destroy_region(c, nothing);
    connection_->flush();
}

void X11FloatingWindows::raise(quint64 window) {
    if (!connection_)
        return;
    constexpr std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(connection_->get(), static_cast<xcb_window_t>(window), XCB_CONFIG_WINDOW_STACK_MODE,
                         &above);
    connection_->flush();
}

void X11FloatingWindows::setShape(quint64 window, const QList<QRect>& shape) {
    if (!connection_)
        return;
    auto* c = connection_->get();
    constexpr xcb_shape_kind_t bounding = 0;
    xcb_xfixes_region_t region = XCB_NONE;
    if (!shape.isEmpty()) {
        std::vector<xcb_rectangle_t> rectangles;
        for (const auto& each : shape)
            rectangles.push_back({static_cast<std::int16_t>(each.x()), static_cast<std::int16_t>(each.y()),
                                  static_cast<std::uint16_t>(each.width()),
                                  static_cast<std::uint16_t>(each.height())});
        region = xcb_generate_id(c);
        xcb_xfixes_create_region(c, region, static_cast<std::uint32_t>(rectangles.size()), rectangles.data());
    }
    xcb_xfixes_set_window_shape_region(c, static_cast<xcb_window_t>(window), bounding, 0, 0, region);
    if (region != XCB_NONE)
        xcb_xfixes_destroy_region(c, region);
    connection_->flush();
}

bool X11FloatingWindows::isComposited() const { return owners_.hasOwner(compositor); }

Subscription X11FloatingWindows::onCompositingChanged(std::function<void()> action) {
    return owners_.onChange(std::move(action));
}

std::optional<QRect> X11FloatingWindows::frame(quint64 window) {
    if (!connection_ || window == 0)
        return std::nullopt;
    auto* c = connection_->get();
    const Deadline deadline(serverDeadline);
    const auto id = static_cast<xcb_window_t>(window);
    const auto sizeCookie = xcb_get_geometry(c, id);
    const auto placeCookie = xcb_translate_coordinates(c, id, connection_->root(), 0, 0);
    const auto size = connection_->reply<xcb_get_geometry_reply_t>(sizeCookie, deadline);
    const auto place = connection_->reply<xcb_translate_coordinates_reply_t>(placeCookie, deadline);
    if (!size || !place)
        return std::nullopt;
    return QRect(place->dst_x, place->dst_y, size->width, size->height);
}

QRect X11FloatingWindows::workArea(const QRect& monitor) {
    if (!connection_)
        return monitor;
    connection_->dropEvents();
    const Deadline deadline(serverDeadline);
    const auto screen = connection_->reply<xcb_get_geometry_reply_t>(
        xcb_get_geometry(connection_->get(), connection_->root()), deadline);
    return screen ? withoutStruts(monitor, QSize(screen->width, screen->height), struts(deadline)) : monitor;
}

std::vector<std::uint32_t> X11FloatingWindows::numbers(xcb_window_t window, const char* name,
                                                       Deadline deadline) {
    const auto cookie = xcb_get_property(connection_->get(), 0, window, connection_->atom(name),
                                         XCB_GET_PROPERTY_TYPE_ANY, 0, longestProperty);
    return numbersOf(connection_->reply<xcb_get_property_reply_t>(cookie, deadline).get());
}

std::vector<std::vector<std::uint32_t>> X11FloatingWindows::struts(Deadline deadline) {
    const auto windows = numbers(connection_->root(), "_NET_CLIENT_LIST", deadline);
    const auto strut = connection_->atom("_NET_WM_STRUT_PARTIAL");
    // All questions first, then all answers: one round trip however many windows there are.
    std::vector<xcb_get_property_cookie_t> cookies;
    for (const auto window : windows)
        cookies.push_back(xcb_get_property(connection_->get(), 0, window, strut, XCB_ATOM_CARDINAL, 0, 12));
    std::vector<std::vector<std::uint32_t>> found;
    for (const auto cookie : cookies)
        found.push_back(numbersOf(connection_->reply<xcb_get_property_reply_t>(cookie, deadline).get()));
    return found;
}

} // namespace velorin

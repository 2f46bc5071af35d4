#include "platform/linux/x11/ClientProcesses.h"

#include <array>
#include <fstream>
#include <xcb/res.h>

namespace velorin {

namespace {

/// The kernel's names of processes hold 15 bytes.
constexpr std::array<std::string_view, 27> managerNames{
    "plasmashell",   "klipper",       "copyq",          "parcellite",      "clipit",      "diodon",
    "gpaste-daemon", "xfce4-clipman", "clipmenud",      "greenclip",       "autocutsel",  "xclipboard",
    "qlipper",       "gsd-clipboard", "csd-clipboard",  "mate-settings-d", "xfsettingsd", "clipcatd",
    "clipster",      "glipper",       "indicator-keyb", "keepboard",       "fcitx5",      "spice-vdagent",
    "vmtoolsd",      "VBoxClient",    "xrdp-chansrv"};

std::string processName(std::int64_t process) {
    std::string name;
    std::ifstream file("/proc/" + std::to_string(process) + "/comm");
    std::getline(file, name);
    return name;
}

} // namespace

bool isClipboardManagerName(std::string_view name) {
    return std::ranges::find(managerNames, name) != managerNames.end();
}

ClientProcesses::ClientProcesses(XConnection& connection, std::chrono::milliseconds patience)
    : connection_(connection), canAsk_(connection.extension(xcb_res_id, patience) != nullptr) {
    if (!canAsk_)
        return;
    const auto version = connection_.reply<xcb_res_query_version_reply_t>(
        xcb_res_query_version(connection_.get(), 1, 2), Deadline(patience));
    canAsk_ = version && (version->server_major > 1 || version->server_minor >= 2);
}

bool ClientProcesses::hasConnections(std::int64_t process, Deadline deadline) {
    if (!canAsk_)
        return false;
    constexpr std::uint32_t everybody = 0;
    const xcb_res_client_id_spec_t spec{everybody, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const auto answer = connection_.reply<xcb_res_query_client_ids_reply_t>(
        xcb_res_query_client_ids(connection_.get(), 1, &spec), deadline);
    if (!answer)
        return false;
    for (auto ids = xcb_res_query_client_ids_ids_iterator(answer.get()); ids.rem > 0;
         xcb_res_client_id_value_next(&ids))
        if (xcb_res_client_id_value_value_length(ids.data) > 0 &&
            *xcb_res_client_id_value_value(ids.data) == process)
            return true;
    return false;
}

std::int64_t ClientProcesses::processOf(xcb_window_t window, Deadline deadline) {
    if (!canAsk_)
        return 0;
    const xcb_res_client_id_spec_t spec{connection_.clientOf(window),
                                        XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const auto answer = connection_.reply<xcb_res_query_client_ids_reply_t>(
        xcb_res_query_client_ids(connection_.get(), 1, &spec), deadline);
    if (!answer)
        return 0;
    for (auto ids = xcb_res_query_client_ids_ids_iterator(answer.get()); ids.rem > 0;
         xcb_res_client_id_value_next(&ids)) {
        if ((ids.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) != 0 &&
            xcb_res_client_id_value_value_length(ids.data) > 0)
            return *xcb_res_client_id_value_value(ids.data);
    }
    return 0;
}

bool ClientProcesses::isClipboardManager(xcb_window_t window, std::int64_t process, Deadline deadline) {
    const auto manager = connection_.reply<xcb_get_selection_owner_reply_t>(
        xcb_get_selection_owner(connection_.get(), connection_.atom("CLIPBOARD_MANAGER")), deadline);
    if (manager && manager->owner != XCB_WINDOW_NONE &&
        connection_.clientOf(manager->owner) == connection_.clientOf(window))
        return true;
    return process != 0 && isClipboardManagerName(processName(process));
}

} // namespace velorin

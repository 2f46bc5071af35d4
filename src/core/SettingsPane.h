/// The panes of the settings window, as a value that the model can ask for. In the window's order.
#pragma once

namespace velorin {

enum class SettingsPane {
    overview,
    activation,
    transcription,
    personalization,
    ai,
    output,
    history,
    permissions,
    privacy
};

} // namespace velorin

/// What the settings say of AI, worked out on every read. Pure functions of the model's fields and of whether
/// the machine's own model can be used now.
#pragma once

namespace velorin {

class AppState;

namespace AIReadiness {

/// Whether a provider can be asked.
[[nodiscard]] bool isConfigured(const AppState& state, bool modelAvailable);
/// Whether what is asked stays on this machine.
[[nodiscard]] bool runsOnDevice(const AppState& state);
/// Whether recordings go to the provider for transcription.
[[nodiscard]] bool transcribes(const AppState& state, bool modelAvailable);
/// Whether any of the features has all that it needs.
[[nodiscard]] bool isReady(const AppState& state, bool modelAvailable);

} // namespace AIReadiness
} // namespace velorin

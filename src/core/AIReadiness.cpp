#include "core/AIReadiness.h"

#include "ai/Endpoint.h"
#include "core/AppState.h"
#include "text/WhiteSpace.h"

namespace velorin::AIReadiness {
namespace {

bool isBlank(const QString& text) {
    return WhiteSpace::trimmed(text, WhiteSpace::Set::whitespacesAndNewlines).isEmpty();
}

} // namespace

bool isConfigured(const AppState& state, bool modelAvailable) {
    if (state.aiProvider() == AIProvider::apple)
        return modelAvailable;
    return !isBlank(state.aiEndpoint()) && !isBlank(state.aiModel()) &&
           (state.aiKeyConfigured() || Endpoint::isLocal(state.aiEndpoint()));
}

bool runsOnDevice(const AppState& state) {
    return state.aiProvider() == AIProvider::apple || Endpoint::isLocal(state.aiEndpoint());
}

bool transcribes(const AppState& state, bool modelAvailable) {
    return state.aiTranscriptionEnabled() && sendsAudio(state.aiProvider()) &&
           isConfigured(state, modelAvailable) && !isBlank(state.aiTranscriptionModel());
}

bool isReady(const AppState& state, bool modelAvailable) {
    const bool isUsed = state.aiEnabled() || state.aiPolishEnabled() || state.aiGenerateEnabled();
    return transcribes(state, modelAvailable) || (isUsed && isConfigured(state, modelAvailable));
}

} // namespace velorin::AIReadiness

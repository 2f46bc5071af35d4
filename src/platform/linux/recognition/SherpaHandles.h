/// Owners of the recognition run time's objects.
#pragma once

#include <memory>

#include <sherpa-onnx/c-api/c-api.h>

namespace velorin {

struct SherpaRelease {
    void operator()(const SherpaOnnxOfflineRecognizer* object) const {
        SherpaOnnxDestroyOfflineRecognizer(object);
    }
    void operator()(const SherpaOnnxOfflineStream* object) const { SherpaOnnxDestroyOfflineStream(object); }
    void operator()(const SherpaOnnxOfflineRecognizerResult* object) const {
        SherpaOnnxDestroyOfflineRecognizerResult(object);
    }
    void operator()(const SherpaOnnxVoiceActivityDetector* object) const {
        SherpaOnnxDestroyVoiceActivityDetector(object);
    }
};

template <typename Object>
using SherpaHandle = std::unique_ptr<const Object, SherpaRelease>;

} // namespace velorin

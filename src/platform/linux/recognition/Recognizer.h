/// One loaded model behind the recognition run time's C interface; decodes on the calling thread. The model is
/// shared by threads that decode at once; what a decode changes is its own.
#pragma once

#include "platform/linux/recognition/ModelCatalog.h"
#include "platform/linux/recognition/SherpaHandles.h"
#include "platform/linux/recognition/WindowDecoder.h"

namespace velorin {

class Recognizer final : public WindowDecoder {
public:
    /// Loads the model from a folder whose files have been checked. Takes about half a second. Null when the
    /// run time does not take them.
    [[nodiscard]] static std::unique_ptr<Recognizer> load(const Model& model, const QString& folder,
                                                          const QString& localeIdentifier);

    [[nodiscard]] std::string decode(std::span<const float> samples) override;

private:
    SherpaHandle<SherpaOnnxOfflineRecognizer> recognizer_;
};

} // namespace velorin

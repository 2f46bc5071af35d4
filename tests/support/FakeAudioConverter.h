/// Converters that give what the test tells them to, and remember what they were asked.
#pragma once

#include "platform/AudioConverter.h"

#include <optional>
#include <vector>

namespace velorin {

struct FakeAudioConverters final : AudioConverterFactory {
    struct Made {
        AudioFormat from;
        AudioFormat to;
        bool operator==(const Made&) const = default;
    };
    struct Conversion {
        AudioFormat to;
        quint32 frames;
        quint32 capacity;
    };

    /// Which of the makes to come fail, by target.
    std::optional<AudioFormat> refused;
    /// How many frames each conversion gives; nothing fails it.
    std::optional<quint32> framesGiven = 100;

    std::vector<Made> made;
    std::vector<Conversion> conversions;

    std::unique_ptr<AudioConverter> make(AudioFormat from, AudioFormat to) override {
        made.push_back({from, to});
        if (refused == to)
            return nullptr;
        return std::make_unique<Converter>(*this, to);
    }

private:
    struct Converter final : AudioConverter {
        Converter(FakeAudioConverters& factory, AudioFormat target) : owner(factory), to(target) {}

        tl::expected<AudioBuffer, QString> convert(const AudioBuffer& source, quint32 capacity) override {
            owner.conversions.push_back({to, source.frames(), capacity});
            if (!owner.framesGiven)
                return tl::unexpected(QString());
            return AudioBuffer{to, std::vector<float>(*owner.framesGiven), 0};
        }

        FakeAudioConverters& owner;
        AudioFormat to;
    };
};

} // namespace velorin

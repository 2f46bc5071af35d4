#include "platform/linux/pulse/PulseCapture.h"

#include "platform/linux/ChildSetup.h"

#include <cstring>

namespace velorin {

namespace {

using std::chrono::milliseconds;
using Kind = PulseError::Kind;

/// A server that is there answers within a few milliseconds; one that is just being started needs longer.
constexpr milliseconds answerDeadline{1500};
/// What the server still holds is here within a fragment or two; nobody notices this much after a key.
constexpr milliseconds drainDeadline{40};
constexpr milliseconds fragment{10};

PulseLoop::Time in(milliseconds time) { return std::chrono::steady_clock::now() + time; }

struct ServerAnswer {
    std::optional<std::string> defaultSource;
};

void onServerInfo(pa_context* /*context*/, const pa_server_info* info, void* answer) {
    if (info && info->default_source_name)
        static_cast<ServerAnswer*>(answer)->defaultSource = info->default_source_name;
}

struct SourceAnswer {
    std::optional<PulseSource> source;
    bool isMonitor = false;
};

void onSourceInfo(pa_context* /*context*/, const pa_source_info* info, int end, void* answer) {
    if (end != 0 || !info)
        return;
    auto& source = *static_cast<SourceAnswer*>(answer);
    source.source = PulseSource{info->name, info->sample_spec, info->channel_map};
    source.isMonitor = info->monitor_of_sink != PA_INVALID_INDEX;
}

PulseHandle<pa_proplist> properties() {
    PulseHandle<pa_proplist> list(pa_proplist_new());
    pa_proplist_sets(list.get(), PA_PROP_APPLICATION_NAME, "Velorin");
    pa_proplist_sets(list.get(), PA_PROP_APPLICATION_ID, "dev.orrin.velorin");
    pa_proplist_sets(list.get(), PA_PROP_APPLICATION_ICON_NAME, "dev.orrin.velorin");
    return list;
}

} // namespace

bool PulseCapture::isConnected() const {
    return context_ && pa_context_get_state(context_.get()) == PA_CONTEXT_READY;
}

bool PulseCapture::connect(PulseLoop::Time deadline) {
    if (isConnected())
        return true;
    stream_.reset();
    context_.reset(pa_context_new_with_proplist(loop_.api(), "Velorin", properties().get()));
    pa_context_set_state_callback(context_.get(), &onContextState, this);
    // A sound server that does not run is started by the library.
    const pa_spawn_api ofTheUser{nullptr, nullptr, &beAsTheUserStartsIt};
    if (pa_context_connect(context_.get(), nullptr, PA_CONTEXT_NOFLAGS, &ofTheUser) < 0)
        return false;
    loop_.runUntil(
        [this] {
            const auto state = pa_context_get_state(context_.get());
            return state == PA_CONTEXT_READY || !PA_CONTEXT_IS_GOOD(state);
        },
        deadline);
    return isConnected();
}

bool PulseCapture::await(pa_operation* operation, PulseLoop::Time deadline) {
    if (!operation)
        return false;
    const PulseHandle<pa_operation> handle(operation);
    const auto isOver = [&] {
        return pa_operation_get_state(operation) != PA_OPERATION_RUNNING || !isConnected();
    };
    return loop_.runUntil(isOver, deadline) && pa_operation_get_state(operation) == PA_OPERATION_DONE;
}

tl::unexpected<PulseError> PulseCapture::giveUp() {
    // A server that did not answer in time may answer later, to nobody: the next recording connects anew.
    stream_.reset();
    context_.reset();
    return tl::unexpected(PulseError{Kind::noServer, {}});
}

tl::expected<PulseSource, PulseError> PulseCapture::findMicrophone() {
    const auto deadline = in(answerDeadline);
    if (!connect(deadline))
        return giveUp();
    ServerAnswer server;
    if (!await(pa_context_get_server_info(context_.get(), &onServerInfo, &server), deadline))
        return giveUp();
    if (!server.defaultSource)
        return tl::unexpected(PulseError{Kind::noMicrophone, {}});
    SourceAnswer answer;
    if (!await(pa_context_get_source_info_by_name(context_.get(), server.defaultSource->c_str(),
                                                  &onSourceInfo, &answer),
               deadline))
        return giveUp();
    if (!answer.source || answer.isMonitor)
        return tl::unexpected(PulseError{Kind::noMicrophone, {}});
    source_ = *answer.source;
    return source_;
}

tl::expected<void, PulseError> PulseCapture::start(std::uint32_t rate, std::uint8_t channels,
                                                   std::size_t frames, Block block, Failure failure) {
    stream_.reset();
    const auto deadline = in(answerDeadline);
    if (!connect(deadline))
        return giveUp();
    blockSamples_ = frames * channels;
    pending_.clear();
    pending_.reserve(2 * blockSamples_);
    samplesRead_ = 0;
    statistics_ = {};
    block_ = std::move(block);
    failure_ = nullptr;
    if (!openStream({PA_SAMPLE_FLOAT32NE, rate, channels}))
        return tl::unexpected(PulseError{Kind::refused, refusal()});
    const auto isDecided = [this] {
        const auto state = stream_ ? pa_stream_get_state(stream_.get()) : PA_STREAM_FAILED;
        return state == PA_STREAM_READY || !PA_STREAM_IS_GOOD(state);
    };
    if (!loop_.runUntil(isDecided, deadline))
        return giveUp();
    if (!stream_ || pa_stream_get_state(stream_.get()) != PA_STREAM_READY) {
        const std::string reason = refusal();
        stream_.reset();
        return tl::unexpected(PulseError{Kind::refused, reason});
    }
    failure_ = std::move(failure);
    return {};
}

bool PulseCapture::openStream(const pa_sample_spec& spec) {
    pa_channel_map map = source_.channels;
    if (map.channels != spec.channels)
        pa_channel_map_init_extend(&map, spec.channels, PA_CHANNEL_MAP_DEFAULT);
    stream_.reset(pa_stream_new_with_proplist(context_.get(), "Dictation", &spec, &map, properties().get()));
    if (!stream_)
        return false;
    pa_stream_set_state_callback(stream_.get(), &onStreamState, this);
    pa_stream_set_read_callback(stream_.get(), &onRead, this);
    pa_stream_set_moved_callback(stream_.get(), &onMoved, this);
    pa_stream_set_overflow_callback(stream_.get(), &onOverflow, this);
    constexpr auto standard = static_cast<std::uint32_t>(-1);
    pa_buffer_attr attributes{standard, standard, standard, standard, standard};
    attributes.fragsize =
        static_cast<std::uint32_t>(pa_usec_to_bytes(std::chrono::microseconds(fragment).count(), &spec));
    // Without the flag the device keeps its own, long, period.
    return pa_stream_connect_record(stream_.get(), source_.name.c_str(), &attributes,
                                    PA_STREAM_ADJUST_LATENCY) >= 0;
}

std::string PulseCapture::refusal() const {
    return pa_strerror(context_ ? pa_context_errno(context_.get()) : PA_ERR_CONNECTIONTERMINATED);
}

void PulseCapture::stop() {
    failure_ = nullptr;
    if (stream_) {
        const auto deadline = in(drainDeadline);
        const std::size_t enough = samplesRead_ + samplesStillToCome();
        loop_.runUntil([&] { return !stream_ || samplesRead_ >= enough; }, deadline);
        handOut(true);
    }
    stream_.reset();
    movedCheck_.reset();
    block_ = nullptr;
}

/// How many samples were recorded before now and have not been read yet.
std::size_t PulseCapture::samplesStillToCome() {
    const auto deadline = in(drainDeadline / 2);
    const std::size_t readBefore = samplesRead_;
    if (!await(pa_stream_update_timing_info(stream_.get(), nullptr, nullptr), deadline) || !stream_)
        return 0;
    pa_usec_t latency = 0;
    int isNegative = 0;
    if (pa_stream_get_latency(stream_.get(), &latency, &isNegative) < 0 || isNegative != 0)
        return 0;
    const std::size_t waiting =
        pa_usec_to_bytes(latency, pa_stream_get_sample_spec(stream_.get())) / sizeof(float);
    const std::size_t readMeanwhile = samplesRead_ - readBefore;
    return waiting > readMeanwhile ? waiting - readMeanwhile : 0;
}

void PulseCapture::read() {
    while (stream_ && pa_stream_readable_size(stream_.get()) > 0) {
        const void* data = nullptr;
        std::size_t bytes = 0;
        if (pa_stream_peek(stream_.get(), &data, &bytes) < 0 || bytes == 0)
            return;
        take(data, bytes);
        pa_stream_drop(stream_.get());
    }
    handOut(false);
}

void PulseCapture::take(const void* data, std::size_t bytes) {
    const std::size_t samples = bytes / sizeof(float);
    const std::size_t before = pending_.size();
    // What was lost is silence: the time line stays whole.
    pending_.resize(before + samples, 0.0F);
    if (data)
        std::memcpy(pending_.data() + before, data, samples * sizeof(float));
    const std::size_t frames = samples / pa_stream_get_sample_spec(stream_.get())->channels;
    (data ? statistics_.frames : statistics_.lostFrames) += frames;
    samplesRead_ += samples;
}

void PulseCapture::handOut(bool alsoLessThanABlock) {
    std::span<const float> left(pending_);
    while (block_ && left.size() >= blockSamples_) {
        block_(left.first(blockSamples_));
        left = left.subspan(blockSamples_);
    }
    if (block_ && alsoLessThanABlock && !left.empty()) {
        block_(left);
        left = {};
    }
    pending_.erase(pending_.begin(), pending_.end() - static_cast<std::ptrdiff_t>(left.size()));
}

void PulseCapture::fail(Kind kind) {
    const auto failure = std::exchange(failure_, nullptr);
    if (!failure)
        return;
    handOut(true);
    block_ = nullptr;
    failure({kind, {}});
}

void PulseCapture::onContextState(pa_context* context, void* self) {
    if (!PA_CONTEXT_IS_GOOD(pa_context_get_state(context)))
        static_cast<PulseCapture*>(self)->fail(Kind::serverGone);
}

void PulseCapture::onStreamState(pa_stream* stream, void* self) {
    if (!PA_STREAM_IS_GOOD(pa_stream_get_state(stream))) {
        const bool serverIsThere = static_cast<PulseCapture*>(self)->isConnected();
        static_cast<PulseCapture*>(self)->fail(serverIsThere ? Kind::microphoneGone : Kind::serverGone);
    }
}

void PulseCapture::onRead(pa_stream* /*stream*/, std::size_t /*bytes*/, void* self) {
    static_cast<PulseCapture*>(self)->read();
}

void PulseCapture::onOverflow(pa_stream* /*stream*/, void* self) {
    ++static_cast<PulseCapture*>(self)->statistics_.overflows;
}

void PulseCapture::onMoved(pa_stream* /*stream*/, void* self) {
    static_cast<PulseCapture*>(self)->checkWhereWeAre();
}

/// The server moves a stream whose source was unplugged to another one. A microphone is as good as the first;
/// a monitor would have us write down what the machine plays.
void PulseCapture::checkWhereWeAre() {
    const auto onInfo = [](pa_context*, const pa_source_info* info, int end, void* self) {
        if (end == 0 && info && info->monitor_of_sink != PA_INVALID_INDEX)
            static_cast<PulseCapture*>(self)->fail(Kind::microphoneGone);
    };
    const auto source = pa_stream_get_device_index(stream_.get());
    movedCheck_.reset(pa_context_get_source_info_by_index(context_.get(), source, onInfo, this));
}

} // namespace velorin

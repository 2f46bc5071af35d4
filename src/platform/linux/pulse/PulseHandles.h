/// Owners of PulseAudio's objects.
#pragma once

#include <memory>

#include <pulse/pulseaudio.h>

namespace velorin {

struct PulseRelease {
    void operator()(pa_context* context) const {
        // The callback belongs to somebody who may be gone.
        pa_context_set_state_callback(context, nullptr, nullptr);
        pa_context_disconnect(context);
        pa_context_unref(context);
    }
    void operator()(pa_stream* stream) const {
        pa_stream_set_state_callback(stream, nullptr, nullptr);
        pa_stream_set_read_callback(stream, nullptr, nullptr);
        pa_stream_set_moved_callback(stream, nullptr, nullptr);
        pa_stream_set_overflow_callback(stream, nullptr, nullptr);
        pa_stream_disconnect(stream);
        pa_stream_unref(stream);
    }
    void operator()(pa_operation* operation) const {
        // An answer that comes after all must not find whoever asked gone.
        if (pa_operation_get_state(operation) == PA_OPERATION_RUNNING)
            pa_operation_cancel(operation);
        pa_operation_unref(operation);
    }
    void operator()(pa_proplist* list) const { pa_proplist_free(list); }
};

template <typename Object>
using PulseHandle = std::unique_ptr<Object, PulseRelease>;

} // namespace velorin

/// What the model needs of the overlay: a small window that the views fill. Main thread.
#pragma once

namespace velorin {

class AppModel;

class Overlay {
public:
    virtual ~Overlay() = default;

    /// Shows it, following the model from now on. Never takes the focus.
    virtual void show(AppModel& model) = 0;
    virtual void hide() = 0;
};

} // namespace velorin

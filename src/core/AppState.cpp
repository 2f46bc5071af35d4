#include "core/AppState.h"

namespace velorin {

void AppState::appendLevel(float value) {
    changeInPlace(levels_, [value](QList<float>& levels) {
        levels.append(value);
        if (levels.size() > maximumLevels)
            levels.remove(0, levels.size() - maximumLevels);
    });
}

} // namespace velorin

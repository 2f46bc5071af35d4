/// A test with an application model over fakes of every port, and silence in the log.
#pragma once

#include "tests/core/ModelDesk.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>

namespace velorin {

class ModelFixture : public testing::Test, protected ModelDesk {
protected:
    ~ModelFixture() override { endModel(); }

    LogCapture log;
};

} // namespace velorin

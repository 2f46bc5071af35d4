/// The result of a task, from a test that is none.
///
///     const auto reply = awaited(service.test(configuration));
#pragma once

#include "tests/support/WaitUntil.h"

#include <QCoro/QCoroTask>

#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace velorin {

template <typename Value>
QCoro::Task<> keepResult(QCoro::Task<Value> task, std::shared_ptr<std::optional<Value>> result) {
    result->emplace(co_await task);
}

/// Fails the test when there is no result in time.
template <typename Value>
Value awaited(QCoro::Task<Value> task, std::chrono::milliseconds atMost = std::chrono::seconds(30)) {
    const auto result = std::make_shared<std::optional<Value>>();
    const auto keeping = keepResult(std::move(task), result);
    EXPECT_TRUE(waitUntil([&] { return result->has_value(); }, atMost));
    return result->has_value() ? std::move(**result) : Value{};
}

} // namespace velorin

/// Waiting for an answer only as long as nothing newer has begun.
#pragma once

#include "core/Dictation.h"
#include "core/MainTasks.h"

#include <QCoro/QCoroTask>

namespace velorin {

/// The answer; nothing once the dictation is overtaken. The question goes on to its own end, unheard.
template <typename T>
QCoro::Task<std::optional<T>> unlessOvertaken(MainTasks& tasks, SharedDictation dictation,
                                              QCoro::Task<T> asking) {
    struct Race {
        std::optional<T> answer;
        Gate isOver{false};

        static QCoro::Task<> run(std::shared_ptr<Race> race, QCoro::Task<T> asking) {
            race->answer = co_await asking;
            race->isOver.open();
        }
    };
    if (dictation->isOvertaken)
        co_return std::nullopt;
    const auto race = std::make_shared<Race>();
    const Subscription overtaken = dictation->overtaking.add([race] { race->isOver.open(); });
    tasks.launch(Race::run(race, std::move(asking)));
    co_await race->isOver.opened();
    co_return dictation->isOvertaken ? std::nullopt : std::move(race->answer);
}

} // namespace velorin

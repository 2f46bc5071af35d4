#include "platform/linux/recognition/ChunkQueue.h"
#include "platform/linux/recognition/SampleStream.h"

#include <gmock/gmock.h>

#include <thread>

namespace velorin {

TEST(ChunkQueue, GivesEverythingInOrder) {
    ChunkQueue<int> queue;
    EXPECT_EQ(queue.take(), std::nullopt);
    for (int round = 0; round < 5; ++round) {
        for (int value = 0; value < 1000; ++value)
            queue.put(value);
        for (int value = 0; value < 1000; ++value)
            ASSERT_EQ(queue.take(), value);
        ASSERT_EQ(queue.take(), std::nullopt);
    }
}

TEST(ChunkQueue, DestroysWhatNobodyTook) {
    const auto counted = std::make_shared<int>();
    {
        ChunkQueue<std::shared_ptr<int>> queue;
        for (int i = 0; i < 100000; ++i)
            queue.put(counted);
        EXPECT_EQ(counted.use_count(), 100001);
    }
    EXPECT_EQ(counted.use_count(), 1);
}

TEST(ChunkQueue, KeepsTheOrderBetweenThreads) {
    ChunkQueue<std::vector<int>> queue;
    constexpr int count = 20000;
    std::thread producer([&] {
        for (int value = 0; value < count; ++value)
            queue.put({value, value + 1});
    });
    for (int expected = 0; expected < count;) {
        if (const auto value = queue.take()) {
            ASSERT_EQ(*value, (std::vector<int>{expected, expected + 1}));
            ++expected;
        } else {
            std::this_thread::yield();
        }
    }
    producer.join();
}

TEST(SampleStream, SleepsUntilSomethingComes) {
    SampleStream stream;
    std::vector<float> heard;
    std::thread writer([&] {
        for (int piece = 0; piece < 1000; ++piece)
            stream.write({static_cast<float>(piece)});
        stream.finish();
    });
    while (true) {
        const bool isFinished = stream.isFinished();
        if (const auto samples = stream.take())
            heard.insert(heard.end(), samples->begin(), samples->end());
        else if (isFinished)
            break;
        else
            stream.wait();
    }
    writer.join();
    ASSERT_EQ(heard.size(), 1000U);
    EXPECT_EQ(heard.back(), 999);
    stream.write({1});
    EXPECT_FALSE(stream.take());
}

} // namespace velorin

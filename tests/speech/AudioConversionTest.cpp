#include "speech/AudioConversion.h"

#include <gmock/gmock.h>

namespace velorin {

TEST(AudioConversion, HasRoomForTheRatioAndSomeMore) {
    EXPECT_EQ(conversionCapacity(48000, 16000, 1024), 341U + 64U);
    EXPECT_EQ(conversionCapacity(8000, 16000, 1024), 2048U + 64U);
    EXPECT_EQ(conversionCapacity(44100, 16000, 1024), 371U + 64U);
    EXPECT_EQ(conversionCapacity(48000, 16000, 0), 64U);
}

TEST(AudioConversion, EndsTheProgramForRatesThatDoNotExist) {
    EXPECT_DEATH((void)conversionCapacity(1, 192000, 4000000000), "audio conversion");
    EXPECT_DEATH((void)conversionCapacity(0, 16000, 1), "audio conversion");
    EXPECT_DEATH((void)conversionCapacity(0, 16000, 0), "audio conversion");
}

} // namespace velorin

#include "platform/linux/recognition/Tokens.h"

#include <gmock/gmock.h>

namespace velorin {

TEST(Tokens, AreWrittenARowEach) {
    EXPECT_EQ(tokensFromBinary(QByteArray("\x02hi\x00\x01!", 6)), QByteArray("aGk= 0\n 1\nIQ== 2\n"));
    EXPECT_EQ(tokensFromBinary({}), QByteArray());
}

TEST(Tokens, MayBeLongerThan127Bytes) {
    const QByteArray longToken(300, 'x');
    QByteArray binary("\xac\x02", 2); // 300 = 44 + 2 · 128
    binary.append(longToken);
    EXPECT_EQ(tokensFromBinary(binary), longToken.toBase64().append(" 0\n"));
}

TEST(Tokens, AreNothingWhenTheBinaryIsCutOff) {
    EXPECT_EQ(tokensFromBinary(QByteArray("\x03hi", 3)), std::nullopt);
    EXPECT_EQ(tokensFromBinary(QByteArray("\xff", 1)), std::nullopt);
}

} // namespace velorin

#include "ai/Replies.h"
#include "ai/Endpoint.h"
#include "ai/TranscriptionForm.h"

#include <gmock/gmock.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

TEST(Replies, OneBadChoiceSpoilsAll) {
    EXPECT_EQ(Replies::chat(R"({"choices":[{"message":{"content":" a "}},{"message":{}}]})"), u"a"_s);
    EXPECT_EQ(Replies::chat(R"({"choices":[{"message":{"content":"a"}},{"message":7}]})"), std::nullopt);
    EXPECT_EQ(Replies::chat(R"({"choices":[{"message":{"content":"a"}},{"message":{"content":7}}]})"),
              std::nullopt);
    EXPECT_EQ(Replies::chat(R"({"choices":[{"message":{"content":null}},{"message":{"content":"b"}}]})"),
              std::nullopt);
}

TEST(Replies, BytesThatAreNoTextAreNoReply) {
    EXPECT_EQ(Replies::chat("{\"choices\":[{\"message\":{\"content\":\"\xff\"}}]}"), std::nullopt);
    EXPECT_EQ(Replies::chat(QByteArray(1 << 20, '[')), std::nullopt);
}

TEST(Replies, AFenceGoesBeforeATag) {
    EXPECT_EQ(Replies::stripWrappingFence(u"```text\n<FINAL_TEXT>a\n```"_s), u"a"_s);
    EXPECT_EQ(Replies::stripWrappingFence(u"```a```"_s), u"```a```"_s);
    EXPECT_EQ(Replies::stripWrappingFence(u"a <final_text>b</final_text>"_s),
              u"a <final_text>b</final_text>"_s);
}

TEST(Replies, ANameMayLookLikeATemplate) {
    EXPECT_EQ(Replies::fillPlaceholders(u"Dear [Client],\n[Date]\n[Your Name]"_s, u"Ann"_s),
              u"Dear [Client],\nAnn"_s);
    EXPECT_EQ(Replies::fillPlaceholders(u"by [my name] x"_s, u"a\\$b"_s), u"by a$b x"_s);
    EXPECT_EQ(Replies::fillPlaceholders(u"by [my name] x"_s, u"$9"_s), u"by [my name] x"_s);
    EXPECT_EQ(Replies::fillPlaceholders(u"[Name]"_s, u"Ann"_s), QString());
}

TEST(TranscriptionForm, HasABoundaryOfItsOwn) {
    EXPECT_NE(TranscriptionForm::newBoundary(), TranscriptionForm::newBoundary());
    EXPECT_TRUE(TranscriptionForm::newBoundary().startsWith(u"Velorin-"_s));
}

TEST(Endpoint, KeepsTheUsersOwnSpelling) {
    EXPECT_EQ(Endpoint::chatUrl(u" http://HOST:1/v1/// "), u"http://HOST:1/v1/chat/completions"_s);
    EXPECT_EQ(Endpoint::chatUrl(u"host:80"), std::nullopt);
    EXPECT_EQ(Endpoint::transcriptionUrl(u"http://h/v1/chat/completions"),
              u"http://h/v1/chat/completions/audio/transcriptions"_s);
}

} // namespace
} // namespace velorin

#include "platform/linux/recognition/ContextWords.h"

#include <gmock/gmock.h>

namespace velorin {

struct ContextWordsTest : testing::Test {
    std::shared_ptr<const OrdinaryWords> ordinary = OrdinaryWords::ofThisSystem();

    std::string correct(const std::string& text, const std::vector<std::string>& entries) const {
        return ContextWords(entries, ordinary).correct(text);
    }
};

TEST_F(ContextWordsTest, KnowsHowCommonAWordIs) {
    using Grade = OrdinaryWords::Grade;
    ASSERT_TRUE(ordinary);
    EXPECT_EQ(ordinary->gradeOf("meeting"), Grade::common);
    EXPECT_EQ(ordinary->gradeOf("sphinx"), Grade::usual);
    EXPECT_EQ(ordinary->gradeOf("sherpa"), Grade::known);
    EXPECT_EQ(ordinary->gradeOf("kubernetes"), Grade::unknown);
}

TEST_F(ContextWordsTest, GivesMisheardWordsTheirSpelling) {
    EXPECT_EQ(correct("Deploy it on Kebur needs tonight.", {"Kubernetes"}),
              "Deploy it on Kubernetes tonight.");
    EXPECT_EQ(correct("I will meet Chao Bhan at nine.", {"Siobhan"}), "I will meet Siobhan at nine.");
    EXPECT_EQ(correct("Mr. Gawylski wants to talk.", {"Kowalski"}), "Mr. Kowalski wants to talk.");
    EXPECT_EQ(correct("Open velour in and speak.", {"Velorin"}), "Open Velorin and speak.");
    EXPECT_EQ(correct("written with Quaracus, last year", {"Quarkus"}), "written with Quarkus, last year");
}

TEST_F(ContextWordsTest, GivesTheSameLettersTheirSpelling) {
    EXPECT_EQ(correct("the terraform files", {"Terraform"}), "the Terraform files");
    EXPECT_EQ(correct("made with sphinx", {"Sphinx"}), "made with Sphinx");
    EXPECT_EQ(correct("a post gre SQL server", {"PostgreSQL"}), "a PostgreSQL server");
    EXPECT_EQ(correct("the git hub page", {"GitHub"}), "the GitHub page");
}

TEST_F(ContextWordsTest, LeavesCommonWordsAlone) {
    for (const std::string text : {"The meeting is in full or in part about the reader of the file.",
                                   "It is therefore my understanding.", "read is written", "an apple a day",
                                   "Markus spoke", "Data file or in the software"})
        EXPECT_EQ(correct(text, {"Velorin", "Terraform", "Redis", "Quarkus", "Apple", "Meeting"}), text);
}

TEST_F(ContextWordsTest, TakesNoNeighbourWithIt) {
    EXPECT_EQ(correct("the book by Tolkein and Laklin", {"Tolkien", "Lachlan"}),
              "the book by Tolkien and Lachlan");
    EXPECT_EQ(correct("the report by Anthropic", {"Anthropic"}), "the report by Anthropic");
}

TEST_F(ContextWordsTest, AddsNothingToWhatIsAnEntryAlready) {
    EXPECT_EQ(correct("a book by Tolkien in the train", {"Tolkien"}), "a book by Tolkien in the train");
    EXPECT_EQ(correct("in the gazebo simulator", {"Gazebo"}), "in the Gazebo simulator");
}

TEST_F(ContextWordsTest, KeepsWhatStandsAroundAWord) {
    EXPECT_EQ(correct("Quaracus's page (Quaracus).", {"Quarkus"}), "Quarkus's page (Quarkus).");
    EXPECT_EQ(correct("Kebur, needs", {"Kubernetes"}), "Kebur, needs");
    EXPECT_EQ(correct("mail@quaracus.org and quaracus/x", {"Quarkus"}), "mail@quaracus.org and quaracus/x");
}

TEST_F(ContextWordsTest, DoesNothingWithoutEntriesOrWithoutKnowingWords) {
    EXPECT_EQ(correct("Quaracus", {}), "Quaracus");
    EXPECT_EQ(correct("", {"Quarkus"}), "");
    EXPECT_EQ(ContextWords({"Quarkus"}, nullptr).correct("Quaracus"), "Quaracus");
    EXPECT_EQ(correct("Größe Ünal 42", {"!?", "Quarkus"}), "Größe Ünal 42");
}

} // namespace velorin

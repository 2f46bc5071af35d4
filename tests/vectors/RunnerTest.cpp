#include "tests/vectors/Runner.h"
#include "tests/vectors/CaseFile.h"
#include "tests/vectors/Suites.h"

#include <QFile>
#include <QJsonArray>
#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>

using namespace Qt::Literals::StringLiterals;

namespace velorin::vectors {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

/// A folder of cases, and a table that knows two suites: one answers with its input, one with a fixed value.
class RunnerTest : public testing::Test {
protected:
    RunnerTest() {
        table_.add(u"echo"_s, [](const QJsonObject& in) { return in[u"value"]; });
        table_.add(u"cleaner.half"_s, [](const QJsonObject&) { return QJsonValue(0.5); }, {.absolute = 0.01});
    }

    void write(const QString& name, const QByteArray& content) {
        QFile file(folder_.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    void writeCase(const QByteArray& suite, const QByteArray& in, const QByteArray& out) {
        write(QString::fromLatin1(suite) + u".json"_s, "{\"suite\": \"" + suite +
                                                           "\", \"cases\": [\n{\"in\": {\"value\": " + in +
                                                           "}, \"out\": " + out + "}\n]}\n");
    }

    bool run(const RunOptions& options) {
        lines_.clear();
        return vectors::run(table_, options,
                            [this](const QByteArray& line) { lines_.push_back(line.toStdString()); });
    }
    bool run() { return run({.folders = {folder_.path()}}); }

    bool echoes(const QByteArray& in, const QByteArray& out) {
        writeCase("echo", in, out);
        return run();
    }

    QTemporaryDir folder_;
    SuiteTable table_;
    std::vector<std::string> lines_;
};

TEST_F(RunnerTest, PassesWhenEveryCaseDoes) {
    writeCase("echo", "1", "1");
    writeCase("cleaner.half", "1", "0.505");
    EXPECT_TRUE(run());
    EXPECT_THAT(lines_, ElementsAre("cleaner.half: 1 passed, 0 failed", "echo: 1 passed, 0 failed"));
}

TEST_F(RunnerTest, ShowsWhatDiffersAndFails) {
    EXPECT_FALSE(echoes("\"a\\u0301\"", "\"\\u00e1\""));
    EXPECT_THAT(lines_, ElementsAre("echo differs:", "  input:    {\"value\":\"a\\u0301\"}",
                                    "  expected: \"\\u00e1\"", "  got:      \"a\\u0301\"",
                                    "echo: 0 passed, 1 failed"));
}

TEST_F(RunnerTest, ShowsOnlyTheFirstDifferences) {
    QByteArray cases;
    for (int i = 0; i < 9; ++i)
        cases += QByteArray(i > 0 ? "," : "") + "{\"in\":{\"value\":1},\"out\":2}";
    write(u"a.json"_s, "{\"suite\":\"echo\",\"cases\":[" + cases + "]}");
    EXPECT_FALSE(run());
    EXPECT_EQ(std::ranges::count(lines_, "echo differs:"), 3);
    EXPECT_EQ(lines_.back(), "echo: 0 passed, 9 failed");
}

TEST_F(RunnerTest, JoinsTheFilesOfOneSuite) {
    write(u"a.json"_s, R"({"suite":"echo","cases":[{"in":{"value":1},"out":1}]})");
    write(u"b.json"_s, R"({"suite":"echo","cases":[{"in":{"value":2},"out":2}]})");
    EXPECT_TRUE(run());
    EXPECT_THAT(lines_, ElementsAre("echo: 2 passed, 0 failed"));
}

TEST_F(RunnerTest, FailsOnAnUnknownSuiteAndRunsTheOthers) {
    writeCase("echo", "1", "1");
    writeCase("other", "1", "1");
    EXPECT_FALSE(run());
    EXPECT_THAT(lines_, ElementsAre("echo: 1 passed, 0 failed", "other: unknown"));
}

TEST_F(RunnerTest, RunsGraphemesAsTheCleaner) {
    writeCase("graphemes.half", "1", "0.5");
    EXPECT_TRUE(run());
    EXPECT_THAT(lines_, ElementsAre("graphemes.half: 1 passed, 0 failed"));
    writeCase("graphemes.third", "1", "0.5");
    EXPECT_FALSE(run());
    EXPECT_THAT(lines_, Contains("graphemes.third: unknown"));
}

TEST_F(RunnerTest, FailsWhenNothingIsRun) {
    EXPECT_FALSE(run());
    EXPECT_THAT(lines_, Contains("nothing was run"));
    EXPECT_FALSE(run({.folders = {folder_.filePath(u"absent"_s)}}));
    EXPECT_THAT(lines_, Contains(HasSubstr("no folder with cases")));
    write(u"a.json"_s, R"({"suite":"echo","cases":[]})");
    EXPECT_FALSE(run());
}

TEST_F(RunnerTest, FailsOnAMalformedFileAndRunsTheOthers) {
    for (const QByteArray malformed :
         {"", "{", "[]", R"({"suite":"echo"})", R"({"cases":[]})", R"({"suite":"echo","cases":[{"in":{}}]})",
          R"({"suite":"echo","cases":[{"out":1}]})", R"({"suite":"echo","cases":[{"in":1,"out":1}]})",
          "{\"suite\":\"echo\",\"cases\":[]} {", "{\"suite\":\"\xff\",\"cases\":[]}", "{\"suite\":\"e",
          R"({"suite":"echo","cases":[{"in":{"value":1-2},"out":1}]})"}) {
        writeCase("echo", "1", "1");
        write(u"malformed.json"_s, malformed);
        EXPECT_FALSE(run()) << malformed.toStdString();
        EXPECT_THAT(lines_, Contains("echo: 1 passed, 0 failed")) << malformed.toStdString();
        EXPECT_THAT(lines_, Contains(HasSubstr("malformed.json: "))) << malformed.toStdString();
    }
}

TEST_F(RunnerTest, RunsTheReferenceOnlyWhenAskedTo) {
    table_.addReference(u"echo"_s, [](const QJsonObject&) { return QJsonValue(2); });
    writeCase("echo", "1", "1");
    writeCase("cleaner.half", "1", "0.5");
    EXPECT_TRUE(run());
    EXPECT_FALSE(run({.folders = {folder_.path()}, .usesReference = true}));
    EXPECT_THAT(lines_,
                AllOf(Contains("echo: 0 passed, 1 failed"), Contains("cleaner.half: 1 passed, 0 failed")));
}

TEST_F(RunnerTest, ComparesByValue) {
    EXPECT_TRUE(echoes(R"({"a": 1, "b": [1, null]})", R"({"b": [1.0, null], "a": 1})"));
    EXPECT_TRUE(echoes("9007199254740993", "9007199254740993"));
    EXPECT_TRUE(echoes("18446744073709551615", "18446744073709551615"));
    EXPECT_TRUE(echoes("1e400", "1e400"));
    EXPECT_TRUE(echoes(R"("\"1e999\\")", R"("\"1e999\\")"));
    EXPECT_FALSE(echoes("9007199254740993", "9007199254740992"));
    EXPECT_FALSE(echoes("18446744073709551615", "18446744073709551614"));
    EXPECT_FALSE(echoes("1", "1.0000001"));
    EXPECT_FALSE(echoes("1", "true"));
    EXPECT_FALSE(echoes("1", "\"1\""));
    EXPECT_FALSE(echoes("null", "0"));
    EXPECT_FALSE(echoes("[1, 2]", "[2, 1]"));
    EXPECT_FALSE(echoes("[1]", "[1, 1]"));
    EXPECT_FALSE(echoes(R"({"a": null})", "{}"));
    EXPECT_FALSE(echoes("{}", R"({"a": null})"));
    EXPECT_FALSE(echoes(R"({"b": null})", R"({"a": null})"));
    EXPECT_FALSE(echoes(R"("\ud800")", R"("\ud801")"));
}

TEST_F(RunnerTest, NeverTakesAnUndefinedAnswerForNull) {
    table_.add(u"undefined"_s, [](const QJsonObject&) { return QJsonValue(QJsonValue::Undefined); });
    writeCase("undefined", "1", "null");
    EXPECT_FALSE(run());
    EXPECT_THAT(lines_, Contains("  got:      undefined"));
}

TEST(Comparison, KnowsBothKindsOfTolerance) {
    EXPECT_TRUE(areEqual(1000, 1000.009, {.relative = 1e-5}));
    EXPECT_FALSE(areEqual(1000, 1000.011, {.relative = 1e-5}));
    EXPECT_TRUE(areEqual(QJsonArray{0}, QJsonArray{0.00009}, {.absolute = 1e-4}));
    EXPECT_FALSE(areEqual(0, 0.00011, {.absolute = 1e-4}));
    EXPECT_FALSE(areEqual(0, std::numeric_limits<double>::quiet_NaN(), {.absolute = 1e-4}));
}

TEST(CaseFile, KeepsUnsignedIntegersExactly) {
    const auto file = CaseFile::parse(
        R"({"suite":"s","cases":[{"in":{"a":18446744073709551615,"b":9007199254740993},"out":null}]})");
    ASSERT_TRUE(file);
    const auto& in = file->cases.at(0).in;
    EXPECT_EQ(unsignedInteger(in[u"a"]), std::numeric_limits<quint64>::max());
    EXPECT_EQ(unsignedInteger(in[u"b"]), 9007199254740993U);
}

/// The same data once with the checked libraries, once by the program itself.
TEST(Vectors, AllPassInTheCheckedLibraries) {
    std::string report;
    const auto passed = vectors::run(allSuites(), {.folders = {QStringLiteral(VECTORS_DATA)}},
                                     [&](const QByteArray& line) { report += line.toStdString() + '\n'; });
    EXPECT_TRUE(passed) << report;
}

std::pair<int, QByteArray> runProgram(const QStringList& arguments) {
    QProcess program;
    program.start(QStringLiteral(VECTORS_PROGRAM), arguments);
    EXPECT_TRUE(program.waitForFinished(100'000));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    return {program.exitCode(), program.readAllStandardOutput()};
}

TEST(Vectors, AllPassInTheProgram) {
    const auto [code, output] = runProgram({QStringLiteral(VECTORS_DATA)});
    EXPECT_EQ(code, 0) << output.toStdString();
    EXPECT_THAT(output.toStdString(), HasSubstr("session.handle: "));
}

TEST(Vectors, TheProgramExitsNonZeroOnFailure) {
    const QTemporaryDir empty;
    EXPECT_NE(runProgram({}).first, 0);
    EXPECT_NE(runProgram({u"--reference"_s}).first, 0);
    EXPECT_NE(runProgram({empty.path()}).first, 0);
    EXPECT_NE(runProgram({QStringLiteral(VECTORS_DATA), empty.path()}).first, 0);
}

} // namespace
} // namespace velorin::vectors

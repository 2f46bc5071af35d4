// A process is killed at random moments while it writes: what the next one finds is whole, and holds all that
// was recorded before. VELORIN_KILLS tells how often; the suite kills a few times only.
#include "tests/core/ModelFixture.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>

#include <csignal>
#include <cstdint>

#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

constexpr int killsOfTheSuite = 20;

/// Longer than a page, so that a write is not one step for the system either.
QString text(int number) { return QString::number(number) + u' ' + QString(6000, u'x'); }
int numberOf(const QString& text) { return text.section(u' ', 0, 0).toInt(); }

class AKilledWriter : public ModelFixture {
protected:
    /// Records and captures until it is killed, and tells each number that is kept.
    [[noreturn]] void write(int pipe, int first) {
        AppModel& writer = start();
        writer.setCaptureDictations(true);
        for (std::int32_t number = first;; ++number) {
            writer.captureDictation(text(number), text(number), u"dictation"_s);
            writer.recordHistory(text(number), text(number));
            if (::write(pipe, &number, sizeof number) != sizeof number)
                _exit(1);
        }
    }

    /// The last number that the process told before it was killed.
    int killOnce(int first) {
        int pipes[2];
        EXPECT_EQ(pipe(pipes), 0);
        const pid_t child = fork();
        if (child == 0)
            write(pipes[1], first);
        close(pipes[1]);
        std::int32_t last = first - 1;
        EXPECT_EQ(read(pipes[0], &last, sizeof last), static_cast<ssize_t>(sizeof last));
        usleep(QRandomGenerator::global()->bounded(30'000U)); // The moment is what is left to chance.
        kill(child, SIGKILL);
        for (std::int32_t next = 0; read(pipes[0], &next, sizeof next) == sizeof next;)
            last = next;
        close(pipes[0]);
        waitpid(child, nullptr, 0);
        return last;
    }

    int linesOfTheCapture(int last) {
        QFile file(home.filePath(u"dictation-capture.jsonl"_s));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        int newest = 0;
        for (const auto& line : file.readAll().split('\n')) {
            if (line.isEmpty())
                continue;
            const auto object = QJsonDocument::fromJson(line).object();
            EXPECT_EQ(object.size(), 5) << line.left(80).constData() << " … of " << line.size();
            newest = numberOf(object[u"raw"_s].toString());
        }
        EXPECT_GE(newest, last);
        return newest;
    }
};

TEST_F(AKilledWriter, LeavesTheOldOrTheNewFiles) {
    const int kills = qEnvironmentVariable("VELORIN_KILLS", QString::number(killsOfTheSuite)).toInt();
    int recorded = 0;
    for (int round = 0; round < kills && !HasFailure(); ++round) {
        recorded = killOnce(recorded + 1);
        defaults.values[u"captureDictations"_s] = true;
        AppModel& reader = start();
        ASSERT_FALSE(reader.history().isEmpty()) << "after kill " << round;
        const int newest = numberOf(reader.history().first().text);
        EXPECT_GE(newest, recorded);
        EXPECT_LE(newest, recorded + 1);
        EXPECT_EQ(reader.history().size(), std::min(newest, 200));
        recorded = std::max(newest, linesOfTheCapture(recorded));
        endModel();
        QFile::remove(home.filePath(u"dictation-capture.jsonl"_s));
        QFile::remove(home.filePath(u"history.json"_s));
        recorded = 0;
    }
}

} // namespace
} // namespace velorin

#include "Runner.h"

#include "CaseFile.h"

#include <QDir>

#include <algorithm>

namespace velorin::vectors {
namespace {

constexpr int shownDifferences = 3;

class Run final {
public:
    Run(const SuiteTable& table, const RunOptions& options,
        const std::function<void(const QByteArray&)>& write)
        : table_(table), options_(options), write_(write) {}

    bool all() {
        for (const auto& folder : options_.folders)
            readFolder(folder);
        for (const auto& file : suites_)
            runSuite(file);
        if (ran_ == 0)
            fail("nothing was run");
        return !failed_;
    }

private:
    void readFolder(const QString& folder) {
        const QDir directory(folder);
        const auto names = directory.entryList({QStringLiteral("*.json")}, QDir::Files, QDir::Name);
        if (!directory.isReadable() || names.isEmpty())
            fail(folder.toUtf8() + ": no folder with cases");
        for (const auto& name : names)
            readFile(directory.filePath(name));
    }

    void readFile(const QString& path) {
        auto file = CaseFile::read(path);
        if (!file) {
            fail(path.toUtf8() + ": " + file.error().toUtf8());
            return;
        }
        const auto known = std::find_if(suites_.begin(), suites_.end(),
                                        [&](const CaseFile& other) { return other.suite == file->suite; });
        if (known == suites_.end())
            suites_.push_back(*std::move(file));
        else
            known->cases.insert(known->cases.end(), file->cases.begin(), file->cases.end());
    }

    void runSuite(const CaseFile& file) {
        const auto name = file.suite.toUtf8();
        const Suite* suite = table_.find(file.suite);
        if (suite == nullptr) {
            fail(name + ": unknown");
            return;
        }
        const auto& answer = options_.usesReference && suite->reference ? suite->reference : suite->answer;
        int failures = 0;
        for (const auto& one : file.cases) {
            const auto got = answer(one.in);
            if (!areEqual(one.out, got, suite->tolerance) && failures++ < shownDifferences)
                writeDifference(name, one, got);
        }
        ran_ += file.cases.size();
        failed_ = failed_ || failures > 0;
        const auto passed = static_cast<qsizetype>(file.cases.size()) - failures;
        write_(name + ": " + QByteArray::number(passed) + " passed, " + QByteArray::number(failures) +
               " failed");
    }

    void writeDifference(const QByteArray& name, const Case& one, const QJsonValue& got) const {
        write_(name + " differs:");
        write_("  input:    " + printable(one.in));
        write_("  expected: " + printable(one.out));
        write_("  got:      " + printable(got));
    }

    void fail(const QByteArray& line) {
        failed_ = true;
        write_(line);
    }

    const SuiteTable& table_;
    const RunOptions& options_;
    const std::function<void(const QByteArray&)>& write_;
    std::vector<CaseFile> suites_;
    std::size_t ran_ = 0;
    bool failed_ = false;
};

} // namespace

bool run(const SuiteTable& table, const RunOptions& options,
         const std::function<void(const QByteArray& line)>& write) {
    return Run(table, options, write).all();
}

} // namespace velorin::vectors

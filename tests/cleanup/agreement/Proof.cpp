// velorin-proof [RANDOM TEXTS]: the whole proof that the cleanup agrees with its reference, on all
// processors. All pairs of the vocabulary in all profiles, random texts (ten million unless told otherwise),
// all triples, then large hostile texts.
#include "Agreement.h"
#include "HostileTexts.h"
#include "Vocabulary.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <thread>

namespace velorin::agreement {

using namespace Qt::Literals::StringLiterals;

namespace {

class Proof final {
public:
    /// Runs `check` for all numbers below the count, in parallel, and prints how it went.
    void run(const QString& name, std::size_t count, const std::function<void(std::size_t)>& check) {
        const auto start = std::chrono::steady_clock::now();
        std::atomic<std::size_t> next = 0;
        const std::size_t batch = std::clamp<std::size_t>(count / 1000, 1, 256);
        const auto work = [&] {
            for (std::size_t first = next.fetch_add(batch); first < count; first = next.fetch_add(batch)) {
                for (std::size_t i = first; i < std::min(first + batch, count); ++i)
                    check(i);
            }
        };
        std::vector<std::jthread> threads;
        for (unsigned i = 0; i < std::max(1U, std::thread::hardware_concurrency()); ++i)
            threads.emplace_back(work);
        threads.clear();
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        std::printf("%s: %zu texts, %zu compared, %zu differences, %.0f s\n", name.toLatin1().constData(),
                    count, compared_.exchange(0), differences_.load(), took.count());
        std::fflush(stdout);
    }

    void compare(const Input& input) {
        ++compared_;
        report(differenceInClean(input));
    }
    void compareStages(const Input& input) { report(differenceInStages(input)); }

    [[nodiscard]] bool holds() const { return differences_ == 0; }

private:
    void report(const std::optional<QString>& difference) {
        if (!difference)
            return;
        constexpr std::size_t mostShown = 50;
        const std::scoped_lock lock(printing_);
        if (++differences_ <= mostShown)
            std::printf("%s\n", difference->toLatin1().constData());
    }

    std::atomic<std::size_t> compared_ = 0;
    std::atomic<std::size_t> differences_ = 0;
    std::mutex printing_;
};

bool isEndless(QStringView name) { return name == u"one-word"; }

/// Hostile texts of 100 kB, in the two profiles that differ most; smaller ones where the plain way takes
/// longer than a minute.
void proveHostile(Proof& proof) {
    constexpr qsizetype large = 100'000;
    constexpr qsizetype small = 5'000;
    const auto smallTexts = hostileTexts(small);
    const auto largeTexts = hostileTexts(large);
    for (std::size_t i = 0; i < largeTexts.size(); ++i) {
        const auto& [name, text] = isEndless(largeTexts[i].name) ? smallTexts[i] : largeTexts[i];
        constexpr std::array profiles{ContextProfile::generic, ContextProfile::code};
        proof.run(u"hostile: %1, %2 units"_s.arg(name).arg(text.size()), profiles.size(),
                  [&](std::size_t each) {
                      proof.compare({text, profiles[each], {}});
                  });
    }
}

void proveAll(Proof& proof, std::size_t randomTexts) {
    const auto& pieces = vocabulary();
    const std::size_t size = pieces.size();
    const auto compareInAllProfiles = [&](const QString& text) {
        for (const ContextProfile profile : allContextProfiles)
            proof.compare({text, profile, {}});
    };
    proof.run(u"pairs"_s, size * size, [&](std::size_t i) {
        const QString text = QString(pieces[i / size]).append(pieces[i % size]);
        compareInAllProfiles(text);
        proof.compareStages({text, ContextProfile::code, {}});
    });
    proof.run(u"random texts"_s, randomTexts, [&](std::size_t i) {
        std::mt19937_64 random(i);
        const Input input = randomInput(random);
        proof.compare(input);
        if (i % 8 == 0)
            proof.compareStages(input);
    });
    proof.run(u"triples"_s, size * size * size, [&](std::size_t i) {
        compareInAllProfiles(
            QString(pieces[i / size / size]).append(pieces[i / size % size]).append(pieces[i % size]));
    });
    proveHostile(proof);
}

} // namespace
} // namespace velorin::agreement

int main(int argc, char* argv[]) {
    constexpr std::size_t tenMillion = 10'000'000;
    velorin::agreement::Proof proof;
    velorin::agreement::proveAll(proof, argc > 1 ? std::strtoull(argv[1], nullptr, 10) : tenMillion);
    return proof.holds() ? 0 : 1;
}

/// Gives words that the speaker is likely to use their own spelling, after decoding: for models that cannot
/// be told of them beforehand.
///
/// One to three neighbouring words that sound the same as an entry, or nearly so, take its spelling. An
/// ordinary word by itself is never touched, and ordinary words in a row only when they sound exactly like a
/// long entry: a wrong replacement is worse than a missed one.
///
///     const ContextWords words({u"Kubernetes"}, ordinaryWords);
///     words.correct("deploy it on cooper netties.")          // "deploy it on Kubernetes."
///
/// English spelling is taken for granted. Any thread once it is made.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velorin {

/// A list of words, lower case.
class WordList final {
public:
    /// Reads files of a word a row; one that is missing is left out.
    explicit WordList(const std::vector<std::string>& files);
    WordList(const WordList&) = delete;
    WordList& operator=(const WordList&) = delete;

    [[nodiscard]] bool contains(std::string_view lowerCaseWord) const;
    [[nodiscard]] bool isEmpty() const { return words_.empty(); }

private:
    std::string text_;
    std::vector<std::string_view> words_; ///< Parts of the text, sorted.
};

/// The words of the language, from graded lists.
class OrdinaryWords final {
public:
    /// Words that everybody uses day by day, that everybody uses, that many know, and all others: names,
    /// terms, what was misheard.
    enum class Grade { common, usual, known, unknown };

    OrdinaryWords(const std::vector<std::string>& commonFiles, const std::vector<std::string>& usualFiles,
                  const std::vector<std::string>& knownFiles);

    /// Those of this system. Null where they are not installed.
    [[nodiscard]] static std::shared_ptr<const OrdinaryWords> ofThisSystem();

    [[nodiscard]] Grade gradeOf(std::string_view lowerCaseWord) const;
    [[nodiscard]] bool isEmpty() const { return common_.isEmpty() || usual_.isEmpty() || known_.isEmpty(); }

private:
    WordList common_;
    WordList usual_;
    WordList known_;
};

class ContextWords final {
public:
    ContextWords(const std::vector<std::string>& entries, std::shared_ptr<const OrdinaryWords> ordinary);

    [[nodiscard]] std::string correct(const std::string& text) const;

    /// How a word sounds, roughly: consonants by where they are made, a vowel only at the beginning.
    [[nodiscard]] static std::string soundOf(std::string_view word);

private:
    using Grade = OrdinaryWords::Grade;
    struct Entry {
        std::string spelling;
        std::string letters; ///< Lower case, nothing else.
        std::string sound;
    };
    struct Word {
        std::size_t begin;
        std::size_t end;
        std::string letters;
        Grade grade;
        bool isPossessive; ///< Ends in "'s", which is not among the letters.
        bool isAddress;    ///< Part of a file name, an address and the like.
        bool isEntry;
    };

    struct Run {
        std::string letters;
        std::string sound;
        std::size_t words;
        Grade rarest;
        bool hasCommon;
    };
    /// A run of words that may be an entry.
    struct Match {
        std::size_t first;
        std::size_t count;
        const Entry* entry;
        std::size_t apart; ///< In hundredths of its length.
    };

    [[nodiscard]] std::vector<Word> wordsOf(const std::string& text) const;
    [[nodiscard]] std::vector<Match> matchesIn(const std::string& text, const std::vector<Word>& words) const;
    [[nodiscard]] static bool isNear(const Run& run, const Entry& entry, std::size_t apart);
    void addMatches(const std::vector<Word>& words, std::size_t first, std::size_t count,
                    std::vector<Match>& matches) const;

    std::vector<Entry> entries_;
    std::shared_ptr<const OrdinaryWords> ordinary_;
};

} // namespace velorin

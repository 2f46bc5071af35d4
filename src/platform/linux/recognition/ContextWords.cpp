#include "platform/linux/recognition/ContextWords.h"

#include <algorithm>
#include <fstream>
#include <numeric>
#include <sstream>

namespace velorin {

namespace {

constexpr std::size_t mostWords = 3;

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
/// Other alphabets pass as they are, byte by byte: they match themselves only.
bool isWordByte(char c) { return isLetter(c) || isDigit(c) || (static_cast<unsigned char>(c) & 0x80) != 0; }
char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 'a' - 'A') : c; }
bool isVowel(char c) { return std::string_view("aeiouy").find(c) != std::string_view::npos; }
bool isSoftener(char c) { return c == 'e' || c == 'i' || c == 'y'; }

std::string lettersOf(std::string_view text) {
    std::string letters;
    for (const char c : text)
        if (isWordByte(c))
            letters += lower(c);
    return letters;
}

std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, replaced});
        }
    }
    return row.back();
}

/// Spellings of more than one letter, longest first, with the sound that they stand for.
struct Spelling {
    std::string_view letters;
    std::string_view sound;
    bool onlyAtBeginning;
};
constexpr Spelling spellings[] = {
    {"tsch", "C", false}, {"tch", "C", false}, {"sch", "SK", false}, {"chr", "KR", false},
    {"kn", "N", true},    {"gn", "N", true},   {"ps", "S", true},    {"pt", "T", true},
    {"wr", "R", true},    {"wh", "W", true},   {"ngu", "N", true},   {"ph", "F", false},
    {"gh", "", false},    {"ck", "K", false},  {"ch", "C", false},   {"sh", "C", false},
    {"th", "T", false},   {"dge", "C", false}, {"sc", "S", false},   {"tio", "C", false},
    {"sio", "C", false},  {"ng", "N", false},
};

const Spelling* spellingAt(std::string_view word, std::size_t position) {
    for (const Spelling& spelling : spellings)
        if (word.substr(position, spelling.letters.size()) == spelling.letters &&
            (position == 0 || !spelling.onlyAtBeginning))
            return &spelling;
    return nullptr;
}

/// A single letter's sound, by where it is made: voiced or not is often lost.
std::string_view soundAt(std::string_view word, std::size_t position) {
    const char next = position + 1 < word.size() ? word[position + 1] : '\0';
    switch (word[position]) {
    case 'b':
    case 'p':
        return "P";
    case 'd':
    case 't':
        return "T";
    case 'f':
    case 'v':
        return "F";
    case 'c':
        return isSoftener(next) ? "S" : "K";
    case 'g':
        return isSoftener(next) ? "C" : "K";
    case 'j':
        return "C";
    case 'k':
    case 'q':
        return "K";
    case 's':
    case 'z':
        return "S";
    case 'x':
        return position == 0 ? "S" : "KS";
    case 'l':
        return "L";
    case 'm':
        return "M";
    case 'n':
        return "N";
    case 'r':
        return "R";
    case 'w':
        return isVowel(next) ? "W" : "";
    case 'h':
        return position == 0 ? "H" : "";
    default:
        return "";
    }
}

bool areNeighbours(const std::string& text, std::size_t end, std::size_t begin) {
    const std::string_view between(text.data() + end, begin - end);
    return between == " " || between == "-";
}

bool isInAddress(const std::string& text, std::size_t begin, std::size_t end) {
    const char before = begin > 0 ? text[begin - 1] : ' ';
    const char after = end < text.size() ? text[end] : ' ';
    const bool dotGoesOn = after == '.' && end + 1 < text.size() && isWordByte(text[end + 1]);
    return std::string_view("@./_\\+=").find(before) != std::string_view::npos ||
           std::string_view("@/_\\+=").find(after) != std::string_view::npos || dotGoesOn;
}

} // namespace

WordList::WordList(const std::vector<std::string>& files) {
    std::ostringstream all;
    for (const std::string& file : files)
        if (std::ifstream list(file); list && list.peek() != std::ifstream::traits_type::eof())
            all << list.rdbuf();
    text_ = all.str();
    std::transform(text_.begin(), text_.end(), text_.begin(), lower);
    for (std::size_t begin = 0; begin < text_.size();) {
        const std::size_t end = std::min(text_.find('\n', begin), text_.size());
        if (end > begin)
            words_.emplace_back(text_.data() + begin, end - begin);
        begin = end + 1;
    }
    std::sort(words_.begin(), words_.end());
}

bool WordList::contains(std::string_view lowerCaseWord) const {
    return std::binary_search(words_.begin(), words_.end(), lowerCaseWord);
}

OrdinaryWords::OrdinaryWords(const std::vector<std::string>& commonFiles,
                             const std::vector<std::string>& usualFiles,
                             const std::vector<std::string>& knownFiles)
    : common_(commonFiles), usual_(usualFiles), known_(knownFiles) {}

std::shared_ptr<const OrdinaryWords> OrdinaryWords::ofThisSystem() {
    const auto files = [](const std::vector<std::string>& grades) {
        std::vector<std::string> paths;
        for (const std::string& grade : grades)
            for (const char* list : {"english-words.", "english-upper.", "american-words.", "british-words."})
                paths.push_back("/usr/share/dict/scowl/" + std::string(list) + grade);
        return paths;
    };
    auto words = std::make_shared<const OrdinaryWords>(files({"10", "20"}), files({"35"}),
                                                       files({"40", "50", "55", "60"}));
    return words->isEmpty() ? nullptr : words;
}

OrdinaryWords::Grade OrdinaryWords::gradeOf(std::string_view lowerCaseWord) const {
    if (common_.contains(lowerCaseWord))
        return Grade::common;
    if (usual_.contains(lowerCaseWord))
        return Grade::usual;
    return known_.contains(lowerCaseWord) ? Grade::known : Grade::unknown;
}

ContextWords::ContextWords(const std::vector<std::string>& entries,
                           std::shared_ptr<const OrdinaryWords> ordinary)
    : ordinary_(std::move(ordinary)) {
    for (const std::string& entry : entries) {
        const std::string letters = lettersOf(entry);
        if (!letters.empty())
            entries_.push_back({entry, letters, soundOf(letters)});
    }
}

std::string ContextWords::soundOf(std::string_view word) {
    std::string sound;
    for (std::size_t position = 0; position < word.size();) {
        std::string_view part;
        std::size_t length = 1;
        if (const Spelling* spelling = spellingAt(word, position)) {
            part = spelling->sound;
            length = spelling->letters.size();
        } else if (position == 0 && isVowel(word[0])) {
            part = "A";
        } else if ((static_cast<unsigned char>(word[position]) & 0x80) != 0 || isDigit(word[position])) {
            part = word.substr(position, 1);
        } else {
            part = soundAt(word, position);
        }
        for (const char c : part)
            if (sound.empty() || sound.back() != c)
                sound += c;
        position += length;
    }
    return sound;
}

std::vector<ContextWords::Word> ContextWords::wordsOf(const std::string& text) const {
    std::vector<Word> words;
    for (std::size_t begin = 0; begin < text.size();) {
        if (!isWordByte(text[begin])) {
            ++begin;
            continue;
        }
        std::size_t end = begin;
        while (end < text.size() && (isWordByte(text[end]) || (text[end] == '\'' && end + 1 < text.size() &&
                                                               isWordByte(text[end + 1]))))
            ++end;
        std::string_view word(text.data() + begin, end - begin);
        const bool isPossessive = word.size() > 2 && word.ends_with("'s");
        std::string whole(word);
        std::transform(whole.begin(), whole.end(), whole.begin(), lower);
        const std::string letters = lettersOf(isPossessive ? word.substr(0, word.size() - 2) : word);
        const Grade grade = std::min(ordinary_->gradeOf(whole), ordinary_->gradeOf(letters));
        const bool isEntry = std::any_of(entries_.begin(), entries_.end(),
                                         [&](const Entry& entry) { return entry.letters == letters; });
        words.push_back({begin, end, letters, grade, isPossessive, isInAddress(text, begin, end), isEntry});
        begin = end;
    }
    return words;
}

std::vector<ContextWords::Match> ContextWords::matchesIn(const std::string& text,
                                                         const std::vector<Word>& words) const {
    std::vector<Match> matches;
    for (std::size_t first = 0; first < words.size(); ++first) {
        for (std::size_t count = 1; count <= mostWords && first + count <= words.size(); ++count) {
            const Word& last = words[first + count - 1];
            if (last.isAddress ||
                (count > 1 && !areNeighbours(text, words[first + count - 2].end, last.begin)))
                break;
            addMatches(words, first, count, matches);
            if (last.isPossessive)
                break;
        }
    }
    return matches;
}

/// Whether the run may stand for the entry; `apart` is in hundredths of its letters.
bool ContextWords::isNear(const Run& run, const Entry& entry, std::size_t apart) {
    // The same letters: another way of writing it, "terraform" or "post gre sql".
    if (apart == 0)
        return run.words > 1 || run.rarest != Grade::common;
    // Ordinary words in a row are meant as they are; a rare one among them may have been misheard.
    if (run.rarest == Grade::common || (run.rarest != Grade::unknown && run.words == 1))
        return false;
    const std::size_t heardApart = distance(run.sound, entry.sound);
    // "velour in" for "Velorin": too near to be chance.
    if (run.rarest == Grade::usual)
        return heardApart == 0 && entry.sound.size() >= 4 && apart <= 15;
    if (heardApart == 0)
        return entry.sound.size() >= (run.rarest == Grade::unknown ? 2U : 4U) && apart <= 50;
    return heardApart == 1 && run.rarest == Grade::unknown && !run.hasCommon && entry.sound.size() >= 4 &&
           run.sound.front() == entry.sound.front() && apart <= 45;
}

void ContextWords::addMatches(const std::vector<Word>& words, std::size_t first, std::size_t count,
                              std::vector<Match>& matches) const {
    Run run{{}, {}, count, Grade::common, false};
    for (std::size_t word = first; word < first + count; ++word) {
        run.letters += words[word].letters;
        run.rarest = std::max(run.rarest, words[word].grade);
        run.hasCommon = run.hasCommon || words[word].grade <= Grade::usual;
    }
    run.sound = soundOf(run.letters);
    for (const Entry& entry : entries_) {
        const std::size_t longest = std::max(run.letters.size(), entry.letters.size());
        const std::size_t apart = 100 * distance(run.letters, entry.letters) / longest;
        if (!run.sound.empty() && isNear(run, entry, apart))
            matches.push_back({first, count, &entry, apart});
    }
}

std::string ContextWords::correct(const std::string& text) const {
    // Without knowing the ordinary words nothing could be told from a name.
    if (entries_.empty() || !ordinary_)
        return text;
    const std::vector<Word> words = wordsOf(text);
    std::vector<Match> matches = matchesIn(text, words);
    // The nearest first: "by Anthropic" is farther from "Anthropic" than "Anthropic" is.
    std::stable_sort(matches.begin(), matches.end(),
                     [](const Match& a, const Match& b) { return a.apart < b.apart; });
    std::vector<const Match*> chosen(words.size(), nullptr);
    for (const Match& match : matches) {
        const auto begin = chosen.begin() + static_cast<std::ptrdiff_t>(match.first);
        const auto end = begin + static_cast<std::ptrdiff_t>(match.count);
        if (std::all_of(begin, end, [](const Match* other) { return other == nullptr; }))
            std::fill(begin, end, &match);
    }
    std::string corrected;
    std::size_t copied = 0;
    for (std::size_t first = 0; first < words.size(); first += chosen[first] ? chosen[first]->count : 1) {
        if (!chosen[first])
            continue;
        const Word& last = words[first + chosen[first]->count - 1];
        corrected.append(text, copied, words[first].begin - copied).append(chosen[first]->entry->spelling);
        if (last.isPossessive)
            corrected.append("'s");
        copied = last.end;
    }
    return corrected.append(text, copied);
}

} // namespace velorin

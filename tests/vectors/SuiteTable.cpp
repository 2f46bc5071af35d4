#include "SuiteTable.h"

using namespace Qt::Literals::StringLiterals;

namespace velorin::vectors {

void SuiteTable::add(const QString& name, Answer answer, Tolerance tolerance) {
    const auto inserted = suites_.emplace(name, Suite{std::move(answer), tolerance, {}}).second;
    Q_ASSERT_X(inserted, "SuiteTable::add", qUtf8Printable(name));
}

void SuiteTable::addReference(const QString& name, Answer reference) {
    suites_.at(name).reference = std::move(reference);
}

const Suite* SuiteTable::find(const QString& name) const {
    constexpr auto graphemes = "graphemes."_L1;
    const auto known = name.startsWith(graphemes) ? u"cleaner."_s + name.sliced(graphemes.size()) : name;
    const auto found = suites_.find(known);
    return found == suites_.end() ? nullptr : &found->second;
}

} // namespace velorin::vectors

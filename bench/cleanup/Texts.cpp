#include "Texts.h"

#include <QStringList>

namespace velorin::bench {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr QStringView prose =
    u"We went down to the harbour in the morning, while the light was still soft and the boats lay quiet at "
    u"their moorings. I had promised my brother that the two of us would look at the old house again before "
    u"anybody made an offer for it. There was a letter on the table, and nobody could say how long it had "
    u"been "
    u"there. It seemed to me that the whole street had changed, although no single house looked any "
    u"different "
    u"from what I remembered. The report for the second quarter should reach everybody on the team by "
    u"Thursday "
    u"afternoon, and I would like to hear what you think of the numbers on page four. After lunch they "
    u"walked "
    u"along the river as far as the bridge, talking about work, about their children, about nothing at all. "
    u"Could you please send me the address of the hotel and the time of the last train? If it rains, we can "
    u"meet "
    u"inside; there are enough chairs for everyone. She put the kettle on, opened the window, and waited. ";

constexpr QStringView dense =
    u"um so the meeting is at five, no wait six pm new paragraph please bring the draft, uh the final one, "
    u"and "
    u"open main dot rs in the folder src slash lib slash core new line call Bob, sorry Alice, and ask, you "
    u"know, "
    u"about the budget next bullet milk, er, oat milk bullet point bread from the corner, actually from the "
    u"bakery new line the tool runs with dash dash verbose, I mean quiet, and writes to config underscore "
    u"user "
    u"hmm the big red dog, scratch that the small cat new paragraph write to jo at acme dot org, like, "
    u"today ";

constexpr QStringView code =
    u"if open paren user dot name double equals null close paren open curly brace return false semicolon "
    u"close "
    u"curly brace const result equals items dot filter open paren x fat arrow x not equals zero close paren "
    u"semicolon git commit — amend dash dash no dash edit cd src slash lib slash core hash sign include open "
    u"square bracket index close square bracket colon user underscore id double ampersand is underscore "
    u"valid ";

/// The words of the passage, over and over.
QString repeated(QStringView passage, qsizetype words) {
    const QStringList vocabulary = passage.toString().split(u' ', Qt::SkipEmptyParts);
    QStringList text;
    for (qsizetype i = 0; i < words; ++i)
        text.append(vocabulary[i % vocabulary.size()]);
    return text.join(u' ');
}

} // namespace

QString plainProse(qsizetype words) { return repeated(prose, words); }

QString denseProse(qsizetype words) { return repeated(dense, words); }

QString codeDictation(qsizetype words) { return repeated(code, words); }

} // namespace velorin::bench

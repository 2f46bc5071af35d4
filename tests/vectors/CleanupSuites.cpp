#include "Suites.h"

#include "cleanup/PolishGuard.h"
#include "cleanup/RuleCleaner.h"
#include "cleanup/Stages.h"
#include "delivery/ContextDetector.h"
#include "tests/cleanup/reference/Reference.h"
#include "tests/core/ModelDesk.h"

#include <QJsonArray>

using namespace Qt::Literals::StringLiterals;

namespace velorin::vectors {
namespace {

QList<WordReplacement> replacementsIn(const QJsonObject& in) {
    QList<WordReplacement> list;
    for (const QJsonValue& value : in[u"replacements"].toArray())
        list.append({QUuid::createUuid(), value[u"heard"].toString(), value[u"replacement"].toString()});
    return list;
}

ContextProfile profileIn(const QJsonObject& in) {
    return contextProfileFromRawString(in[u"profile"].toString()).value();
}

QString textIn(const QJsonObject& in) { return in[u"text"].toString(); }

QJsonValue polishRejection(const QJsonObject& in) {
    const auto reason = PolishGuard::rejection(in[u"polished"].toString(), in[u"original"].toString());
    return reason ? QJsonValue(*reason) : QJsonValue();
}

/// Of a model, whose mode decides.
QJsonValue cleanedTextForCurrentMode(const QJsonObject& in) {
    ModelDesk desk;
    AppModel& model = desk.start();
    model.setFinalizedText(in[u"finalizedText"].toString());
    model.setVolatileText(in[u"volatileText"].toString());
    model.setCleanMode(in[u"cleanMode"] == u"off"_s ? CleanMode::off : CleanMode::rules);
    model.setWordReplacements(replacementsIn(in));
    model.setActiveProfile(profileIn(in));
    return model.cleanedTextForCurrentMode();
}

QJsonValue contextFlags(const QJsonObject& in) {
    const ContextProfile profile = profileIn(in);
    return QJsonObject{{u"isCodeLike"_s, isCodeLike(profile)},
                       {u"usesCodeSymbols"_s, usesCodeSymbols(profile)},
                       {u"capitalizesSentences"_s, capitalizesSentences(profile)},
                       {u"addsTerminalPunctuation"_s, addsTerminalPunctuation(profile)}};
}

QJsonValue contextDetect(const QJsonObject& in) {
    const auto text = [&](QStringView key) {
        return in[key].isNull() ? std::nullopt : std::optional(in[key].toString());
    };
    return rawString(ContextDetector::detect(text(u"bundleID"), [&] { return text(u"windowTitle"); }));
}

void addReferences(SuiteTable& table) {
    table.addReference(u"cleaner.clean"_s, [](const QJsonObject& in) -> QJsonValue {
        return Reference::clean(in[u"raw"].toString(), replacementsIn(in), profileIn(in));
    });
    table.addReference(u"cleaner.spokenPunctuation"_s, [](const QJsonObject& in) -> QJsonValue {
        return Reference::spokenPunctuation(textIn(in), profileIn(in));
    });
    table.addReference(u"cleaner.applyCodeSymbols"_s, [](const QJsonObject& in) -> QJsonValue {
        return Reference::applyCodeSymbols(textIn(in));
    });
    table.addReference(u"cleaner.stripFillers"_s, [](const QJsonObject& in) -> QJsonValue {
        return Reference::stripFillers(textIn(in));
    });
    table.addReference(u"cleaner.applyCorrections"_s, [](const QJsonObject& in) -> QJsonValue {
        return Reference::applyCorrections(textIn(in));
    });
    table.addReference(u"cleaner.applyReplacements"_s, [](const QJsonObject& in) -> QJsonValue {
        return Reference::applyReplacements(textIn(in), replacementsIn(in));
    });
    table.addReference(u"cleaner.tidy"_s, [](const QJsonObject& in) -> QJsonValue {
        return Reference::tidy(textIn(in), in[u"endsPunctuated"].toBool(), profileIn(in));
    });
    table.addReference(u"cleaner.normalizeLayout"_s, [](const QJsonObject& in) -> QJsonValue {
        return Reference::normalizeLayout(textIn(in), in[u"capitalize"].toBool());
    });
    table.addReference(u"cleaner.words"_s, [](const QJsonObject& in) -> QJsonValue {
        return QJsonArray::fromStringList(Reference::words(textIn(in)));
    });
}

} // namespace

void addCleanupSuites(SuiteTable& table) {
    table.add(u"cleaner.clean"_s, [](const QJsonObject& in) -> QJsonValue {
        return RuleCleaner::clean(in[u"raw"].toString(), replacementsIn(in), profileIn(in));
    });
    table.add(u"cleaner.spokenPunctuation"_s, [](const QJsonObject& in) -> QJsonValue {
        return RuleCleaner::spokenPunctuation(textIn(in), profileIn(in));
    });
    table.add(u"cleaner.applyCodeSymbols"_s,
              [](const QJsonObject& in) -> QJsonValue { return RuleCleaner::applyCodeSymbols(textIn(in)); });
    table.add(u"cleaner.stripFillers"_s,
              [](const QJsonObject& in) -> QJsonValue { return RuleCleaner::stripFillers(textIn(in)); });
    table.add(u"cleaner.applyCorrections"_s,
              [](const QJsonObject& in) -> QJsonValue { return RuleCleaner::applyCorrections(textIn(in)); });
    table.add(u"cleaner.applyReplacements"_s, [](const QJsonObject& in) -> QJsonValue {
        return RuleCleaner::applyReplacements(textIn(in), replacementsIn(in));
    });
    table.add(u"cleaner.tidy"_s, [](const QJsonObject& in) -> QJsonValue {
        return RuleCleaner::tidy(textIn(in), in[u"endsPunctuated"].toBool(), profileIn(in));
    });
    table.add(u"cleaner.normalizeLayout"_s, [](const QJsonObject& in) -> QJsonValue {
        return RuleCleaner::normalizeLayout(textIn(in), in[u"capitalize"].toBool());
    });
    table.add(u"cleaner.words"_s, [](const QJsonObject& in) -> QJsonValue {
        return QJsonArray::fromStringList(PolishGuard::words(textIn(in)));
    });
    table.add(u"polishGuard.rejection"_s, &polishRejection);
    table.add(u"flows.cleanedTextForCurrentMode"_s, &cleanedTextForCurrentMode);
    table.add(u"context.flags"_s, &contextFlags);
    table.add(u"context.detect"_s, &contextDetect);
    addReferences(table);
}

} // namespace velorin::vectors

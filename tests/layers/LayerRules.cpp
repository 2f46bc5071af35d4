#include "LayerRules.h"

#include <QDir>
#include <QRegularExpression>

#include <algorithm>
#include <optional>

using namespace Qt::Literals::StringLiterals;

namespace velorin::layers {
namespace {

struct Layer {
    QString folder;
    QStringList allowed; ///< Folders to the right; a folder's own files are always allowed.
};

const QStringList subsystems{u"cleanup"_s, u"shortcuts"_s, u"speech"_s, u"ai"_s, u"delivery"_s};
const QStringList ports{u"platform"_s, u"text"_s};

const Layer table[] = {
    {u"text"_s, {}},
    {u"platform"_s, {u"text"_s}},
    {u"platform/linux"_s, ports},
    {u"cleanup"_s, ports},
    {u"shortcuts"_s, ports},
    {u"speech"_s, ports},
    {u"ai"_s, ports},
    {u"delivery"_s, ports},
    {u"core"_s, subsystems + ports},
    {u"ui"_s, QStringList{u"core"_s} + subsystems + ports},
    {u"app"_s, QStringList{u"ui"_s, u"core"_s, u"platform/linux"_s} + subsystems + ports},
};

/// A value that two other subsystems read.
const QString sharedHeader = u"delivery/ContextProfile.h"_s;
const QStringList readersOfSharedHeader{u"cleanup"_s, u"ai"_s};

const Layer* layerOf(const QString& path) {
    const Layer* found = nullptr;
    for (const auto& layer : table) {
        // The longest folder wins: platform/linux is within platform.
        if (path.startsWith(layer.folder + u'/') &&
            (found == nullptr || layer.folder.size() > found->folder.size()))
            found = &layer;
    }
    return found;
}

/// The file of the project that an include means, beside the including file or from src/ on.
std::optional<QString> resolved(const QString& include, const QString& path, const Sources& sources) {
    const auto folder = path.left(path.lastIndexOf(u'/') + 1);
    for (const auto& candidate : {QDir::cleanPath(folder + include), QDir::cleanPath(include)}) {
        if (sources.contains(candidate))
            return candidate;
    }
    return {};
}

bool isArrow(const QString& from, const QString& to) {
    const auto* source = layerOf(from);
    const auto* target = layerOf(to);
    if (source == nullptr || target == nullptr)
        return false;
    if (to == sharedHeader && readersOfSharedHeader.contains(source->folder))
        return true;
    return source == target || source->allowed.contains(target->folder);
}

/// For what is no file of the project: text and platform may see neither desktop nor any Qt but its core.
bool isAllowedLibrary(const QString& include, const QString& path, const IsCoreHeader& isCoreHeader) {
    static const QRegularExpression desktop(
        u"^(xcb/|X11/|xkbcommon/|pulse/|dbus/|gio/|glib|libsecret/|Qt(?!Core/)\\w+/)"_s);
    const auto* layer = layerOf(path);
    if (layer == nullptr || (layer->folder != u"text"_s && layer->folder != u"platform"_s))
        return true;
    if (include.startsWith(u'Q') && !include.contains(u'/'))
        return isCoreHeader(include);
    return !desktop.match(include).hasMatch();
}

bool isAllowed(const QString& include, const QString& path, const Sources& sources,
               const IsCoreHeader& isCoreHeader) {
    const auto name = include.sliced(1, std::max<qsizetype>(0, include.size() - 2));
    const bool isQuoted = include.startsWith(u'"');
    if (!isQuoted && !include.startsWith(u'<'))
        return false; // A macro could mean anything.
    if (const auto file = resolved(name, path, sources))
        return isArrow(path, *file);
    if (isQuoted) {
        // What moc makes lies in the build tree; nothing else is in quotes.
        static const QRegularExpression generated(u"^(\\w+\\.moc|moc_\\w+\\.cpp)$"_s);
        return generated.match(name).hasMatch();
    }
    return !name.startsWith(u'.') && isAllowedLibrary(name, path, isCoreHeader);
}

} // namespace

QStringList includes(const QString& source) {
    static const QRegularExpression line(
        u"^[ \\t]*#[ \\t]*(?:include|include_next|import)\\b[ \\t]*(\"[^\"]*\"|<[^>]*>|.*)"_s,
        QRegularExpression::MultilineOption);
    QStringList found;
    for (auto matches = line.globalMatch(source); matches.hasNext();)
        found += matches.next().captured(1);
    return found;
}

QStringList violations(const Sources& sources, const IsCoreHeader& isCoreHeader) {
    QStringList found;
    for (const auto& [path, source] : sources) {
        if (layerOf(path) == nullptr)
            found += path + u": in no known layer"_s;
        for (const auto& include : includes(source)) {
            if (!isAllowed(include, path, sources, isCoreHeader))
                found += path + u": "_s + include;
        }
    }
    return found;
}

} // namespace velorin::layers

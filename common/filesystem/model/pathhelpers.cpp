#include "common/filesystem/model/pathhelpers.h"

#include <algorithm>
#include <filesystem>

namespace vantrel {

namespace {

QString withoutTrailingSeparator(const QString& path)
{
    return path.size() > 1 && path.endsWith(u'/') ? path.chopped(1) : path;
}

/// Of most paths nothing is to be changed, which is seen sooner than done.
bool isNormal(QStringView path)
{
    for (qsizetype begin = path.startsWith(u'/') ? 1 : 0; begin < path.size();) {
        const qsizetype separator = path.indexOf(u'/', begin);
        const qsizetype end = separator < 0 ? path.size() : separator;
        const QStringView name = path.sliced(begin, end - begin);
        if (name.isEmpty() || name == u"." || name == u"..")
            return false;
        begin = end + 1;
    }
    return true;
}

bool endsWithOneOf(const QString& path, const QStringList& suffixes)
{
    return std::ranges::any_of(
        suffixes, [&](const QString& suffix) { return path.endsWith(suffix, Qt::CaseInsensitive); });
}

} // namespace

QString getParentPath(const QString& path)
{
    const qsizetype separator = withoutTrailingSeparator(path).lastIndexOf(u'/');
    return separator < 0 ? path : path.left(separator + 1);
}

QString normalizePath(const QString& path)
{
    if (isNormal(path))
        return path;
    const std::filesystem::path normal = std::filesystem::path(path.toStdString()).lexically_normal();
    return QString::fromStdString(normal.generic_string());
}

QString withoutTrailingSlash(const QString& path)
{
    return withoutTrailingSeparator(normalizePath(path));
}

QString createJoinedPath(const QString& base, const QString& name, bool isDirectory)
{
    const QString joined = (base.endsWith(u'/') ? base : base + u'/') + name;
    return isDirectory ? joined + u'/' : joined;
}

QString destinationPath(const QString& to, const QString& from, bool isDirectory)
{
    return isDirectory || to.endsWith(u'/') ? createJoinedPath(to, getNameInPath(from), false) : to;
}

bool isSamePath(const QString& path, const QString& other)
{
    return withoutTrailingSlash(path) == withoutTrailingSlash(other);
}

bool isPathBelow(const QString& path, const QString& directory)
{
    const QString above = withoutTrailingSlash(directory);
    const QString below = withoutTrailingSlash(path);
    return below.size() > above.size() && below.startsWith(above.endsWith(u'/') ? above : above + u'/');
}

QString numberedPath(const QString& path, int number)
{
    constexpr qsizetype most = 255; // bytes, as file systems count
    QString stem = getNameInPath(path);
    const qsizetype dot = stem.lastIndexOf(u'.');
    const QString suffix = dot > 0 ? stem.mid(dot) : QString();
    stem.chop(suffix.size());
    const QString ending = QStringLiteral(" (%1)").arg(number) + suffix;
    while (!stem.isEmpty() && stem.toUtf8().size() + ending.toUtf8().size() > most)
        stem.chop(stem.back().isLowSurrogate() ? 2 : 1);
    return createJoinedPath(getParentPath(path), stem + ending, false);
}

bool isMediaFile(const QString& path)
{
    static const QStringList suffixes = mediaFileExtensions(QStringLiteral("."));
    return endsWithOneOf(path, suffixes);
}

bool isShownFile(const QString& path)
{
    return isMediaFile(path) || isImageFile(path);
}

bool isSoundFile(const QString& path)
{
    static const QStringList suffixes = soundFileExtensions(QStringLiteral("."));
    return endsWithOneOf(path, suffixes);
}

bool isImageFile(const QString& path)
{
    static const QStringList suffixes = imageSequenceFileExtensions(QStringLiteral("."));
    return endsWithOneOf(path, suffixes);
}

} // namespace vantrel

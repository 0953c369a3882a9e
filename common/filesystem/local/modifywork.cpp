#include "common/filesystem/local/modifywork.h"

#include "common/filesystem/local/systemfile.h"

#include <QCoreApplication>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>

namespace vantrel {

using namespace systemfile;

namespace {

constexpr std::size_t longestName = 255; // bytes

QString text(const char* source)
{
    return QCoreApplication::translate("LocalFileSystem", source);
}

JobResult failed(JobResult::Outcome outcome, const QString& sentence)
{
    return {outcome, {}, {sentence}};
}

int makeItem(const std::string& path, bool isWantedDirectory)
{
    if (isWantedDirectory)
        return ::mkdir(path.c_str(), 0777) == 0 ? 0 : errno;
    Handle file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    return file.isOpen() ? file.close() : errno;
}

} // namespace

QString nameProblem(const QString& name)
{
    if (name.isEmpty())
        return text("An item needs a name.");
    if (name == u"." || name == u"..")
        return text("%1 stands for a folder and is no name.").arg(shownName(bytesOf(name)));
    if (name.contains(u'/') || name.contains(QChar(u'\0')))
        return text("A name cannot hold a slash.");
    if (bytesOf(name).size() > longestName)
        return text("The name is too long: it takes %1 bytes, and 255 can be had.").arg(bytesOf(name).size());
    return {};
}

JobResult createItem(const QString& path, bool isWantedDirectory, bool acceptsExisting)
{
    const std::string target = withoutSlash(bytesOf(path));
    const std::string name = nameOf(target);
    if (const QString problem = nameProblem(textOf(name)); !problem.isEmpty())
        return failed(JobResult::Failed, problem);
    const int error = makeItem(target, isWantedDirectory);
    if (error == EEXIST && isWantedDirectory && acceptsExisting && isDirectory(itemStat(target)))
        return {JobResult::Done, path, {}};
    if (error == EEXIST)
        return failed(JobResult::Exists, text("%1 is there already.").arg(shownName(target)));
    if (error)
        return failed(JobResult::Failed,
                      text("%1 could not be made: %2.").arg(shownName(target), reasonText(error)));
    return {JobResult::Done, path, {}};
}

JobResult renameItem(const QString& path, const QString& newName, bool isDirectoryExpected)
{
    const std::string source = withoutSlash(bytesOf(path));
    const auto stat = itemStat(source);
    if (!stat)
        return failed(JobResult::Missing, text("%1 is not there any more.").arg(shownName(source)));
    if (isDirectory(stat) != isDirectoryExpected)
        return failed(JobResult::Failed, text("%1 has become something else.").arg(shownName(source)));
    if (const QString problem = nameProblem(newName); !problem.isEmpty())
        return failed(JobResult::Failed, problem);
    const std::string target = joined(parentOf(source), bytesOf(newName));
    int error = renameNoReplace(source, target);
    // A disk that does not tell cases apart finds the item itself under the new name.
    const auto there = error == EEXIST ? linkStat(target) : std::nullopt;
    if (there && isSameItem(*linkStat(source), *there) &&
        newName.compare(textOf(nameOf(source)), Qt::CaseInsensitive) == 0)
        error = ::rename(source.c_str(), target.c_str()) == 0 ? 0 : errno;
    if (error == EEXIST)
        return failed(JobResult::Exists, text("%1 is there already.").arg(shownName(target)));
    if (error)
        return failed(JobResult::Failed,
                      text("%1 could not be renamed: %2.").arg(shownName(source), reasonText(error)));
    return {JobResult::Done, textOf(target), {}};
}

} // namespace vantrel

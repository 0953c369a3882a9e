#include "common/views/media/sequencesearch.h"

#include "common/filesystem/models/filesmodel.h"
#include "common/media/address/mediafiles.h"
#include "tarn/media/imgseqanalyzer.h"

#include <QElapsedTimer>

namespace vantrel {

namespace {

constexpr int turnMs = 4;
constexpr int namesBetweenClocks = 64;

/// The name with each number in it as one "#".
QString shapeOf(const QString& name)
{
    QString shape;
    shape.reserve(name.size());
    for (const QChar letter : name) {
        if (!letter.isDigit())
            shape.append(letter);
        else if (!shape.endsWith(u'#'))
            shape.append(u'#');
    }
    return shape;
}

std::optional<ImageSequenceInfo> sequenceOf(const std::vector<std::filesystem::path>& paths,
                                            const std::string& path)
{
    const auto nothing = [](const std::filesystem::path&) { return std::vector<std::filesystem::path>(); };
    for (const ImageSequenceInfo& info : ImgSeqAnalyzer().findSequences(paths, nothing)) {
        bool isHeld = false;
        info.forEachFrame([&](std::size_t frame) { isHeld = isHeld || info.format.file(frame) == path; });
        if (isHeld)
            return info;
    }
    return std::nullopt;
}

} // namespace

SequenceSearch::SequenceSearch(QObject* parent)
    : QObject(parent)
{
    m_pool.setMaxThreadCount(1);
    connect(&m_turn, &Turn::come, this, &SequenceSearch::gather);
}

SequenceSearch::~SequenceSearch()
{
    stop();
    m_pool.waitForDone();
}

void SequenceSearch::begin(FilesModel* files, const QString& path, const Next& next)
{
    stop();
    m_files = files;
    m_path = path.toStdString();
    m_shape = shapeOf(getNameInPath(path));
    m_next = next;
    m_isRunning = true;
    const auto anew = [this] {
        m_row = 0;
        m_paths.clear();
    };
    connect(files, &QAbstractItemModel::modelReset, this, anew);
    connect(files, &QAbstractItemModel::rowsInserted, this, anew);
    connect(files, &QAbstractItemModel::rowsRemoved, this, anew);
    anew();
    m_turn.ask();
}

void SequenceSearch::stop()
{
    ++m_round;
    m_turn.stop();
    m_isRunning = false;
    if (m_files)
        m_files->disconnect(this);
    m_files = nullptr;
    m_paths.clear();
}

void SequenceSearch::gather()
{
    if (!m_files)
        return stop();
    QElapsedTimer clock;
    clock.start();
    const std::filesystem::path folder = m_files->directoryPath().toStdString();
    while (m_row < m_files->count()) {
        const QModelIndex index = m_files->index(m_row++);
        const QString name = index.data(FilesModel::NameRole).toString();
        if (shapeOf(name) == m_shape && !index.data(FilesModel::IsDirectoryRole).toBool())
            m_paths.push_back(folder / name.toStdString());
        if (m_row % namesBetweenClocks == 0 && clock.elapsed() >= turnMs)
            return m_turn.ask();
    }
    read();
}

void SequenceSearch::read()
{
    m_files->disconnect(this);
    m_pool.start([this, round = m_round, paths = std::move(m_paths), path = m_path] {
        const auto found = sequenceOf(paths, path);
        // It waits for this thread before it goes.
        QMetaObject::invokeMethod(this, [this, round, found] {
            if (round != m_round)
                return;
            const Next next = m_next;
            stop();
            next(found);
        });
    });
    m_paths = {};
}

} // namespace vantrel

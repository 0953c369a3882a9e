#pragma once

#include "common/media/library/turn.h"
#include "tarn/media/imagesequenceinfo.h"

#include <QObject>
#include <QPointer>
#include <QThreadPool>

#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

namespace vantrel {

class FilesModel;

/// Finds the image sequence of a folder that a picture belongs to: names are gathered in turns of a few
/// milliseconds, and read on a thread. Who wants it owns it; main thread only.
class SequenceSearch : public QObject
{
    Q_OBJECT

public:
    using Next = std::function<void(const std::optional<ImageSequenceInfo>& sequence)>;

    explicit SequenceSearch(QObject* parent = nullptr);
    ~SequenceSearch() override;

    /// Goes on with the sequence, or with nothing where the picture stands alone; not once this was stopped
    /// or begun anew.
    void begin(FilesModel* files, const QString& path, const Next& next);
    void stop();
    bool isRunning() const { return m_isRunning; }

private:
    void gather();
    void read();

    QPointer<FilesModel> m_files;
    std::string m_path;
    QString m_shape; // of its name: what all names of a sequence have in common
    Next m_next;
    Turn m_turn;
    int m_row = 0;
    std::vector<std::filesystem::path> m_paths;
    QThreadPool m_pool;
    int m_round = 0;
    bool m_isRunning = false;
};

} // namespace vantrel

#pragma once

#include "common/filesystem/model/filesystem.h"
#include "common/import/imagesequencecandidate.h"

#include <QList>
#include <QObject>
#include <QString>

#include <optional>

namespace vantrel::images {

Q_NAMESPACE

enum class ImageResultType { StillImage = 0, ImageSequence = 1 };
Q_ENUM_NS(ImageResultType)

/// A picture that stands for a time of its own, or until somebody ends it.
struct StillImage
{
    Q_GADGET
    Q_PROPERTY(QString filePath MEMBER filePath)
    Q_PROPERTY(double durationSeconds MEMBER durationSeconds)
    Q_PROPERTY(bool hasInfiniteDuration MEMBER hasInfiniteDuration)

public:
    static constexpr double defaultDuration = 10; // seconds

    QString filePath;
    double durationSeconds = defaultDuration;
    bool hasInfiniteDuration = false;

    /// The last part of the path.
    Q_INVOKABLE QString name() const;

    friend bool operator==(const StillImage&, const StillImage&) = default;
};

/// What was found in a drop: a sequence with its pictures, which the operator may turn into stills, or one
/// still. A value.
class ImagesResult
{
    Q_GADGET
    Q_PROPERTY(vantrel::images::ImageResultType type READ type WRITE setType)
    Q_PROPERTY(QList<vantrel::images::StillImage> stillImages READ stillImages WRITE setStillImages)
    Q_PROPERTY(vantrel::FileSystem* fileSystem READ fileSystem WRITE setFileSystem)

public:
    ImageResultType type() const { return m_type; }
    void setType(ImageResultType type) { m_type = type; }
    Q_INVOKABLE bool hasImageSequence() const { return m_sequence.has_value(); }
    /// The candidate; a default one without any.
    Q_INVOKABLE vantrel::ImageSequenceCandidate getImageSequence() const
    {
        return m_sequence.value_or(ImageSequenceCandidate());
    }
    void setImageSequence(const std::optional<ImageSequenceCandidate>& sequence)
    {
        m_found = m_sequence ? m_found : sequence;
        m_sequence = sequence;
    }
    /// As it was found: no picture lies outside of its range.
    const std::optional<ImageSequenceCandidate>& foundSequence() const { return m_found; }
    const QList<StillImage>& stillImages() const { return m_stills; }
    void setStillImages(const QList<StillImage>& stills) { m_stills = stills; }
    void setStillImage(qsizetype at, const StillImage& still) { m_stills[at] = still; }
    FileSystem* fileSystem() const { return m_fileSystem; }
    void setFileSystem(FileSystem* fileSystem) { m_fileSystem = fileSystem; }

    /// Whether what the operator has made of it can run on a server: a rate and a range of pictures, or times
    /// of stills.
    bool isStorable() const;
    /// It will be stored as a sequence.
    bool isSequence() const { return m_type == ImageResultType::ImageSequence && hasImageSequence(); }
    /// Of every still.
    Q_INVOKABLE void setStillImageDuration(double durationSeconds, bool isInfinite);
    Q_INVOKABLE void setStillImageDuration(double durationSeconds)
    {
        setStillImageDuration(durationSeconds, false);
    }

    friend bool operator==(const ImagesResult&, const ImagesResult&) = default;

private:
    ImageResultType m_type = ImageResultType::StillImage;
    std::optional<ImageSequenceCandidate> m_sequence;
    std::optional<ImageSequenceCandidate> m_found;
    QList<StillImage> m_stills;
    FileSystem* m_fileSystem = nullptr;
};

} // namespace vantrel::images

Q_DECLARE_METATYPE(vantrel::images::StillImage)
Q_DECLARE_METATYPE(vantrel::images::ImagesResult)

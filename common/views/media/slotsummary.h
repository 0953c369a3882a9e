#pragma once

#include "common/media/net/metadataprovider.h"

#include <QSet>
#include <QUrl>
#include <QVariantList>

#include <cstdint>
#include <map>
#include <optional>

class QModelIndex;

namespace vantrel {

enum class MediaType : std::int32_t;

/// What many slots come to: how many of which kind, how long, how large, and what they have in common. A
/// value.
class SlotSummary
{
public:
    /// slot: a row of the library's model. metadata: of its file, null while it is not known.
    void add(const QModelIndex& slot, const MediaMetadataPtr& metadata, bool isUsed);
    int count() const { return m_count; }
    /// Empty where they play several.
    QUrl commonFile() const { return m_files.size() == 1 ? *m_files.cbegin() : QUrl(); }
    /// Maps with "label" and "value".
    QVariantList facts() const;

private:
    /// What all have, as long as they have the same.
    class Common
    {
    public:
        void add(const QString& text);
        QString text() const;

    private:
        std::optional<QString> m_text;
        bool m_differs = false;
    };

    QString kindText() const;
    QString durationText() const;
    QString sizeText() const;

    int m_count = 0;
    std::map<MediaType, int> m_kinds;
    double m_seconds = 0;
    int m_endless = 0;
    int m_unusable = 0;
    int m_unused = 0;
    QSet<QUrl> m_files;
    qint64 m_bytes = 0;
    int m_unknownSizes = 0;
    Common m_picture;
    Common m_codec;
    Common m_rate;
    Common m_scaling;
};

} // namespace vantrel

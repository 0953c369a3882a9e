#include "common/filesystem/model/filesize.h"

#include <QLocale>

namespace vantrel {

QString fileSizeText(qint64 bytes)
{
    return QLocale().formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
}

} // namespace vantrel

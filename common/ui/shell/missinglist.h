#pragma once

#include <QListWidget>

namespace vantrel {

class ZTDialog;

/// The media that a show needs and the server does not have, in the question about it: as many as the server
/// names, to be scrolled through. Takes no room while there are none. Owned by its dialog.
class MissingList : public QListWidget
{
    Q_OBJECT

public:
    explicit MissingList(ZTDialog* dialog);

    void setMedia(const QStringList& media);

private:
    void fitRows();

    ZTDialog* m_dialog;
};

} // namespace vantrel

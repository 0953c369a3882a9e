#pragma once

#include "common/media/edit/implmediacollectionmanager.h"

#include <QObject>
#include <QQmlEngine>

#include <memory>

namespace vantrel {

class DialogFactory;
class QMLManagerPrivate;

/// The one engine of all declarative views, with the types and objects that they see. Nothing of it is made
/// before the first view asks. The application owns it; main thread only.
class QMLManager : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QQmlEngine* engine READ engine CONSTANT)
    Q_PROPERTY(vantrel::ImplMediaCollectionManager* commandCenter READ commandCenter CONSTANT)

public:
    ~QMLManager() override;
    static QMLManager* instance();

    /// Makes the engine; from the second time on nothing. Needs the session.
    void initialize();
    /// Null before initialize().
    QQmlEngine* engine() const;
    ImplMediaCollectionManager* commandCenter() const;
    /// What declarative views know as "dialogs"; null before initialize().
    DialogFactory* dialogs() const;

public Q_SLOTS:
    /// Ends the engine, before what its objects stand on goes. Views of it must be gone.
    void deinitialize();

private:
    QMLManager();

    std::unique_ptr<QMLManagerPrivate> d;
};

} // namespace vantrel

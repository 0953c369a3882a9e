#pragma once

#include "common/import/dropforecast.h"
#include "common/import/imagesequencecandidatemodel.h"
#include "common/import/mediacandidatemodel.h"
#include "common/import/stillimagecandidatemodel.h"
#include "common/media/library/turn.h"
#include "common/ui/toolkit/ztdialog.h"

#include <QPointer>

class QQmlComponent;

namespace vantrel {

class MediaDrop;
class QuickView;

/// Shows what was found in a drop. Its sequences and stills the operator corrects before they are stored, and
/// what is corrected stands in the drop at once. It opens beside a running show and waits for nobody: whoever
/// opens it says where the drop goes (setForecast()) and stores it on confirmed(), and the dialog closes with
/// the drop. Made by DialogFactory.
class DropDialog : public ZTDialog
{
    Q_OBJECT
    /// Whether what stands in the fields can be stored; the declarative part writes it.
    Q_PROPERTY(bool isSound READ isSound WRITE setIsSound NOTIFY isSoundChanged)

public:
    explicit DropDialog(MediaDrop* drop, QWidget* parent = nullptr);
    ~DropDialog() override;

    /// What it shows is read beside the main thread the first time, and it is there no sooner.
    void showOnceLoaded();

    bool isSound() const { return m_isSound; }
    void setIsSound(bool isSound);
    const DropForecast& forecast() const { return m_forecast; }
    void setForecast(const DropForecast& forecast);

Q_SIGNALS:
    void isSoundChanged();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void build();
    void prepare();
    void take(const CandidateModel& model);
    void updateAccept();
    void fit();
    void place();

    QPointer<MediaDrop> m_drop;
    MediaCandidateModel m_medias;
    ImageSequenceCandidateModel m_sequences;
    StillImageCandidateModel m_stills;
    QuickView* m_view;
    QQmlComponent* m_component;
    Turn m_turn; // in which a part of the view is made
    int m_step = 0;
    DropForecast m_forecast;
    QPoint m_place; // where it was put, until somebody moves it
    bool m_isSound = true;
};

} // namespace vantrel

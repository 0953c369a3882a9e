#pragma once

#include "common/session/mirror/sceneobjectwrapper.h"

namespace vantrel {

/// One video output as the server reports it, and its EDID override.
class GUIOutput : public SceneObjectWrapper
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(int width READ width WRITE setWidth NOTIFY widthChanged)
    Q_PROPERTY(int height READ height WRITE setHeight NOTIFY heightChanged)
    Q_PROPERTY(int hTotal READ hTotal WRITE setHTotal NOTIFY hTotalChanged)
    Q_PROPERTY(int vTotal READ vTotal WRITE setVTotal NOTIFY vTotalChanged)
    Q_PROPERTY(int hSyncPolarity READ hSyncPolarity WRITE setHSyncPolarity NOTIFY hSyncPolarityChanged)
    Q_PROPERTY(int vSyncPolarity READ vSyncPolarity WRITE setVSyncPolarity NOTIFY vSyncPolarityChanged)
    Q_PROPERTY(bool interlaced READ interlaced WRITE setInterlaced NOTIFY interlacedChanged)
    Q_PROPERTY(int dotClock READ dotClock WRITE setDotClock NOTIFY dotClockChanged)
    Q_PROPERTY(int bpc READ bpc WRITE setBpc NOTIFY bpcChanged)
    Q_PROPERTY(QString colorspace READ colorspace WRITE setColorspace NOTIFY colorspaceChanged)
    Q_PROPERTY(
        int currentLaneCount READ currentLaneCount WRITE setCurrentLaneCount NOTIFY currentLaneCountChanged)
    Q_PROPERTY(
        int currentLinkRate READ currentLinkRate WRITE setCurrentLinkRate NOTIFY currentLinkRateChanged)
    Q_PROPERTY(int reportedLaneCount READ reportedLaneCount WRITE setReportedLaneCount NOTIFY
                   reportedLaneCountChanged)
    Q_PROPERTY(
        int reportedLinkRate READ reportedLinkRate WRITE setReportedLinkRate NOTIFY reportedLinkRateChanged)
    Q_PROPERTY(bool connected READ connected WRITE setConnected NOTIFY connectedChanged)
    Q_PROPERTY(bool error READ error WRITE setError NOTIFY errorChanged)
    Q_PROPERTY(QString errorText READ errorText WRITE setErrorText NOTIFY errorTextChanged)
    Q_PROPERTY(QString product READ product WRITE setProduct NOTIFY productChanged)
    Q_PROPERTY(QString modelineId READ modelineId WRITE setModelineId NOTIFY modelineIdChanged)
    Q_PROPERTY(QString preferredModelineId READ preferredModelineId WRITE setPreferredModelineId NOTIFY
                   preferredModelineIdChanged)
    Q_PROPERTY(QString edid READ edid WRITE setEdid NOTIFY edidChanged)
    Q_PROPERTY(QString edidOverride READ edidOverride WRITE setEdidOverride NOTIFY edidOverrideChanged)
    Q_PROPERTY(QString edidOverrideFilename READ edidOverrideFilename WRITE setEdidOverrideFilename NOTIFY
                   edidOverrideFilenameChanged)
    Q_PROPERTY(bool maxLinkRate READ maxLinkRate WRITE setMaxLinkRate NOTIFY maxLinkRateChanged)
    Q_PROPERTY(
        int phyRepeaterCount READ phyRepeaterCount WRITE setPhyRepeaterCount NOTIFY phyRepeaterCountChanged)
    Q_PROPERTY(
        QString phyRepeaterMode READ phyRepeaterMode WRITE setPhyRepeaterMode NOTIFY phyRepeaterModeChanged)
    Q_PROPERTY(QString subconnector READ subconnector WRITE setSubconnector NOTIFY subconnectorChanged)
    Q_PROPERTY(bool fec READ fec WRITE setFec NOTIFY fecChanged)
    Q_PROPERTY(bool dsc READ dsc WRITE setDsc NOTIFY dscChanged)

public:
    explicit GUIOutput(QObject* parent = nullptr);

    QString name() const { return getProperty<QString>(m_info.name); }
    void setName(const QString& value) { setProperty(m_info.name, value); }
    int width() const { return getProperty<int>(m_info.width); }
    void setWidth(int value) { setProperty(m_info.width, value); }
    int height() const { return getProperty<int>(m_info.height); }
    void setHeight(int value) { setProperty(m_info.height, value); }
    int hTotal() const { return getProperty<int>(m_info.hTotal); }
    void setHTotal(int value) { setProperty(m_info.hTotal, value); }
    int vTotal() const { return getProperty<int>(m_info.vTotal); }
    void setVTotal(int value) { setProperty(m_info.vTotal, value); }
    int hSyncPolarity() const { return getProperty<int>(m_info.hSyncPolarity); }
    void setHSyncPolarity(int value) { setProperty(m_info.hSyncPolarity, value); }
    int vSyncPolarity() const { return getProperty<int>(m_info.vSyncPolarity); }
    void setVSyncPolarity(int value) { setProperty(m_info.vSyncPolarity, value); }
    bool interlaced() const { return getProperty<bool>(m_info.interlaced); }
    void setInterlaced(bool value) { setProperty(m_info.interlaced, value); }
    int dotClock() const { return getProperty<int>(m_info.dotClock); }
    void setDotClock(int value) { setProperty(m_info.dotClock, value); }
    int bpc() const { return getProperty<int>(m_info.bpc); }
    void setBpc(int value) { setProperty(m_info.bpc, value); }
    QString colorspace() const { return getProperty<QString>(m_info.colorspace); }
    void setColorspace(const QString& value) { setProperty(m_info.colorspace, value); }
    int currentLaneCount() const { return getProperty<int>(m_info.currentLaneCount); }
    void setCurrentLaneCount(int value) { setProperty(m_info.currentLaneCount, value); }
    int currentLinkRate() const { return getProperty<int>(m_info.currentLinkRate); }
    void setCurrentLinkRate(int value) { setProperty(m_info.currentLinkRate, value); }
    int reportedLaneCount() const { return getProperty<int>(m_info.reportedLaneCount); }
    void setReportedLaneCount(int value) { setProperty(m_info.reportedLaneCount, value); }
    int reportedLinkRate() const { return getProperty<int>(m_info.reportedLinkRate); }
    void setReportedLinkRate(int value) { setProperty(m_info.reportedLinkRate, value); }
    bool connected() const { return getProperty<bool>(m_info.connected); }
    void setConnected(bool value) { setProperty(m_info.connected, value); }
    bool error() const { return getProperty<bool>(m_info.error); }
    void setError(bool value) { setProperty(m_info.error, value); }
    QString errorText() const { return getProperty<QString>(m_info.errorText); }
    void setErrorText(const QString& value) { setProperty(m_info.errorText, value); }
    QString product() const { return getProperty<QString>(m_info.product); }
    void setProduct(const QString& value) { setProperty(m_info.product, value); }
    QString modelineId() const { return getProperty<QString>(m_info.modelineId); }
    void setModelineId(const QString& value) { setProperty(m_info.modelineId, value); }
    QString preferredModelineId() const { return getProperty<QString>(m_info.preferredModelineId); }
    void setPreferredModelineId(const QString& value) { setProperty(m_info.preferredModelineId, value); }
    QString edid() const { return getProperty<QString>(m_info.edid); }
    void setEdid(const QString& value) { setProperty(m_info.edid, value); }
    QString edidOverride() const { return getProperty<QString>(m_info.edidOverride); }
    void setEdidOverride(const QString& value) { setProperty(m_info.edidOverride, value); }
    QString edidOverrideFilename() const { return getProperty<QString>(m_info.edidOverrideFilename); }
    void setEdidOverrideFilename(const QString& value) { setProperty(m_info.edidOverrideFilename, value); }
    bool maxLinkRate() const { return getProperty<bool>(m_info.maxLinkRate); }
    void setMaxLinkRate(bool value) { setProperty(m_info.maxLinkRate, value); }
    int phyRepeaterCount() const { return getProperty<int>(m_info.phyRepeaterCount); }
    void setPhyRepeaterCount(int value) { setProperty(m_info.phyRepeaterCount, value); }
    QString phyRepeaterMode() const { return getProperty<QString>(m_info.phyRepeaterMode); }
    void setPhyRepeaterMode(const QString& value) { setProperty(m_info.phyRepeaterMode, value); }
    QString subconnector() const { return getProperty<QString>(m_info.subconnector); }
    void setSubconnector(const QString& value) { setProperty(m_info.subconnector, value); }
    bool fec() const { return getProperty<bool>(m_info.fec); }
    void setFec(bool value) { setProperty(m_info.fec, value); }
    bool dsc() const { return getProperty<bool>(m_info.dsc); }
    void setDsc(bool value) { setProperty(m_info.dsc, value); }

Q_SIGNALS:
    void nameChanged();
    void widthChanged();
    void heightChanged();
    void hTotalChanged();
    void vTotalChanged();
    void hSyncPolarityChanged();
    void vSyncPolarityChanged();
    void interlacedChanged();
    void dotClockChanged();
    void bpcChanged();
    void colorspaceChanged();
    void currentLaneCountChanged();
    void currentLinkRateChanged();
    void reportedLaneCountChanged();
    void reportedLinkRateChanged();
    void connectedChanged();
    void errorChanged();
    void errorTextChanged();
    void productChanged();
    void modelineIdChanged();
    void preferredModelineIdChanged();
    void edidChanged();
    void edidOverrideChanged();
    void edidOverrideFilenameChanged();
    void maxLinkRateChanged();
    void phyRepeaterCountChanged();
    void phyRepeaterModeChanged();
    void subconnectorChanged();
    void fecChanged();
    void dscChanged();

protected:
    void postSetObjectHook() override;

private:
    void cacheProperties();

    struct Info
    {
        const PropertyInfo* name = nullptr;
        const PropertyInfo* width = nullptr;
        const PropertyInfo* height = nullptr;
        const PropertyInfo* hTotal = nullptr;
        const PropertyInfo* vTotal = nullptr;
        const PropertyInfo* hSyncPolarity = nullptr;
        const PropertyInfo* vSyncPolarity = nullptr;
        const PropertyInfo* interlaced = nullptr;
        const PropertyInfo* dotClock = nullptr;
        const PropertyInfo* bpc = nullptr;
        const PropertyInfo* colorspace = nullptr;
        const PropertyInfo* currentLaneCount = nullptr;
        const PropertyInfo* currentLinkRate = nullptr;
        const PropertyInfo* reportedLaneCount = nullptr;
        const PropertyInfo* reportedLinkRate = nullptr;
        const PropertyInfo* connected = nullptr;
        const PropertyInfo* error = nullptr;
        const PropertyInfo* errorText = nullptr;
        const PropertyInfo* product = nullptr;
        const PropertyInfo* modelineId = nullptr;
        const PropertyInfo* preferredModelineId = nullptr;
        const PropertyInfo* edid = nullptr;
        const PropertyInfo* edidOverride = nullptr;
        const PropertyInfo* edidOverrideFilename = nullptr;
        const PropertyInfo* maxLinkRate = nullptr;
        const PropertyInfo* phyRepeaterCount = nullptr;
        const PropertyInfo* phyRepeaterMode = nullptr;
        const PropertyInfo* subconnector = nullptr;
        const PropertyInfo* fec = nullptr;
        const PropertyInfo* dsc = nullptr;
    };
    Info m_info;
};

} // namespace vantrel

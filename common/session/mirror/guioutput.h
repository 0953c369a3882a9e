#pragma once

#include "common/session/mirror/sceneobjectwrapper.h"
#include "common/session/mirror/screenhealth.h"

#include <array>

namespace vantrel {

/// Every property of an output: its type, its name here and in the scene, what sets it.
#define VANTREL_OUTPUT_PROPERTIES(X)                                                                         \
    X(QString, name, setName)                                                                                \
    X(int, width, setWidth)                                                                                  \
    X(int, height, setHeight)                                                                                \
    X(int, hTotal, setHTotal)                                                                                \
    X(int, vTotal, setVTotal)                                                                                \
    X(int, hSyncPolarity, setHSyncPolarity)                                                                  \
    X(int, vSyncPolarity, setVSyncPolarity)                                                                  \
    X(bool, interlaced, setInterlaced)                                                                       \
    X(int, dotClock, setDotClock)                                                                            \
    X(int, bpc, setBpc)                                                                                      \
    X(QString, colorspace, setColorspace)                                                                    \
    X(int, currentLaneCount, setCurrentLaneCount)                                                            \
    X(int, currentLinkRate, setCurrentLinkRate)                                                              \
    X(int, reportedLaneCount, setReportedLaneCount)                                                          \
    X(int, reportedLinkRate, setReportedLinkRate)                                                            \
    X(bool, connected, setConnected)                                                                         \
    X(bool, error, setError)                                                                                 \
    X(QString, errorText, setErrorText)                                                                      \
    X(QString, product, setProduct)                                                                          \
    X(QString, modelineId, setModelineId)                                                                    \
    X(QString, preferredModelineId, setPreferredModelineId)                                                  \
    X(QString, edid, setEdid)                                                                                \
    X(QString, edidOverride, setEdidOverride)                                                                \
    X(QString, edidOverrideFilename, setEdidOverrideFilename)                                                \
    X(bool, maxLinkRate, setMaxLinkRate)                                                                     \
    X(int, phyRepeaterCount, setPhyRepeaterCount)                                                            \
    X(QString, phyRepeaterMode, setPhyRepeaterMode)                                                          \
    X(QString, subconnector, setSubconnector)                                                                \
    X(bool, fec, setFec)                                                                                     \
    X(bool, dsc, setDsc)                                                                                     \
    X(int, confirmSeconds, setConfirmSeconds)

/// The same of what its screen does, which is another one each second.
#define VANTREL_OUTPUT_FIGURES(X)                                                                            \
    X(double, screenRate, setScreenRate)                                                                     \
    X(int, droppedPictures, setDroppedPictures)                                                              \
    X(int, latePictures, setLatePictures)                                                                    \
    X(double, decodeLoad, setDecodeLoad)                                                                     \
    X(double, paintLoad, setPaintLoad)                                                                       \
    X(bool, softwareRenderer, setSoftwareRenderer)                                                           \
    X(bool, identified, setIdentified)

#define VANTREL_OUTPUT_MEMBERS(X) VANTREL_OUTPUT_PROPERTIES(X) VANTREL_OUTPUT_FIGURES(X)

/// One video output as the server reports it, and its EDID override. A property that the scene's object does
/// not have is logged and reads as empty.
class GUIOutput : public SceneObjectWrapper
{
    Q_OBJECT
#define VANTREL_DECLARE(type, name, setter) Q_PROPERTY(type name READ name WRITE setter NOTIFY name##Changed)
    VANTREL_OUTPUT_MEMBERS(VANTREL_DECLARE)
#undef VANTREL_DECLARE

public:
    explicit GUIOutput(QObject* parent = nullptr);

#define VANTREL_ACCESS(type, name, setter)                                                                   \
    type name() const                                                                                        \
    {                                                                                                        \
        return getProperty<type>(m_info[Index::name]);                                                       \
    }                                                                                                        \
    void setter(const type& value)                                                                           \
    {                                                                                                        \
        setProperty(m_info[Index::name], value);                                                             \
    }
    VANTREL_OUTPUT_MEMBERS(VANTREL_ACCESS)
#undef VANTREL_ACCESS

    /// Of the real screen, where there is one.
    ScreenHealth screen() const;

Q_SIGNALS:
    /// screen() is another one.
    void screenChanged();
#define VANTREL_NOTIFY(type, name, setter) void name##Changed();
    VANTREL_OUTPUT_MEMBERS(VANTREL_NOTIFY)
#undef VANTREL_NOTIFY

protected:
    void postSetObjectHook() override;

private:
    struct Index
    {
#define VANTREL_INDEX(type, name, setter) name,
        enum { VANTREL_OUTPUT_MEMBERS(VANTREL_INDEX) count };
#undef VANTREL_INDEX
    };

    void findProperties();

    std::array<const PropertyInfo*, Index::count> m_info{};
};

} // namespace vantrel

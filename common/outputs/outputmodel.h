#pragma once

#include "common/session/mirror/screenhealth.h"
#include "tarn/scene/variant.h"

#include <QAbstractTableModel>
#include <QColor>
#include <QList>
#include <QPair>
#include <QTimer>

#include <memory>

class QUndoStack;

namespace vantrel {

class GUIChannel;
class GUIMapping;
class GUIModeline;
class GUIOutput;
class Object;

/// One video output as a table of one row: its state, its modes, and the mapping that drives it. Edits go to
/// the server as method calls, and show when the server has done them. Owned by its OutputItem; main thread.
class OutputModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    using Modelines = std::shared_ptr<QList<std::shared_ptr<GUIModeline>>>;
    /// What FileNameColumn is written with: a file's name, and its EDID in hexadecimal digits.
    using EdidFile = QPair<QString, QString>;

    enum Column : int {
        NameColumn,
        WidthColumn,
        HeightColumn,
        HTotalColumn,
        VTotalColumn,
        HSyncPolarityColumn,
        VSyncPolarityColumn,
        InterlacedColumn,
        FieldFrequencyColumn,
        LineFrequencyColumn,
        BpcColumn,
        ColorspaceColumn,
        CurrentLaneCountColumn,
        CurrentLinkRateColumn,
        ReportedLaneCountColumn,
        ReportedLinkRateColumn,
        ScalingColumn,
        TargetColumn,
        ConnectedColumn,
        ErrorColumn,
        ErrorTextColumn,
        ProductColumn,
        ModelinesColumn,
        ModelineIdColumn,
        PreferredModelineIdColumn,
        EdidColumn,
        OverrideEdidColumn,
        FileNameColumn,
        BackgroundColorColumn,
        MaxLinkRateColumn,
        PhyRepeaterCountColumn,
        PhyRepeaterModeColumn,
        SubconnectorColumn,
        FecColumn,
        DscColumn,
        ColumnCount
    };

    /// The stack that commands run through; null sends nothing.
    explicit OutputModel(QUndoStack* stack, QObject* parent = nullptr);
    ~OutputModel() override;

    void setChannel(std::shared_ptr<GUIChannel> channel);
    void setProgramMapping(std::shared_ptr<GUIMapping> mapping);
    void setPreviewMapping(std::shared_ptr<GUIMapping> mapping);
    void setOutput(std::shared_ptr<GUIOutput> output);
    void setModelines(Modelines modelines);

    /// The mapping that drives this output; null for none.
    std::shared_ptr<GUIMapping> getMapping() const;
    /// Calls a method of a scene object. text: what the undo history would call it. False when it did not go
    /// out, which the operator is told.
    bool sendCommand(Object* object, const QString& method, const QString& text, const VariantMap& args);
    void sendScaling(const QString& mode);
    void sendBackgroundColor(const QColor& color);
    bool mixesLight() const;
    void sendMixesLight(bool on);
    /// "preview" or "program_rgb": swaps the two outputs, where this one does not carry that already.
    void sendTarget(const QString& target);
    void sendModelineId(QString id, bool maxLinkRate);
    void sendEdidOverride(const QString& filename, const QString& edid, const QString& modelineId,
                          bool maxLinkRate);
    void resetEdid();

    /// Seconds until the mode goes back unless it is kept; 0 where none waits for that.
    int confirmSeconds() const;
    /// False when that did not go out.
    bool keepMode();
    bool revertMode();

    /// Of the real screen that this output is shown on.
    ScreenHealth screen() const;
    /// Whether its screen shows which output it is, while nothing is on program.
    bool isIdentified() const;
    void identify(bool on);

    /// Hz.
    static QString formatFieldFreq(double frequency);
    /// Hz, shown as kHz.
    static QString formatLineFreq(double frequency);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

Q_SIGNALS:
    /// This window has asked for another mode.
    void modeAsked();
    /// What was to be sent did not go out.
    void refused();
    /// screen() or isIdentified() is another one.
    void screenChanged();

public Q_SLOTS:
    void onReset();

private:
    void updateModelines();
    void followMapping(GUIMapping* before, GUIMapping* mapping);
    void sendToMapping(const QString& method, const QString& text, const VariantMap& args);
    bool sendToOutput(const QString& method, const QString& text, const VariantMap& args);
    QVariant timing(int column) const;
    QVariant status(int column) const;
    QVariant settings(int column) const;
    QString target() const;

    QUndoStack* m_stack;
    QTimer m_lookAgain; // who shows a wish of the operator's reads again what has come of it
    std::shared_ptr<GUIOutput> m_output;
    std::shared_ptr<GUIChannel> m_channel;
    std::shared_ptr<GUIMapping> m_previewMapping;
    std::shared_ptr<GUIMapping> m_programMapping;
    Modelines m_modelines;
    Modelines::element_type m_followed; // those of them whose changes are told
};

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::OutputModel::Modelines)

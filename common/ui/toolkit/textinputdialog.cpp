#include "common/ui/toolkit/textinputdialog.h"

#include "common/ui/toolkit/ztedit.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QVBoxLayout>

#include <algorithm>

namespace vantrel {

TextInputDialog::TextInputDialog(QWidget* parent)
    : ZTDialog(parent)
{
    setAcceptText(tr("CREATE"));
    setObjectNames(QStringLiteral("TextInputDialog"));
    connect(this, &ZTDialog::confirmed, this, [this] { Q_EMIT valuesConfirmed(values()); });
    updateAccept();
}

TextInputDialog::TextInputDialog(const QString& title, const QString& label, const QString& confirmText,
                                 QWidget* parent)
    : TextInputDialog(parent)
{
    setTitle(title);
    setAcceptText(confirmText);
    addField(label);
}

ZTEdit* TextInputDialog::addField(const QString& label, const QString& text)
{
    auto* caption = new ZTLabel(label, this);
    caption->setStyleClass(QStringLiteral("caption"));
    auto* field = new ZTEdit(text, this);
    field->setAccessibleName(label);
    caption->setBuddy(field);
    auto* pair = new QVBoxLayout;
    pair->setSpacing(4);
    const auto makeNote = [this](const QString& style) {
        auto* note = new ZTLabel(this);
        note->setStyleClass(style);
        note->setWordWrap(true);
        note->hide();
        return note;
    };
    const Notes notes{makeNote(QStringLiteral("caption")), makeNote(QStringLiteral("error"))};
    m_notes.append(notes);
    for (QWidget* part : std::initializer_list<QWidget*>{caption, field, notes.help, notes.error})
        pair->addWidget(part);
    contentLayout()->addLayout(pair);
    m_fields.append(field);
    connect(field, &ZTEdit::textChanged, this, &TextInputDialog::updateAccept);
    setObjectNames(objectName());
    updateAccept();
    return field;
}

QStringList TextInputDialog::values() const
{
    QStringList texts;
    for (const ZTEdit* field : m_fields)
        texts.append(field->text().trimmed());
    return texts;
}

void TextInputDialog::setValue(int field, const QString& text)
{
    if (field >= 0 && field < m_fields.size())
        m_fields[field]->setText(text);
}

void TextInputDialog::setHelp(int field, const QString& text)
{
    m_notes[field].help->setText(text);
    m_notes[field].help->setVisible(!text.isEmpty());
}

void TextInputDialog::setError(int field, const QString& text)
{
    m_notes[field].error->setText(text);
    m_notes[field].error->setVisible(!text.isEmpty());
    if (isVisible())
        fitToContent();
}

void TextInputDialog::setObjectNames(const QString& base)
{
    ZTDialog::setObjectNames(base);
    for (qsizetype i = 0; i < m_fields.size(); ++i) {
        m_fields[i]->setObjectName(QStringLiteral("%1-input-%2").arg(base).arg(i));
        m_notes[i].error->setObjectName(m_fields[i]->objectName() + QStringLiteral("-error"));
    }
}

void TextInputDialog::showEvent(QShowEvent* event)
{
    ZTDialog::showEvent(event);
    if (!m_fields.isEmpty()) {
        m_fields.first()->setFocus();
        m_fields.first()->selectAll();
    }
}

void TextInputDialog::updateAccept()
{
    setAcceptEnabled(!m_fields.isEmpty() && std::ranges::none_of(m_fields, [](const ZTEdit* field) {
        return field->text().trimmed().isEmpty();
    }));
}

} // namespace vantrel

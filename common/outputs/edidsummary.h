#pragma once

#include <QList>
#include <QString>

namespace vantrel {

/// One thing that an EDID says, in words.
struct EdidFact
{
    QString title;
    QString text;
    QString details; // for a tooltip; plain text, of several lines
};

/// What an EDID says of its display: who made it, which one it is, what it shows and plays. edid: hexadecimal
/// digits. Of a text that is no EDID the one fact is why; none of an empty text.
QList<EdidFact> edidSummary(const QString& edid);

/// The maker by the three letters that an EDID has for it ("Dell Inc."), as far as this machine has the list
/// of them; else the letters.
QString makerName(const QString& letters);

} // namespace vantrel

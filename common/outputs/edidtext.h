#pragma once

#include <QString>

namespace vantrel {

/// An EDID as text: hexadecimal digits in upper case, without what separates them.
QString cleanEdid(const QString& text);
/// Whether the text holds anything that is no hexadecimal digit, and so is not text but an EDID's own bytes.
bool isEdidBinary(const QString& text);
/// Whether the text begins as an EDID does, is as long as half blocks of 64 bytes are, and sums up to 0. What
/// is wrong is a warning in the log.
bool isValidEdid(const QString& text);
/// The sum, modulo 256, of bytes written as hexadecimal numbers with blanks between them.
int calculateChecksum(const QString& text);
/// "00 FF FF": the bytes of an EDID in upper case with a blank between them.
QString spacedEdid(const QString& text);

} // namespace vantrel

#pragma once

#include <QString>

namespace vantrel {

// What the properties of a video output are to people. What is unknown is "--".

inline const QString unknownText = QStringLiteral("--");

/// The text itself, or "--" for an empty one.
QString textOrUnknown(const QString& text);
/// "1920 x 1080"; "--" where both are 0.
QString sizeText(int width, int height);
/// "+H -V", by the signs of the pulses; 0 says nothing of one.
QString polarityText(int horizontal, int vertical);
/// "24 bits (8 bpc)", of the bits of one colour channel.
QString colorDepthText(int bpc);
/// The rate of one lane, by the server's code of it.
QString formatLinkRate(int code);
/// "4 x 5.40 Gbps (HBR2)"; "--" unless both are known.
QString linkText(int lanes, int rate);

} // namespace vantrel

#include "common/media/address/showntext.h"

namespace vantrel {

QString shownText(QString text)
{
    text.removeIf([](QChar c) {
        const bool turnsDirection = (c >= QChar(0x202a) && c <= QChar(0x202e)) ||
                                    (c >= QChar(0x2066) && c <= QChar(0x2069)) || c == QChar(0x200e) ||
                                    c == QChar(0x200f) || c == QChar(0x061c);
        return turnsDirection || (c.category() == QChar::Other_Control && c != u'\t' && c != u'\n');
    });
    text.replace(u'\n', u' ').replace(u'\t', u' ');
    return text;
}

} // namespace vantrel

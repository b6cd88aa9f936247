#pragma once

#include "ZelMain/Diagnostics/LocalClock.h"

#include <QString>

namespace PkLogger {

/**
 * Prints moments in one QDateTime::toString() pattern.
 *
 * Qt takes 0.6 µs for a text, so the text of a base is kept for the moments that share it.
 */
class TimeText
{
public:
    /** "21 Nov 2026 10:21:45.123". No constant, since one of another source file is made of it. */
    static QString defaultFormat();

    /** @param format  empty for the default one. */
    explicit TimeText(const QString& format = QString());

    /**
     * Whether the moments given to textOf() must have no extra milliseconds: a pattern that shows
     * milliseconds anywhere but at the end of the default one is left to Qt alone.
     */
    bool needsExactMoments() const { return m_showsMs && !m_endsInMs; }

    /** Valid until the next call. */
    const QString& textOf(const LocalMoment& moment);

private:
    QString m_format;
    bool m_showsMs;
    bool m_endsInMs;
    QDateTime m_base;
    QString m_text;
    ushort m_zeroDigit = 0; // the last digit of the base's milliseconds, in the locale's script
};

} // namespace PkLogger

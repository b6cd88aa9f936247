#include "ZelMain/Diagnostics/TimeText.h"

namespace PkLogger {

QString TimeText::defaultFormat()
{
    return QStringLiteral("dd MMM yyyy hh:mm:ss.zzz");
}

TimeText::TimeText(const QString& format)
    : m_format(format.isEmpty() ? defaultFormat() : format), m_showsMs(m_format.contains('z')),
      m_endsInMs(m_format == defaultFormat())
{
}

const QString& TimeText::textOf(const LocalMoment& moment)
{
    if (m_text.isEmpty() || moment.base != m_base) {
        m_base = moment.base;
        m_text = m_base.toString(m_format);
        m_zeroDigit = m_text.isEmpty() ? 0 : m_text.back().unicode();
    }
    // A base with extra milliseconds stands at a whole hundredth of a second, so its last digit is
    // the zero of the locale's digits, which stand side by side in Unicode.
    if (m_endsInMs && !m_text.isEmpty()) {
        m_text.back() = QChar(static_cast<ushort>(m_zeroDigit + moment.extraMs));
    }
    return m_text;
}

} // namespace PkLogger

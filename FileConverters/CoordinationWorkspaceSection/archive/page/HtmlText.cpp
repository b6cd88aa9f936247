#include "FileConverters/CoordinationWorkspaceSection/archive/page/HtmlText.h"

namespace {

constexpr uint ZERO_WIDTH_NON_JOINER = 0x200C;
constexpr uint ZERO_WIDTH_JOINER = 0x200D;
constexpr uint BRACKET = 0x27E8; // that begins a number
constexpr int HEXADECIMAL = 16;
constexpr int LEAST_DIGITS = 4;

bool isShown(uint character)
{
    if (character == ZERO_WIDTH_NON_JOINER || character == ZERO_WIDTH_JOINER) {
        return true;
    }
    if (character == BRACKET) {
        return false;
    }
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_Surrogate:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return false;
    default:
        return !QChar::isNonCharacter(character);
    }
}

QString numberOf(uint character)
{
    return QStringLiteral("⟨U+%1⟩").arg(QString::number(character, HEXADECIMAL).toUpper(),
                                        LEAST_DIGITS, QLatin1Char('0'));
}

// A lone surrogate is handed out as it stands.
uint characterAt(const QString& text, int position)
{
    const QChar first = text[position];
    const bool isPair = first.isHighSurrogate() && position + 1 < text.size() &&
                        text[position + 1].isLowSurrogate();
    return isPair ? QChar::surrogateToUcs4(first, text[position + 1]) : first.unicode();
}

void append(uint character, QString& html)
{
    switch (character) {
    case '&':
        html += QLatin1String("&amp;");
        return;
    case '<':
        html += QLatin1String("&lt;");
        return;
    case '>':
        html += QLatin1String("&gt;");
        return;
    case '"':
        html += QLatin1String("&quot;");
        return;
    case '\'':
        html += QLatin1String("&#39;");
        return;
    default:
        html += isShown(character) ? QString::fromUcs4(&character, 1) : numberOf(character);
    }
}

} // namespace

QByteArray HtmlText::escaped(const QString& text)
{
    QString html;
    html.reserve(text.size());
    for (int i = 0; i < text.size();) {
        const uint character = characterAt(text, i);
        append(character, html);
        i += QChar::requiresSurrogates(character) ? 2 : 1;
    }
    return html.toUtf8();
}

QByteArray HtmlText::escaped(const QString& text, int most)
{
    if (text.size() <= most) {
        return escaped(text);
    }
    const int end =
        text[most].isLowSurrogate() && text[most - 1].isHighSurrogate() ? most - 1 : most;
    return escaped(text.left(end)) + "…";
}

#include "FileConverters/CoordinationWorkspaceSection/inspect/TextLayout.h"

#include <utf8proc.h>

#include <algorithm>

namespace {

constexpr int SHOWN_CHARACTERS = 40;

bool turnsDirection(QChar character)
{
    return (character >= QChar(0x202A) && character <= QChar(0x202E)) ||
           (character >= QChar(0x2066) && character <= QChar(0x2069));
}

QString padded(const QString& cell, int width, TextLayout::Alignment alignment)
{
    const QString blanks(width - TextLayout::columnsOf(cell), QLatin1Char(' '));
    return alignment == TextLayout::LEFT ? cell + blanks : blanks + cell;
}

void trimEnd(QString& line)
{
    while (line.endsWith(QLatin1Char(' '))) {
        line.chop(1);
    }
}

} // namespace

int TextLayout::columnsOf(const QString& text)
{
    const QVector<uint> characters = text.toUcs4();
    int columns = 0;
    for (const uint character : characters) {
        columns += utf8proc_charwidth(static_cast<utf8proc_int32_t>(character));
    }
    return columns;
}

QString TextLayout::printable(const QString& text)
{
    QString shown = text;
    for (QChar& character : shown) {
        if (character.category() == QChar::Other_Control || turnsDirection(character)) {
            character = QChar(QChar::ReplacementCharacter);
        }
    }
    return shown;
}

QString TextLayout::quoted(const QString& value)
{
    QString shown = value.left(SHOWN_CHARACTERS);
    if (!shown.isEmpty() && shown.at(shown.size() - 1).isHighSurrogate()) {
        shown.chop(1);
    }
    for (QChar& character : shown) {
        if (character.category() == QChar::Other_Control) {
            character = QLatin1Char(' ');
        }
    }
    const QString cut = value.size() > SHOWN_CHARACTERS ? QStringLiteral("...") : QString();
    return QStringLiteral("\"%1%2\"").arg(shown, cut);
}

QStringList TextLayout::table(const QVector<QStringList>& rows,
                              const QVector<Alignment>& alignments)
{
    QVector<int> widths(alignments.size());
    for (const QStringList& row : rows) {
        for (int i = 0; i < widths.size(); ++i) {
            widths[i] = std::max(widths[i], columnsOf(row[i]));
        }
    }
    QStringList lines;
    for (const QStringList& row : rows) {
        QStringList cells;
        for (int i = 0; i < widths.size(); ++i) {
            cells.append(padded(row[i], widths[i], alignments[i]));
        }
        QString line = cells.join(QStringLiteral("  "));
        trimEnd(line);
        lines.append(line);
    }
    return lines;
}

#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/** Text for people, in sentences and in the columns of a terminal. */
namespace TextLayout {

/** The columns that a text takes: wide characters take two, combining ones none. */
int columnsOf(const QString& text);

/**
 * The text without what would move a terminal's cursor or turn the direction of writing: control
 * characters and the explicit directional formatting characters of UAX #9 become U+FFFD.
 */
QString printable(const QString& text);

/** The value in quotation marks, cut after forty characters, control characters replaced. */
QString quoted(const QString& value);

/** How a column of a table is aligned. */
enum Alignment { LEFT, RIGHT };

/**
 * The rows as lines of aligned columns, two blanks apart, without blanks at their ends.
 *
 * @param alignments  one for each column; every row has as many cells.
 */
QStringList table(const QVector<QStringList>& rows, const QVector<Alignment>& alignments);

} // namespace TextLayout

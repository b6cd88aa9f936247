#pragma once

#include <QString>

#include <iosfwd>
#include <optional>
#include <vector>

class QFile;

/**
 * The text of a document as the converter parses it, and where its lines began.
 *
 * On standard input the converter joins lines with nothing between them; lines are counted here as
 * the author of the document sees them all the same. Lines end at a line feed, a carriage return,
 * or the two together, and count from 1.
 */
class DocumentText
{
public:
    /** The text of a file; none when it cannot be read. The file is opened once. */
    static std::optional<DocumentText> ofFile(const QString& path);

    /** The joined lines of a stream of UTF-8; none when it fails before its end. */
    static std::optional<DocumentText> ofStream(std::istream& stream);

    /** The joined lines of a file of UTF-8; none when it cannot be read. */
    static std::optional<DocumentText> ofFileAsStream(const QString& path);

    /**
     * What the converter wrote, from an open file: UTF-8, whatever it declares. None when it cannot
     * be read to its end or is no UTF-8.
     */
    static std::optional<DocumentText> ofOutput(QFile& file);

    /** What is parsed. */
    const QString& text() const { return m_text; }

    /** Whether lines were joined. */
    bool isJoined() const { return m_isJoined; }

    /** The text with the line feeds that joining dropped. */
    QString withLineFeeds() const;

    /**
     * The position in text() of a place that Qt's parser tells, by its own count of lines and
     * columns. Past the end it is the end.
     */
    int positionOf(int parserLine, int parserColumn) const;

    /** The line of the original text that a position in text() belongs to. */
    int lineOf(int position) const;

private:
    DocumentText(QString text, std::vector<int> joinedLineStarts);

    QString m_text;
    bool m_isJoined;
    std::vector<int> m_joinedLineStarts; // empty when nothing was joined
    std::vector<int> m_parserLineStarts; // as Qt's parser counts lines in m_text
    std::vector<int> m_lineStarts;       // as the author counts them; sorted, may repeat
};

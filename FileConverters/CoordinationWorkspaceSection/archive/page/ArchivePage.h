#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/report/ArchiveReport.h"

#include <QByteArray>
#include <QDateTime>
#include <QSet>
#include <QString>

#include <array>
#include <cstddef>

class QIODevice;

/** What a page tells of one run. */
struct ArchivePageContent
{
    QString source;
    QString target;
    QString version; ///< of the program
    QString summary; ///< what the run has said at its end
    QDateTime ended;
    bool isTrial = false;
    ArchiveReport::Records records;
    QSet<QString> gone; ///< those of the records whose documents are in the archive no more
};

/**
 * A report as one page for people: HTML5 that is well-formed XML as well.
 *
 * The page loads nothing and says so to the browser (Content Security Policy Level 3): its only
 * style and its only script are the ones whose hashes it names. All that comes from documents and
 * names of files stands in it as text (HtmlText). Its script only sorts and filters; without it
 * the page is read and printed all the same.
 *
 * Work and size grow with the number of records. Of the systems whose spacings change a page shows
 * so many at most; the report has them all.
 */
class ArchivePage
{
public:
    static constexpr int MOST_SYSTEMS_A_DOCUMENT = 200;
    static constexpr int MOST_SYSTEMS = 20000;

    /** Whether the file is such a page, empty, or not there. Its folder does not matter. */
    static bool mayStandIn(const QString& file);

    /**
     * Puts the page in the place of the file, which is the former one until the page is whole.
     *
     * @return false, with errno set, when it failed.
     */
    static bool replace(const QString& file, const ArchivePageContent& content);

    /** Writes the page. @return whether the device took every byte. */
    static bool write(const ArchivePageContent& content, QIODevice& device);

private:
    ArchivePage(const ArchivePageContent& content, QIODevice& device);

    void countAll();
    void addHead();
    void addFacts();
    void addChart();
    void addControls();
    void addDocuments();
    void flush();

    const ArchivePageContent& m_content;
    QIODevice& m_device;
    QByteArray m_html; // that is not written yet
    bool m_isGood = true;
    std::array<int, 8> m_counts{}; // by ArchivePageRow::Kind
    qint64 m_bytesBefore = 0;
    qint64 m_bytesAfter = 0;
    qint64 m_losses = 0;
    qint64 m_systems = 0;
    int m_verified = 0;
};

#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/files/AtomicFile.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ArchivePlan.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/report/DocumentRecord.h"

#include <QDeadlineTimer>

#include <memory>

#include <sys/stat.h>

class BoundedServer;

/**
 * The work on one document of an archive: hash, inspect, convert, verify, write.
 *
 * What reads the document as XML runs in other processes, within the document's limits.
 */
class DocumentJob
{
public:
    /** @param settings, reader  must outlive this. */
    DocumentJob(const ArchiveSettings& settings, const PlannedDocument& document,
                BoundedServer& reader);

    /** What the reader of documents does with a request, in its own process. */
    static QByteArray answerOfReader(const QByteArray& request);

    /**
     * Does all the work but the last steps, which are to sync the output and to name it.
     *
     * @throws std::system_error when the system makes no process or pipe.
     */
    void run();

    /**
     * Takes over what another machine has done, instead of running.
     *
     * @param told    what it tells of the document.
     * @param output  the file that came back; empty when there is none. May be moved.
     * @return whether the document and the output are what was told. Otherwise nothing is known of
     * the document, and it still is to be converted.
     */
    bool accept(const DocumentRecord& told, const QString& output);

    /** Syncs the output, where there is one. May be called beside others of other documents. */
    void sync();

    /** Gives the output its name, where there is one. Its folder still has to be synced. */
    void commit();

    const DocumentRecord& record() const { return m_record; }

    /** The folder of the output; empty when there is none. */
    QString outputFolder() const { return m_output ? m_output->folder() : QString(); }

    /**
     * What the record tells when the output has its name, and its folder could not be synced; by
     * errno. What stands is the run's own still.
     */
    void failToSyncFolder();

private:
    void failToWrite();
    bool identify();
    bool inspect();
    std::optional<QByteArray> askReader(const QByteArray& request);
    bool write();
    bool beginOutput();
    bool finishOutput();
    bool moveInto(const AtomicFile& output, const QString& file);
    bool convertInto(const AtomicFile& output);
    bool copyInto(const AtomicFile& output);
    bool verify(const AtomicFile& output);
    bool isUnchanged();
    ProcessLimits remainingLimits() const;
    bool end(DocumentRecord::Outcome outcome, const char* reason, const QString& text);

    const ArchiveSettings& m_settings;
    const PlannedDocument m_document;
    const QString m_source;
    BoundedServer& m_reader;
    struct stat m_sourceBefore = {};
    ProcessLimits m_limits;
    QDeadlineTimer m_deadline;
    DocumentRecord m_record;
    std::unique_ptr<AtomicFile> m_output;
};

#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ArchivePlan.h"

#include <QHash>

#include <map>

/**
 * What other machines are handed: for each job a parcel, a folder that has a number for its name.
 *
 *     1/plan          what is to be done, all of it told from the plan's folder
 *     1/in/show.xml   a link to the document; what copies the parcel follows it
 *     1/out/show.xml  the output, once it came back
 *
 * A worker does a parcel where it stands, on whichever machine, and touches nothing outside of it.
 * Names of documents are in the plan and in folders only, so that no shell has to quote them.
 */
class ArchiveParcels
{
public:
    /**
     * @param settings  of the run; must outlive this.
     * @param folder    where parcels are packed; it is made, and removed with this.
     */
    ArchiveParcels(const ArchiveSettings& settings, QString folder);
    ~ArchiveParcels();
    ArchiveParcels(const ArchiveParcels&) = delete;
    ArchiveParcels& operator=(const ArchiveParcels&) = delete;

    const QString& folder() const { return m_folder; }

    /** Packs one more. @return where its documents stand in its plan; none, with errno set, when it
     * could not be packed. */
    std::optional<PlannedJob> pack(const std::vector<PlannedDocument>& documents);

    /** A document of a parcel that nothing is told of yet; null when it has no such document. */
    const PlannedDocument* find(int parcel, const QString& path) const;

    /**
     * Where the output of a document came back to: a file. Empty when there is none, whatever else
     * stands there.
     */
    QString output(int parcel, const QString& path) const;

    /** A document of the parcel is done with. The parcel goes with the last one. */
    void finish(int parcel, const QString& path);

    /** Removes a folder of parcels, wherever their links lead. */
    static void remove(const QString& folder);

    /** Why the worker of this version may not do a plan; empty when it may. */
    static QString objection(const ArchiveSettings& settings);

    /**
     * Removes what runs that were cut off have left on this machine, a day ago or longer, of which
     * no worker is at work. Does nothing where GNU Parallel has not put the plan.
     *
     * @param plan  of the parcel that was brought here now.
     */
    static void sweepBeside(const QString& plan);

private:
    QString folderOf(int parcel) const;

    const ArchiveSettings& m_settings;
    const QString m_folder;
    int m_count = 0;
    std::map<int, QHash<QString, PlannedDocument>> m_untold; // by parcel and path
};

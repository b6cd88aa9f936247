#pragma once

#include <QString>

#include <memory>

/**
 * A file that stands whole or not at all.
 *
 * It is written under another name in the folder where it will stand, and renamed once. Until then
 * nothing of it shows under its own name; a file that is destroyed before is gone. What a killed
 * process leaves behind is told by its name.
 *
 * Operations answer false, with errno set, when they failed.
 */
class AtomicFile
{
public:
    /** Begins a file. @return null when the folder takes none. */
    static std::unique_ptr<AtomicFile> begin(const QString& folder, const QString& name);

    /**
     * Begins a file that one process at a time writes, where nothing sweeps: what a killed process
     * has left of it is taken over. @return null when the folder takes none.
     */
    static std::unique_ptr<AtomicFile> beginAlone(const QString& folder, const QString& name);

    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;
    ~AtomicFile();

    /** Where its bytes are written meanwhile. */
    const QString& partPath() const { return m_partPath; }

    const QString& folder() const { return m_folder; }

    /**
     * Gives it the permissions and the time of modification of another file. It still has to be
     * synced.
     */
    bool finishLike(const QString& original);

    bool sync() const;

    /** Gives it the permissions that a new file has, and syncs it. */
    bool finish();

    /**
     * Gives it its name. The folder still has to be synced.
     *
     * @param mayReplace  otherwise it fails with EEXIST where something has that name.
     */
    bool commit(bool mayReplace);

    /** Whether the name is one of a file that was never finished. */
    static bool isPart(const QString& name);

private:
    AtomicFile(QString folder, QString name, QString partPath);

    QString m_folder;
    QString m_name;
    QString m_partPath; // empty when there is none any more
};

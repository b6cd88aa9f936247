#pragma once

#include <QSettings>
#include <QString>

#pragma GCC visibility push(default) // what a shared library shows

namespace PkLogger {

/**
 * The settings of the application's log files, wherever they are kept.
 *
 * The two limits are numbers in the units of whoever writes the log files; here they are only kept.
 */
class FileOutDevConfigInterface
{
public:
    /** What the name of every log file contains. */
    virtual QString getBaseFileName() const = 0;
    /** The folder of the log files. */
    virtual QString getFolderName() const = 0;
    /** A text for whoever writes the log files; it is not stored. */
    virtual QString getBannerName() const = 0;
    virtual unsigned int getSizeLimit() const = 0;
    virtual unsigned int getTimeLimit() const = 0;
    virtual void rememberBaseFileName(QString name) = 0;
    virtual void rememberFolderName(QString folder) = 0;
    virtual void rememberSizeLimit(unsigned int limit) = 0;
    virtual void rememberTimeLimit(unsigned int limit) = 0;

    virtual ~FileOutDevConfigInterface() = default;

protected:
    FileOutDevConfigInterface() = default;
    FileOutDevConfigInterface(const FileOutDevConfigInterface&) = default;
    FileOutDevConfigInterface& operator=(const FileOutDevConfigInterface&) = default;
};

/**
 * The log-file settings in the user's QSettings, group "LogGroup", and the log folder of
 * DirectoryMemory.
 *
 * An application that has named itself to QCoreApplication, organisation and application both,
 * keeps them in its own settings; otherwise they stand in those of organisation "Velto" and
 * application "Zel6". The log folder always stands in the latter. Make an object where a value is
 * needed, use it on that thread and drop it; what it remembered is then on its way to the settings
 * file.
 */
class FileOutDevConfig : public FileOutDevConfigInterface
{
public:
    /** @param bannerName  given back by getBannerName. */
    explicit FileOutDevConfig(const QString& bannerName);
    ~FileOutDevConfig() override;
    Q_DISABLE_COPY_MOVE(FileOutDevConfig)

    /** The remembered name, else "ZelLogFile". */
    QString getBaseFileName() const override;
    /** The remembered folder if it still exists, else the default, which is made if missing. */
    QString getFolderName() const override;
    QString getBannerName() const override;
    /** The remembered number, else 16; 0 when the settings hold no number that fits. */
    unsigned int getSizeLimit() const override;
    /** The remembered number, else 8; 0 when the settings hold no number that fits. */
    unsigned int getTimeLimit() const override;
    void rememberBaseFileName(QString name) override;
    /** Remembers @p folder for every program of the family; an empty one is ignored. */
    void rememberFolderName(QString folder) override;
    void rememberSizeLimit(unsigned int limit) override;
    void rememberTimeLimit(unsigned int limit) override;

private:
    QString m_bannerName;
    QSettings m_settings; // within "LogGroup" for the object's whole life
};

} // namespace PkLogger

#pragma GCC visibility pop

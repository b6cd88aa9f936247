#pragma once

#include <QString>
#include <QVector>

#pragma GCC visibility push(default) // what a shared library shows

/**
 * The folders of the application family: a default under the user's home folder for each kind of
 * file, and the folder that was last used for it.
 *
 * What is remembered stands in the user's QSettings of organisation "Velto" and application "Zel6",
 * group "Recently Opened Directories", one text per kind. Each call opens these settings anew and
 * nothing is cached in between, so objects cost nothing and any number of them agree. May be used
 * from any thread and across processes, as far as QSettings keeps its file in step. Nothing throws.
 */
class DirectoryMemory
{
public:
    /**
     * The kinds of folders, each named after its settings key.
     *
     * Unsigned, so that a number that is no kind, a negative one included, is always past the last.
     */
    enum DirType : unsigned int {
        FrequencyPlots,
        AutosavedScans,
        ShowFiles,
        FWFiles,
        InventoryFiles,
        ExclusionFiles,
        CustomGroupFiles,
        EquipmentProfiles,
        LogFiles,
        AlertFiles,
        ShowImageFiles,
        ZelInstaller,
        Reports,
        EquipmentProfilesExport,
        AlertsLogs,
        CflEditImports,
        CustomUserGroupsFiles,
        CoordWorkspace,
        Presets_Files,
        Presets_Import,
        Presets_Export,
        Timeline,
        NETWORK_LOCK,
        RemoteAddresses,
        ConvertedDevices,
        InAppMessages,
        CrashReports,
        CustomCompatibilityProfiles,
    };

    /** What is known of one kind. */
    struct DirSettings
    {
        QString key;         ///< names the remembered folder within the settings group
        QString defaultPath; ///< appended to the home folder, so it starts with a slash
        bool fixed = false;  ///< the folder belongs to the software: SaveDir refuses to change it
    };

    /** Where the family's own folders lie below the home folder, with both slashes. */
    static const QString HOME_COMMON_SUBDIR;
    /** The desktop's folder below the home folder. */
    static const QString HOME_DESKTOP_SUBDIR;

    virtual ~DirectoryMemory() = default;

    /**
     * The default folder of @p type, without a slash at its end; made with its parents if missing.
     *
     * @return the home folder when the default cannot be made or @p type is no kind.
     */
    QString DefaultDir(DirType type) const;

    /**
     * The folder last used for @p type if it still exists, else DefaultDir.
     *
     * When nothing was remembered, the default is from then on. A remembered folder that is missing
     * stays remembered, since it may be on a drive that comes back.
     * @return the home folder when @p type is no kind.
     */
    QString RestoreDir(DirType type) const;

    /**
     * Remembers @p dir for @p type as it is given; whether it exists shows in RestoreDir.
     *
     * Nothing is stored for an empty @p dir or for a @p type that is no kind, nor for a fixed kind,
     * which is reported to Qt's debug messages.
     */
    void SaveDir(DirType type, const QString& dir) const;

private:
    static const QVector<DirSettings> m_Settings; // indexed by DirType
};

#pragma GCC visibility pop

#include "ZelMain/DirectoryMemory.h"

#include <QDebug>
#include <QDir>
#include <QSettings>

namespace {

const QString SETTINGS_ORGANISATION = QStringLiteral("Velto");
const QString SETTINGS_APPLICATION = QStringLiteral("Zel6");
const QString SETTINGS_GROUP = QStringLiteral("Recently Opened Directories");

} // namespace

// The table is made of these two, so they stand right before it: statics of one source file are
// made in their order.
const QString DirectoryMemory::HOME_COMMON_SUBDIR = QStringLiteral("/Documents/Velto/");
const QString DirectoryMemory::HOME_DESKTOP_SUBDIR = QStringLiteral("/Desktop");

const QVector<DirectoryMemory::DirSettings> DirectoryMemory::m_Settings = {
    {"FrequencyPlots", HOME_COMMON_SUBDIR + "Frequency Plots"},
    {"AutosavedScans", HOME_COMMON_SUBDIR + "Frequency Plots/Autosaved"},
    {"ShowFiles", HOME_COMMON_SUBDIR + "Show Files"},
    {"FWFiles", HOME_COMMON_SUBDIR + "Firmware"},
    {"InventoryFiles", HOME_COMMON_SUBDIR + "Inventory"},
    {"ExclusionFiles", HOME_COMMON_SUBDIR + "Exclusions"},
    {"CustomGroupFiles", HOME_COMMON_SUBDIR + "Custom Groups"},
    {"EquipmentProfiles", HOME_COMMON_SUBDIR + "Equipment Profiles", true},
    {"LogFiles", HOME_COMMON_SUBDIR + "LogFiles"},
    {"AlertFiles", HOME_COMMON_SUBDIR + "Alerts"},
    {"ShowImageFiles", HOME_COMMON_SUBDIR},
    {"ZelInstaller", HOME_COMMON_SUBDIR},
    {"Reports", HOME_COMMON_SUBDIR + "Report"}, // singular, unlike its key
    {"EquipmentProfilesExport", HOME_COMMON_SUBDIR + "Equipment Profiles"},
    {"AlertsLogs", HOME_COMMON_SUBDIR + "Alerts Logs"},
    {"CflEditImports", HOME_COMMON_SUBDIR + "Frequency Lists"},
    {"CustomUserGroupsFiles", HOME_COMMON_SUBDIR + "Custom User Groups"},
    {"CoordWorkspace", HOME_COMMON_SUBDIR + "Coordination Workspace"},
    {"Presets_Files", HOME_COMMON_SUBDIR + "Presets"},
    {"Presets_Import", HOME_DESKTOP_SUBDIR},
    {"Presets_Export", HOME_DESKTOP_SUBDIR},
    {"Timeline", HOME_COMMON_SUBDIR + "Timeline"},
    {"NETWORK_LOCK", HOME_COMMON_SUBDIR},
    {"RemoteAddresses", HOME_COMMON_SUBDIR + "Remote Addresses"},
    {"ConvertedDevices", HOME_COMMON_SUBDIR + "Converted Devices"},
    {"InAppMessages", HOME_COMMON_SUBDIR + "InApp Notifications"},
    {"CrashReports", HOME_COMMON_SUBDIR + "CrashReports", true},
    {"CustomCompatibilityProfiles", HOME_COMMON_SUBDIR + "Custom Compatibility Profiles"},
};

QString DirectoryMemory::DefaultDir(DirType type) const
{
    if (type > CustomCompatibilityProfiles) {
        return QDir::homePath();
    }
    const QString& path = m_Settings.at(static_cast<int>(type)).defaultPath;
    QString dir = QDir::homePath() + QDir::cleanPath(QDir::toNativeSeparators(path));
    if (!QDir(dir).exists() && !QDir::home().mkpath(dir)) {
        return QDir::homePath();
    }
    return dir;
}

QString DirectoryMemory::RestoreDir(DirType type) const
{
    if (type > CustomCompatibilityProfiles) {
        return QDir::homePath();
    }
    QSettings settings(SETTINGS_ORGANISATION, SETTINGS_APPLICATION);
    settings.beginGroup(SETTINGS_GROUP);
    QString remembered = settings.value(m_Settings.at(static_cast<int>(type)).key).toString();
    settings.endGroup();
    if (!remembered.isEmpty() && QDir(remembered).exists()) {
        return remembered;
    }
    QString dir = DefaultDir(type);
    if (remembered.isEmpty()) {
        SaveDir(type, dir);
    }
    return dir;
}

void DirectoryMemory::SaveDir(DirType type, const QString& dir) const
{
    // An empty folder for a fixed kind is reported as well.
    const DirSettings entry = m_Settings.value(static_cast<int>(type));
    if (entry.fixed) {
        qDebug() << "Attempt to update fixed directory" << entry.key << "to" << dir;
        return;
    }
    if (type > CustomCompatibilityProfiles || dir.isEmpty()) {
        return;
    }
    QSettings settings(SETTINGS_ORGANISATION, SETTINGS_APPLICATION);
    settings.beginGroup(SETTINGS_GROUP);
    settings.setValue(entry.key, dir);
    settings.endGroup();
}

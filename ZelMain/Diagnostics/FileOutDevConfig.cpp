#include "ZelMain/Diagnostics/FileOutDevConfig.h"

#include "ZelMain/DirectoryMemory.h"

#include <QCoreApplication>

namespace PkLogger {

namespace {

const QString SETTINGS_GROUP = QStringLiteral("LogGroup");
const QString BASE_NAME_KEY = QStringLiteral("LogBaseName");
const QString SIZE_LIMIT_KEY = QStringLiteral("LogFileMaxSize");
const QString TIME_LIMIT_KEY = QStringLiteral("LogFileMaxTime");

const QString DEFAULT_BASE_NAME = QStringLiteral("ZelLogFile");
constexpr unsigned int DEFAULT_SIZE_LIMIT = 16;
constexpr unsigned int DEFAULT_TIME_LIMIT = 8;

/** The settings of the running application, those of the family when it has not named itself. */
QSettings applicationSettings()
{
    // Qt names an application after its file by itself, so the organisation tells who did.
    const bool isNamed = !QCoreApplication::organizationName().isEmpty() &&
                         !QCoreApplication::applicationName().isEmpty();
    return isNamed ? QSettings() : QSettings("Velto", "Zel6");
}

} // namespace

FileOutDevConfig::FileOutDevConfig(const QString& bannerName)
    : m_bannerName(bannerName), m_settings(applicationSettings())
{
    m_settings.beginGroup(SETTINGS_GROUP);
}

FileOutDevConfig::~FileOutDevConfig()
{
    m_settings.endGroup();
}

QString FileOutDevConfig::getBaseFileName() const
{
    return m_settings.value(BASE_NAME_KEY, DEFAULT_BASE_NAME).toString();
}

QString FileOutDevConfig::getFolderName() const
{
    return DirectoryMemory().RestoreDir(DirectoryMemory::LogFiles);
}

QString FileOutDevConfig::getBannerName() const
{
    return m_bannerName;
}

unsigned int FileOutDevConfig::getSizeLimit() const
{
    return m_settings.value(SIZE_LIMIT_KEY, DEFAULT_SIZE_LIMIT).toUInt();
}

unsigned int FileOutDevConfig::getTimeLimit() const
{
    return m_settings.value(TIME_LIMIT_KEY, DEFAULT_TIME_LIMIT).toUInt();
}

void FileOutDevConfig::rememberBaseFileName(QString name)
{
    m_settings.setValue(BASE_NAME_KEY, name);
}

void FileOutDevConfig::rememberFolderName(QString folder)
{
    DirectoryMemory().SaveDir(DirectoryMemory::LogFiles, folder);
}

void FileOutDevConfig::rememberSizeLimit(unsigned int limit)
{
    m_settings.setValue(SIZE_LIMIT_KEY, limit);
}

void FileOutDevConfig::rememberTimeLimit(unsigned int limit)
{
    m_settings.setValue(TIME_LIMIT_KEY, limit);
}

} // namespace PkLogger

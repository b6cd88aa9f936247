#include "ZelMain/Diagnostics/LogServiceUsers.h"

namespace PkLogger::LoggerUsers {

// The lists below are made of the names, so the names stand first.
const QString LOGUSER_ACNMODEL = QStringLiteral("ACNMODEL       ");
const QString LOGUSER_DEVICEMODEL = QStringLiteral("DEVICEMODEL    ");
const QString LOGUSER_ACNSTACK = QStringLiteral("ACNSTACK       ");
const QString LOGUSER_ACNTRANSTHREAD = QStringLiteral("ACNTRTHREAD    ");
const QString LOGUSER_ACNTRANS = QStringLiteral("ACNTRANS       ");
const QString LOGUSER_SCANINTERACTOR = QStringLiteral("SCAN_INTER     ");
const QString LOGUSER_ZONEMANAGEMENT = QStringLiteral("ZONEMANAGEMENT ");
const QString LOGUSER_DEVICEMODEL2 = QStringLiteral("DEVICEMODEL2   ");
const QString LOGUSER_DEVICE_DISCOVERY = QStringLiteral("DEVICEDISCOVER ");
const QString LOGUSER_DEVICE_MERGE = QStringLiteral("DEVICEMERGE    ");
const QString LOGUSER_DEVICE_PROPERTY_UPDATE = QStringLiteral("DEVICEPROPUPD  ");
const QString LOGUSER_IMPORT_EXPORT = QStringLiteral("IMPORT_EXPORT  ");
const QString LOGUSER_DATABASE = QStringLiteral("DATABASE       ");
const QString LOGUSER_SYSTEM_OS = QStringLiteral("SYSTEM_OS      ");
const QString LOGUSER_CRASH_REPORTS = QStringLiteral("CRASHREPORTS   ");
const QString LOGUSER_TIMELINE = QStringLiteral("TIMELINE       ");
const QString LOGUSER_PROCESS_MANAGEMENT = QStringLiteral("PROCMGMT       ");
const QString LOGUSER_ANALYTICS_AGENTS = QStringLiteral("ANALYTICSAGENTS");
const QString LOGUSER_CWS = QStringLiteral("CWS            ");
const QString LOGUSER_PLOTS = QStringLiteral("PLOTS          ");
const QString LOGUSER_PROP_DRIVEN_FILE_TRANSFER = QStringLiteral("PROP_FILETRANSFER          ");
const QString LOGUSER_ALERTS = QStringLiteral("ALERTS");

const QString LOGUSER_ALERTS_DTFORMAT = QStringLiteral("dd MMM yyyy hh:mm:ss");

const QStringList m_commonLogUsersList = {
    LOGUSER_ACNMODEL,
    LOGUSER_DEVICEMODEL,
    LOGUSER_ACNSTACK,
    LOGUSER_ACNTRANSTHREAD,
    LOGUSER_ACNTRANS,
    LOGUSER_SCANINTERACTOR,
    LOGUSER_ZONEMANAGEMENT,
    LOGUSER_DEVICEMODEL2,
    LOGUSER_DEVICE_DISCOVERY,
    LOGUSER_DEVICE_MERGE,
    LOGUSER_DEVICE_PROPERTY_UPDATE,
    LOGUSER_IMPORT_EXPORT,
    LOGUSER_DATABASE,
    // The crash reports come first here, unlike above: readers of the list depend on its order.
    LOGUSER_CRASH_REPORTS,
    LOGUSER_SYSTEM_OS,
    LOGUSER_TIMELINE,
    LOGUSER_PROCESS_MANAGEMENT,
    LOGUSER_ANALYTICS_AGENTS,
    LOGUSER_CWS,
    LOGUSER_PLOTS,
    LOGUSER_PROP_DRIVEN_FILE_TRANSFER,
};
const QStringList m_userLogUsersList = {LOGUSER_ALERTS};
const QStringList m_userLogDateTimeFormatList = {LOGUSER_ALERTS_DTFORMAT};

} // namespace PkLogger::LoggerUsers

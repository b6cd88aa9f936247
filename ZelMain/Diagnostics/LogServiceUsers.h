#pragma once

#include <QString>
#include <QStringList>

#pragma GCC visibility push(default) // what a shared library shows

/**
 * The names under which the library's parts log, so that all that logs for one area shares one
 * user: one handle and one switch.
 *
 * The blanks that pad a name are part of it: they take part in every comparison and stand in the
 * log lines, where they align the columns. Names and lists are made when the program loads, never
 * change, and may be read from any thread.
 */
namespace PkLogger::LoggerUsers {

extern const QString LOGUSER_ACNMODEL;
extern const QString LOGUSER_DEVICEMODEL;
extern const QString LOGUSER_ACNSTACK;
extern const QString LOGUSER_ACNTRANSTHREAD;
extern const QString LOGUSER_ACNTRANS;
extern const QString LOGUSER_SCANINTERACTOR;
extern const QString LOGUSER_ZONEMANAGEMENT;
extern const QString LOGUSER_DEVICEMODEL2;
extern const QString LOGUSER_DEVICE_DISCOVERY;
extern const QString LOGUSER_DEVICE_MERGE;
extern const QString LOGUSER_DEVICE_PROPERTY_UPDATE;
extern const QString LOGUSER_IMPORT_EXPORT;
extern const QString LOGUSER_DATABASE;
extern const QString LOGUSER_SYSTEM_OS;
extern const QString LOGUSER_CRASH_REPORTS;
extern const QString LOGUSER_TIMELINE;
extern const QString LOGUSER_PROCESS_MANAGEMENT;
extern const QString LOGUSER_ANALYTICS_AGENTS;
extern const QString LOGUSER_CWS;
extern const QString LOGUSER_PLOTS;
/** Padded to 27 characters, all before it to 15. */
extern const QString LOGUSER_PROP_DRIVEN_FILE_TRANSFER;
/** Not padded: its lines go to a device of their own. */
extern const QString LOGUSER_ALERTS;

/** The time format of the alert user's lines, without milliseconds. */
extern const QString LOGUSER_ALERTS_DTFORMAT;

/** The users that write to the service's common output devices. */
extern const QStringList m_commonLogUsersList;
/** The users that are given an output device and a time format of their own. */
extern const QStringList m_userLogUsersList;
/** The time format of each user of m_userLogUsersList, at the same index. */
extern const QStringList m_userLogDateTimeFormatList;

} // namespace PkLogger::LoggerUsers

#pragma GCC visibility pop

#include "ZelMain/Diagnostics/LogServiceUsers.h"

#include <QtTest>

using namespace PkLogger::LoggerUsers;

class LogServiceUsersTest : public QObject
{
    Q_OBJECT

private slots:
    void nameIsPaddedWithBlanks_data();
    void nameIsPaddedWithBlanks();
    void alertsHaveTheirTimeFormat();
    void commonUsersStandInTheirOrder();
    void commonUsersKeepTheirPadding();
    void crashReportsComeFourteenth();
    void ownDeviceUsersAreTheAlerts();
};

void LogServiceUsersTest::nameIsPaddedWithBlanks_data()
{
    QTest::addColumn<QString>("constant");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("length");
    QTest::newRow("ACNMODEL") << LOGUSER_ACNMODEL << "ACNMODEL" << 15;
    QTest::newRow("DEVICEMODEL") << LOGUSER_DEVICEMODEL << "DEVICEMODEL" << 15;
    QTest::newRow("ACNSTACK") << LOGUSER_ACNSTACK << "ACNSTACK" << 15;
    QTest::newRow("ACNTRTHREAD") << LOGUSER_ACNTRANSTHREAD << "ACNTRTHREAD" << 15;
    QTest::newRow("ACNTRANS") << LOGUSER_ACNTRANS << "ACNTRANS" << 15;
    QTest::newRow("SCAN_INTER") << LOGUSER_SCANINTERACTOR << "SCAN_INTER" << 15;
    QTest::newRow("ZONEMANAGEMENT") << LOGUSER_ZONEMANAGEMENT << "ZONEMANAGEMENT" << 15;
    QTest::newRow("DEVICEMODEL2") << LOGUSER_DEVICEMODEL2 << "DEVICEMODEL2" << 15;
    QTest::newRow("DEVICEDISCOVER") << LOGUSER_DEVICE_DISCOVERY << "DEVICEDISCOVER" << 15;
    QTest::newRow("DEVICEMERGE") << LOGUSER_DEVICE_MERGE << "DEVICEMERGE" << 15;
    QTest::newRow("DEVICEPROPUPD") << LOGUSER_DEVICE_PROPERTY_UPDATE << "DEVICEPROPUPD" << 15;
    QTest::newRow("IMPORT_EXPORT") << LOGUSER_IMPORT_EXPORT << "IMPORT_EXPORT" << 15;
    QTest::newRow("DATABASE") << LOGUSER_DATABASE << "DATABASE" << 15;
    QTest::newRow("SYSTEM_OS") << LOGUSER_SYSTEM_OS << "SYSTEM_OS" << 15;
    QTest::newRow("CRASHREPORTS") << LOGUSER_CRASH_REPORTS << "CRASHREPORTS" << 15;
    QTest::newRow("TIMELINE") << LOGUSER_TIMELINE << "TIMELINE" << 15;
    QTest::newRow("PROCMGMT") << LOGUSER_PROCESS_MANAGEMENT << "PROCMGMT" << 15;
    QTest::newRow("ANALYTICSAGENTS") << LOGUSER_ANALYTICS_AGENTS << "ANALYTICSAGENTS" << 15;
    QTest::newRow("CWS") << LOGUSER_CWS << "CWS" << 15;
    QTest::newRow("PLOTS") << LOGUSER_PLOTS << "PLOTS" << 15;
    QTest::newRow("PROP_FILETRANSFER")
        << LOGUSER_PROP_DRIVEN_FILE_TRANSFER << "PROP_FILETRANSFER" << 27;
    QTest::newRow("ALERTS") << LOGUSER_ALERTS << "ALERTS" << 6;
}

void LogServiceUsersTest::nameIsPaddedWithBlanks()
{
    QFETCH(QString, constant);
    QFETCH(QString, name);
    QFETCH(int, length);
    QCOMPARE(constant, name.leftJustified(length));
    QCOMPARE(constant.size(), length);
}

void LogServiceUsersTest::alertsHaveTheirTimeFormat()
{
    QCOMPARE(LOGUSER_ALERTS_DTFORMAT, QStringLiteral("dd MMM yyyy hh:mm:ss"));
}

void LogServiceUsersTest::commonUsersStandInTheirOrder()
{
    const QStringList expected = {"ACNMODEL",
                                  "DEVICEMODEL",
                                  "ACNSTACK",
                                  "ACNTRTHREAD",
                                  "ACNTRANS",
                                  "SCAN_INTER",
                                  "ZONEMANAGEMENT",
                                  "DEVICEMODEL2",
                                  "DEVICEDISCOVER",
                                  "DEVICEMERGE",
                                  "DEVICEPROPUPD",
                                  "IMPORT_EXPORT",
                                  "DATABASE",
                                  "CRASHREPORTS",
                                  "SYSTEM_OS",
                                  "TIMELINE",
                                  "PROCMGMT",
                                  "ANALYTICSAGENTS",
                                  "CWS",
                                  "PLOTS",
                                  "PROP_FILETRANSFER"};
    QStringList names;
    for (const QString& name : m_commonLogUsersList) {
        names += name.trimmed();
    }
    QCOMPARE(names, expected);
}

void LogServiceUsersTest::commonUsersKeepTheirPadding()
{
    QCOMPARE(m_commonLogUsersList.size(), 21);
    QCOMPARE(m_commonLogUsersList.last().size(), 27);
    for (int index = 0; index < 20; ++index) {
        QCOMPARE(m_commonLogUsersList.at(index).size(), 15);
    }
}

void LogServiceUsersTest::crashReportsComeFourteenth()
{
    QCOMPARE(m_commonLogUsersList.at(13), LOGUSER_CRASH_REPORTS);
    QCOMPARE(m_commonLogUsersList.at(14), LOGUSER_SYSTEM_OS);
}

void LogServiceUsersTest::ownDeviceUsersAreTheAlerts()
{
    QCOMPARE(m_userLogUsersList, QStringList("ALERTS"));
    QCOMPARE(m_userLogDateTimeFormatList, QStringList("dd MMM yyyy hh:mm:ss"));
}

QTEST_GUILESS_MAIN(LogServiceUsersTest)
#include "LogServiceUsersTest.moc"

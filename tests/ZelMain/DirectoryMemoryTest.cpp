#include "ZelMain/DirectoryMemory.h"

#include "tests/support/FileSizeLimit.h"
#include "tests/support/MessageRecorder.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <type_traits>

class DirectoryMemoryTest : public QObject
{
    Q_OBJECT

    QString home() const { return m_home->path(); }
    QString makeFolder(const QString& name) const;

    std::unique_ptr<QTemporaryDir> m_home;

private slots:
    void init();

    void everyKindHasItsNumberFolderAndKey_data();
    void everyKindHasItsNumberFolderAndKey();
    void commonFoldersLieBelowTheHomeFolder();
    void numberThatIsNoKindGivesTheHomeFolder_data();
    void numberThatIsNoKindGivesTheHomeFolder();
    void numberThatIsNoKindStoresNothing_data();
    void numberThatIsNoKindStoresNothing();

    void defaultThatExistsIsLeftAlone();
    void defaultThatCannotBeMadeGivesTheHomeFolder();
    void defaultIsNotRemembered();

    void rememberedFolderIsRestored();
    void missingRememberedFolderStaysRemembered();
    void rememberedFileIsNoFolder();
    void storedEmptyTextCountsAsNothing();
    void defaultIsRememberedWhenNothingWas();
    void homeFolderIsRememberedWhenTheDefaultCannotBeMade();
    void nothingIsMadeForARememberedFolder();
    void kindsAreRememberedApart();

    void savedFolderReplacesTheOneBefore();
    void savedFolderNeedNotExist();
    void savedTextIsKeptAsItIs();
    void emptyFolderIsNotSaved();
    void fixedFolderIsNotSaved_data();
    void fixedFolderIsNotSaved();
    void fixedFolderIsRestoredFromItsDefault();
    void fixedFolderStoredByHandIsRestored();
    void settingsStandInTheUsersStoreOfTheFamily();
    void settingsThatCannotBeWrittenRememberNothing_data();
    void settingsThatCannotBeWrittenRememberNothing();
    void settingsStayWholeOnAFullDisk();
    void hasAVirtualDestructor();
};

namespace {

/** The settings as another program sees them. */
QVariant stored(const QString& key)
{
    return QSettings("Velto", "Zel6").value("Recently Opened Directories/" + key);
}

void store(const QString& key, const QString& dir)
{
    QSettings("Velto", "Zel6").setValue("Recently Opened Directories/" + key, dir);
}

DirectoryMemory::DirType kind(int number)
{
    return static_cast<DirectoryMemory::DirType>(number);
}

} // namespace

/** Each test starts in the fresh account of a new user. */
void DirectoryMemoryTest::init()
{
    m_home = std::make_unique<QTemporaryDir>();
    QVERIFY(m_home->isValid());
    qputenv("HOME", QFile::encodeName(home()));
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, home() + "/.config");
}

QString DirectoryMemoryTest::makeFolder(const QString& name) const
{
    QDir(home()).mkpath(name);
    return home() + '/' + name;
}

void DirectoryMemoryTest::everyKindHasItsNumberFolderAndKey_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("folder");
    QTest::addColumn<bool>("fixed");
    QTest::newRow("FrequencyPlots")
        << int(DirectoryMemory::FrequencyPlots) << 0 << "/Documents/Velto/Frequency Plots" << false;
    QTest::newRow("AutosavedScans") << int(DirectoryMemory::AutosavedScans) << 1
                                    << "/Documents/Velto/Frequency Plots/Autosaved" << false;
    QTest::newRow("ShowFiles") << int(DirectoryMemory::ShowFiles) << 2
                               << "/Documents/Velto/Show Files" << false;
    QTest::newRow("FWFiles") << int(DirectoryMemory::FWFiles) << 3 << "/Documents/Velto/Firmware"
                             << false;
    QTest::newRow("InventoryFiles")
        << int(DirectoryMemory::InventoryFiles) << 4 << "/Documents/Velto/Inventory" << false;
    QTest::newRow("ExclusionFiles")
        << int(DirectoryMemory::ExclusionFiles) << 5 << "/Documents/Velto/Exclusions" << false;
    QTest::newRow("CustomGroupFiles")
        << int(DirectoryMemory::CustomGroupFiles) << 6 << "/Documents/Velto/Custom Groups" << false;
    QTest::newRow("EquipmentProfiles") << int(DirectoryMemory::EquipmentProfiles) << 7
                                       << "/Documents/Velto/Equipment Profiles" << true;
    QTest::newRow("LogFiles") << int(DirectoryMemory::LogFiles) << 8 << "/Documents/Velto/LogFiles"
                              << false;
    QTest::newRow("AlertFiles") << int(DirectoryMemory::AlertFiles) << 9
                                << "/Documents/Velto/Alerts" << false;
    QTest::newRow("ShowImageFiles")
        << int(DirectoryMemory::ShowImageFiles) << 10 << "/Documents/Velto" << false;
    QTest::newRow("ZelInstaller") << int(DirectoryMemory::ZelInstaller) << 11 << "/Documents/Velto"
                                  << false;
    QTest::newRow("Reports") << int(DirectoryMemory::Reports) << 12 << "/Documents/Velto/Report"
                             << false;
    QTest::newRow("EquipmentProfilesExport") << int(DirectoryMemory::EquipmentProfilesExport) << 13
                                             << "/Documents/Velto/Equipment Profiles" << false;
    QTest::newRow("AlertsLogs") << int(DirectoryMemory::AlertsLogs) << 14
                                << "/Documents/Velto/Alerts Logs" << false;
    QTest::newRow("CflEditImports") << int(DirectoryMemory::CflEditImports) << 15
                                    << "/Documents/Velto/Frequency Lists" << false;
    QTest::newRow("CustomUserGroupsFiles") << int(DirectoryMemory::CustomUserGroupsFiles) << 16
                                           << "/Documents/Velto/Custom User Groups" << false;
    QTest::newRow("CoordWorkspace") << int(DirectoryMemory::CoordWorkspace) << 17
                                    << "/Documents/Velto/Coordination Workspace" << false;
    QTest::newRow("Presets_Files")
        << int(DirectoryMemory::Presets_Files) << 18 << "/Documents/Velto/Presets" << false;
    QTest::newRow("Presets_Import")
        << int(DirectoryMemory::Presets_Import) << 19 << "/Desktop" << false;
    QTest::newRow("Presets_Export")
        << int(DirectoryMemory::Presets_Export) << 20 << "/Desktop" << false;
    QTest::newRow("Timeline") << int(DirectoryMemory::Timeline) << 21 << "/Documents/Velto/Timeline"
                              << false;
    QTest::newRow("NETWORK_LOCK") << int(DirectoryMemory::NETWORK_LOCK) << 22 << "/Documents/Velto"
                                  << false;
    QTest::newRow("RemoteAddresses") << int(DirectoryMemory::RemoteAddresses) << 23
                                     << "/Documents/Velto/Remote Addresses" << false;
    QTest::newRow("ConvertedDevices") << int(DirectoryMemory::ConvertedDevices) << 24
                                      << "/Documents/Velto/Converted Devices" << false;
    QTest::newRow("InAppMessages") << int(DirectoryMemory::InAppMessages) << 25
                                   << "/Documents/Velto/InApp Notifications" << false;
    QTest::newRow("CrashReports") << int(DirectoryMemory::CrashReports) << 26
                                  << "/Documents/Velto/CrashReports" << true;
    QTest::newRow("CustomCompatibilityProfiles")
        << int(DirectoryMemory::CustomCompatibilityProfiles) << 27
        << "/Documents/Velto/Custom Compatibility Profiles" << false;
}

void DirectoryMemoryTest::everyKindHasItsNumberFolderAndKey()
{
    QFETCH(int, type);
    QFETCH(int, number);
    QFETCH(QString, folder);
    QFETCH(bool, fixed);
    const MessageRecorder recorder; // fixed kinds say that they are

    QCOMPARE(type, number);
    const QString key = QTest::currentDataTag();
    QCOMPARE(DirectoryMemory().DefaultDir(kind(type)), home() + folder);
    QVERIFY(QFileInfo(home() + folder).isDir());
    QVERIFY(!stored(key).isValid());

    QCOMPARE(DirectoryMemory().RestoreDir(kind(type)), home() + folder);
    QCOMPARE(stored(key).toString(), fixed ? QString() : home() + folder);
    QCOMPARE(QSettings("Velto", "Zel6").allKeys().size(), fixed ? 0 : 1);
    QCOMPARE(recorder.messages().size(), fixed ? 1 : 0);
}

void DirectoryMemoryTest::commonFoldersLieBelowTheHomeFolder()
{
    QCOMPARE(DirectoryMemory::HOME_COMMON_SUBDIR, QStringLiteral("/Documents/Velto/"));
    QCOMPARE(DirectoryMemory::HOME_DESKTOP_SUBDIR, QStringLiteral("/Desktop"));
}

void DirectoryMemoryTest::numberThatIsNoKindGivesTheHomeFolder_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("first past the last") << 28;
    QTest::newRow("far past the last") << 1000000;
    QTest::newRow("negative") << -1;
    QTest::newRow("most negative") << std::numeric_limits<int>::min();
}

void DirectoryMemoryTest::numberThatIsNoKindGivesTheHomeFolder()
{
    QFETCH(int, number);
    QCOMPARE(DirectoryMemory().DefaultDir(kind(number)), home());
    QCOMPARE(DirectoryMemory().RestoreDir(kind(number)), home());
    QVERIFY(QSettings("Velto", "Zel6").allKeys().isEmpty());
    QVERIFY(!QDir(home() + "/Documents").exists());
}

void DirectoryMemoryTest::numberThatIsNoKindStoresNothing_data()
{
    numberThatIsNoKindGivesTheHomeFolder_data();
}

void DirectoryMemoryTest::numberThatIsNoKindStoresNothing()
{
    QFETCH(int, number);
    const MessageRecorder recorder;
    DirectoryMemory().SaveDir(kind(number), home());
    QVERIFY(QSettings("Velto", "Zel6").allKeys().isEmpty());
    QVERIFY(recorder.messages().isEmpty());
}

void DirectoryMemoryTest::defaultThatExistsIsLeftAlone()
{
    const QString dir = makeFolder("Documents/Velto/Show Files");
    QFile file(dir + "/show.xml");
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(DirectoryMemory().DefaultDir(DirectoryMemory::ShowFiles), dir);
    QVERIFY(file.exists());
}

void DirectoryMemoryTest::defaultThatCannotBeMadeGivesTheHomeFolder()
{
    QFile inTheWay(home() + "/Documents");
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    QCOMPARE(DirectoryMemory().DefaultDir(DirectoryMemory::ShowFiles), home());
}

void DirectoryMemoryTest::defaultIsNotRemembered()
{
    DirectoryMemory().DefaultDir(DirectoryMemory::ShowFiles);
    QVERIFY(!stored("ShowFiles").isValid());
}

void DirectoryMemoryTest::rememberedFolderIsRestored()
{
    const QString dir = makeFolder("somewhere else");
    DirectoryMemory().SaveDir(DirectoryMemory::LogFiles, dir);
    QCOMPARE(DirectoryMemory().RestoreDir(DirectoryMemory::LogFiles), dir);
    QCOMPARE(stored("LogFiles").toString(), dir);
}

void DirectoryMemoryTest::missingRememberedFolderStaysRemembered()
{
    const QString gone = home() + "/gone";
    store("LogFiles", gone);
    QCOMPARE(DirectoryMemory().RestoreDir(DirectoryMemory::LogFiles),
             home() + "/Documents/Velto/LogFiles");
    QCOMPARE(stored("LogFiles").toString(), gone);

    QDir(home()).mkdir("gone");
    QCOMPARE(DirectoryMemory().RestoreDir(DirectoryMemory::LogFiles), gone);
}

void DirectoryMemoryTest::rememberedFileIsNoFolder()
{
    QFile file(home() + "/file");
    QVERIFY(file.open(QIODevice::WriteOnly));
    store("LogFiles", file.fileName());
    QCOMPARE(DirectoryMemory().RestoreDir(DirectoryMemory::LogFiles),
             home() + "/Documents/Velto/LogFiles");
    QCOMPARE(stored("LogFiles").toString(), file.fileName());
}

void DirectoryMemoryTest::storedEmptyTextCountsAsNothing()
{
    store("LogFiles", "");
    const QString dir = DirectoryMemory().RestoreDir(DirectoryMemory::LogFiles);
    QCOMPARE(dir, home() + "/Documents/Velto/LogFiles");
    QCOMPARE(stored("LogFiles").toString(), dir);
}

void DirectoryMemoryTest::defaultIsRememberedWhenNothingWas()
{
    const QString dir = DirectoryMemory().RestoreDir(DirectoryMemory::LogFiles);
    QCOMPARE(dir, home() + "/Documents/Velto/LogFiles");
    QVERIFY(QDir(dir).exists());
    QCOMPARE(stored("LogFiles").toString(), dir);
}

void DirectoryMemoryTest::homeFolderIsRememberedWhenTheDefaultCannotBeMade()
{
    QFile inTheWay(home() + "/Documents");
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    QCOMPARE(DirectoryMemory().RestoreDir(DirectoryMemory::LogFiles), home());
    QCOMPARE(stored("LogFiles").toString(), home());
}

void DirectoryMemoryTest::nothingIsMadeForARememberedFolder()
{
    store("LogFiles", home());
    QCOMPARE(DirectoryMemory().RestoreDir(DirectoryMemory::LogFiles), home());
    QVERIFY(!QDir(home() + "/Documents").exists());
}

void DirectoryMemoryTest::kindsAreRememberedApart()
{
    // These two share their default folder, one of them is fixed.
    const QString dir = makeFolder("exported");
    DirectoryMemory().SaveDir(DirectoryMemory::EquipmentProfilesExport, dir);
    const MessageRecorder recorder;
    QCOMPARE(DirectoryMemory().RestoreDir(DirectoryMemory::EquipmentProfiles),
             home() + "/Documents/Velto/Equipment Profiles");
    QCOMPARE(DirectoryMemory().RestoreDir(DirectoryMemory::EquipmentProfilesExport), dir);
}

void DirectoryMemoryTest::savedFolderReplacesTheOneBefore()
{
    DirectoryMemory().SaveDir(DirectoryMemory::ShowFiles, "/first");
    DirectoryMemory().SaveDir(DirectoryMemory::ShowFiles, "/second");
    QCOMPARE(stored("ShowFiles").toString(), QStringLiteral("/second"));
}

void DirectoryMemoryTest::savedFolderNeedNotExist()
{
    DirectoryMemory().SaveDir(DirectoryMemory::ShowFiles, "/does/not/exist");
    QCOMPARE(stored("ShowFiles").toString(), QStringLiteral("/does/not/exist"));
}

void DirectoryMemoryTest::savedTextIsKeptAsItIs()
{
    const QString odd = makeFolder(QString::fromUtf8("a, b; \"c\" %1 = \xC3\xA9 @x"));
    DirectoryMemory().SaveDir(DirectoryMemory::ShowFiles, odd + "/../");
    QCOMPARE(stored("ShowFiles").toString(), odd + "/../");
    QCOMPARE(DirectoryMemory().RestoreDir(DirectoryMemory::ShowFiles), odd + "/../");
}

void DirectoryMemoryTest::emptyFolderIsNotSaved()
{
    store("ShowFiles", "/before");
    const MessageRecorder recorder;
    DirectoryMemory().SaveDir(DirectoryMemory::ShowFiles, "");
    DirectoryMemory().SaveDir(DirectoryMemory::ShowFiles, QString());
    QCOMPARE(stored("ShowFiles").toString(), QStringLiteral("/before"));
    QVERIFY(recorder.messages().isEmpty());
}

void DirectoryMemoryTest::fixedFolderIsNotSaved_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("dir");
    QTest::addColumn<QString>("message");
    QTest::newRow("equipment profiles")
        << int(DirectoryMemory::EquipmentProfiles) << "/x"
        << R"(Attempt to update fixed directory "EquipmentProfiles" to "/x")";
    QTest::newRow("crash reports") << int(DirectoryMemory::CrashReports) << "/x"
                                   << R"(Attempt to update fixed directory "CrashReports" to "/x")";
    QTest::newRow("empty folder is reported too")
        << int(DirectoryMemory::CrashReports) << ""
        << R"(Attempt to update fixed directory "CrashReports" to "")";
}

void DirectoryMemoryTest::fixedFolderIsNotSaved()
{
    QFETCH(int, type);
    QFETCH(QString, dir);
    QFETCH(QString, message);
    const MessageRecorder recorder;
    DirectoryMemory().SaveDir(kind(type), dir);
    QVERIFY(QSettings("Velto", "Zel6").allKeys().isEmpty());
    const QVector<RecordedMessage> expected = {{QtDebugMsg, "default", message}};
    QCOMPARE(recorder.messages(), expected);
}

void DirectoryMemoryTest::fixedFolderIsRestoredFromItsDefault()
{
    const MessageRecorder recorder;
    const QString dir = DirectoryMemory().RestoreDir(DirectoryMemory::CrashReports);
    QCOMPARE(dir, home() + "/Documents/Velto/CrashReports");
    QVERIFY(QSettings("Velto", "Zel6").allKeys().isEmpty());
    // The default is written back like any other kind's and refused like any other folder.
    const QString message =
        QStringLiteral("Attempt to update fixed directory \"CrashReports\" to \"%1\"").arg(dir);
    const QVector<RecordedMessage> expected = {{QtDebugMsg, "default", message}};
    QCOMPARE(recorder.messages(), expected);
}

void DirectoryMemoryTest::fixedFolderStoredByHandIsRestored()
{
    const QString dir = makeFolder("by hand");
    store("CrashReports", dir);
    QCOMPARE(DirectoryMemory().RestoreDir(DirectoryMemory::CrashReports), dir);
}

void DirectoryMemoryTest::settingsStandInTheUsersStoreOfTheFamily()
{
    // An application's own names have no say in it.
    QCoreApplication::setOrganizationName("Somebody");
    QCoreApplication::setApplicationName("Something");
    DirectoryMemory().SaveDir(DirectoryMemory::ShowFiles, "/x");
    QCoreApplication::setOrganizationName(QString());
    QVERIFY(QFile::exists(home() + "/.config/Velto/Zel6.conf"));
    QVERIFY(!QFile::exists(home() + "/.config/Somebody"));
}

void DirectoryMemoryTest::settingsThatCannotBeWrittenRememberNothing_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("folder");
    QTest::newRow("a file for the folder") << ".config"
                                           << "";
    QTest::newRow("a file for the family's folder") << ".config/Velto"
                                                    << ".config";
    QTest::newRow("a folder for the file") << ""
                                           << ".config/Velto/Zel6.conf";
}

void DirectoryMemoryTest::settingsThatCannotBeWrittenRememberNothing()
{
    QFETCH(QString, file);
    QFETCH(QString, folder);
    if (!folder.isEmpty()) {
        makeFolder(folder);
    }
    if (!file.isEmpty()) {
        QVERIFY(QFile(home() + '/' + file).open(QIODevice::WriteOnly));
    }
    const QString dir = makeFolder("somewhere else");
    const QString byDefault = home() + "/Documents/Velto/LogFiles";
    const MessageRecorder recorder;
    DirectoryMemory().SaveDir(DirectoryMemory::LogFiles, dir);
    QCOMPARE(DirectoryMemory().RestoreDir(DirectoryMemory::LogFiles), byDefault);
    QCOMPARE(DirectoryMemory().RestoreDir(DirectoryMemory::LogFiles), byDefault);
    QVERIFY(recorder.messages().isEmpty());

    QVERIFY(file.isEmpty() || QFile::remove(home() + '/' + file));
    QVERIFY(folder.isEmpty() || QDir().rmdir(home() + '/' + folder));
    DirectoryMemory().SaveDir(DirectoryMemory::LogFiles, dir);
    QCOMPARE(DirectoryMemory().RestoreDir(DirectoryMemory::LogFiles), dir);
}

void DirectoryMemoryTest::settingsStayWholeOnAFullDisk()
{
    const QString dir = makeFolder("somewhere else");
    DirectoryMemory().SaveDir(DirectoryMemory::LogFiles, dir);
    QFile settings(home() + "/.config/Velto/Zel6.conf");
    QVERIFY(settings.open(QIODevice::ReadOnly));
    const QByteArray before = settings.readAll();
    QVERIFY(before.contains("somewhere else"));
    settings.close();
    {
        const FileSizeLimit limit(10);
        DirectoryMemory().SaveDir(DirectoryMemory::ShowFiles, dir);
    }
    QVERIFY(settings.open(QIODevice::ReadOnly));
    QCOMPARE(settings.readAll(), before);
}

void DirectoryMemoryTest::hasAVirtualDestructor()
{
    QVERIFY(std::has_virtual_destructor<DirectoryMemory>::value);
}

QTEST_GUILESS_MAIN(DirectoryMemoryTest)
#include "DirectoryMemoryTest.moc"

#include "ZelMain/Diagnostics/FileOutDevConfig.h"

#include "tests/support/VirtualSlot.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <type_traits>
#include <vector>

using PkLogger::FileOutDevConfig;
using PkLogger::FileOutDevConfigInterface;

class FileOutDevConfigTest : public QObject
{
    Q_OBJECT

    QString home() const { return m_home->path(); }

    std::unique_ptr<QTemporaryDir> m_home;

private slots:
    void init();

    void nothingStoredGivesTheDefaults();
    void bannerIsGivenBackAndNotStored();
    void valuesAreRemembered();
    void valuesAreReadFromTheirKeys();
    void limitIsAnyUnsignedNumber_data();
    void limitIsAnyUnsignedNumber();
    void limitThatDoesNotFitReadsAsZero_data();
    void limitThatDoesNotFitReadsAsZero();
    void emptyBaseNameIsAValue();

    void folderIsTheRememberedLogFolder();
    void folderDefaultsToTheLogFolder();
    void emptyFolderIsNotRemembered();

    void settingsAreThoseOfTheNamedApplication_data();
    void settingsAreThoseOfTheNamedApplication();
    void organisationAloneNamesAnApplicationObject();
    void folderIsSharedByAllApplications();
    void settingsThatCannotBeWrittenGiveTheDefaults();

    void operationsStandInTheirSlots();
};

namespace {

/** The operations in the order of their slots. */
template <typename CONFIG>
std::vector<int> slotsOf()
{
    return {
        virtualSlot(&CONFIG::getBaseFileName),    virtualSlot(&CONFIG::getFolderName),
        virtualSlot(&CONFIG::getBannerName),      virtualSlot(&CONFIG::getSizeLimit),
        virtualSlot(&CONFIG::getTimeLimit),       virtualSlot(&CONFIG::rememberBaseFileName),
        virtualSlot(&CONFIG::rememberFolderName), virtualSlot(&CONFIG::rememberSizeLimit),
        virtualSlot(&CONFIG::rememberTimeLimit),
    };
}

} // namespace

/** Each test starts in the fresh account of a new user, in a program that has not named itself. */
void FileOutDevConfigTest::init()
{
    m_home = std::make_unique<QTemporaryDir>();
    QVERIFY(m_home->isValid());
    qputenv("HOME", QFile::encodeName(home()));
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, home() + "/.config");
    QCoreApplication::setOrganizationName(QString());
    QCoreApplication::setApplicationName(QString());
}

void FileOutDevConfigTest::nothingStoredGivesTheDefaults()
{
    const FileOutDevConfig config("banner");
    QCOMPARE(config.getBaseFileName(), QStringLiteral("ZelLogFile"));
    QCOMPARE(config.getSizeLimit(), 16U);
    QCOMPARE(config.getTimeLimit(), 8U);
    QVERIFY(QSettings("Velto", "Zel6").allKeys().isEmpty());
}

void FileOutDevConfigTest::bannerIsGivenBackAndNotStored()
{
    {
        const FileOutDevConfig config("Banner Name");
        QCOMPARE(config.getBannerName(), QStringLiteral("Banner Name"));
    }
    QCOMPARE(FileOutDevConfig(QString()).getBannerName(), QString());
    QVERIFY(QSettings("Velto", "Zel6").allKeys().isEmpty());
}

void FileOutDevConfigTest::valuesAreRemembered()
{
    {
        FileOutDevConfig config("banner");
        config.rememberBaseFileName("MyLog");
        config.rememberSizeLimit(32);
        config.rememberTimeLimit(24);
        QCOMPARE(config.getBaseFileName(), QStringLiteral("MyLog"));
    }
    const FileOutDevConfig config("banner");
    QCOMPARE(config.getBaseFileName(), QStringLiteral("MyLog"));
    QCOMPARE(config.getSizeLimit(), 32U);
    QCOMPARE(config.getTimeLimit(), 24U);

    const QSettings settings("Velto", "Zel6");
    QStringList keys = settings.allKeys();
    keys.sort();
    QCOMPARE(keys, QStringList({"LogGroup/LogBaseName", "LogGroup/LogFileMaxSize",
                                "LogGroup/LogFileMaxTime"}));
    QCOMPARE(settings.value("LogGroup/LogBaseName").toString(), QStringLiteral("MyLog"));
    QCOMPARE(settings.value("LogGroup/LogFileMaxSize").toInt(), 32);
    QCOMPARE(settings.value("LogGroup/LogFileMaxTime").toInt(), 24);
}

void FileOutDevConfigTest::valuesAreReadFromTheirKeys()
{
    {
        QSettings settings("Velto", "Zel6");
        settings.setValue("LogGroup/LogBaseName", "Stored");
        settings.setValue("LogGroup/LogFileMaxSize", 1);
        settings.setValue("LogGroup/LogFileMaxTime", "2");
    }
    const FileOutDevConfig config("banner");
    QCOMPARE(config.getBaseFileName(), QStringLiteral("Stored"));
    QCOMPARE(config.getSizeLimit(), 1U);
    QCOMPARE(config.getTimeLimit(), 2U);
}

void FileOutDevConfigTest::limitIsAnyUnsignedNumber_data()
{
    QTest::addColumn<unsigned int>("limit");
    QTest::newRow("zero") << 0U;
    QTest::newRow("greatest signed") << 2147483647U;
    QTest::newRow("greatest") << 4294967295U;
}

void FileOutDevConfigTest::limitIsAnyUnsignedNumber()
{
    QFETCH(unsigned int, limit);
    {
        FileOutDevConfig config("banner");
        config.rememberSizeLimit(limit);
        config.rememberTimeLimit(limit);
    }
    QSettings("Velto", "Zel6").sync();
    QTEST(FileOutDevConfig("banner").getSizeLimit(), "limit");
    QTEST(FileOutDevConfig("banner").getTimeLimit(), "limit");
}

void FileOutDevConfigTest::limitThatDoesNotFitReadsAsZero_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("no number") << "many";
    QTest::newRow("empty") << "";
    QTest::newRow("negative") << "-1";
    QTest::newRow("too large") << "4294967296";
    QTest::newRow("fraction") << "1.5";
}

void FileOutDevConfigTest::limitThatDoesNotFitReadsAsZero()
{
    QFETCH(QString, text);
    QSettings("Velto", "Zel6").setValue("LogGroup/LogFileMaxSize", text);
    QSettings("Velto", "Zel6").setValue("LogGroup/LogFileMaxTime", text);
    QCOMPARE(FileOutDevConfig("banner").getSizeLimit(), 0U);
    QCOMPARE(FileOutDevConfig("banner").getTimeLimit(), 0U);
}

void FileOutDevConfigTest::emptyBaseNameIsAValue()
{
    FileOutDevConfig config("banner");
    config.rememberBaseFileName("");
    QCOMPARE(config.getBaseFileName(), QString(""));
}

void FileOutDevConfigTest::folderIsTheRememberedLogFolder()
{
    const QString dir = home() + "/own logs";
    QVERIFY(QDir().mkdir(dir));
    FileOutDevConfig config("banner");
    config.rememberFolderName(dir);
    QCOMPARE(config.getFolderName(), dir);
    QCOMPARE(QSettings("Velto", "Zel6").value("Recently Opened Directories/LogFiles").toString(),
             dir);
}

void FileOutDevConfigTest::folderDefaultsToTheLogFolder()
{
    const QString dir = home() + "/Documents/Velto/LogFiles";
    QCOMPARE(FileOutDevConfig("banner").getFolderName(), dir);
    QVERIFY(QDir(dir).exists());
    QCOMPARE(QSettings("Velto", "Zel6").value("Recently Opened Directories/LogFiles").toString(),
             dir);
}

void FileOutDevConfigTest::emptyFolderIsNotRemembered()
{
    const QString dir = home() + "/own logs";
    QVERIFY(QDir().mkdir(dir));
    FileOutDevConfig config("banner");
    config.rememberFolderName(dir);
    config.rememberFolderName("");
    QCOMPARE(config.getFolderName(), dir);
}

void FileOutDevConfigTest::settingsAreThoseOfTheNamedApplication_data()
{
    QTest::addColumn<QString>("organisation");
    QTest::addColumn<QString>("application");
    QTest::addColumn<QString>("file");
    QTest::newRow("both named") << "Somebody"
                                << "Something"
                                << "/.config/Somebody/Something.conf";
    QTest::newRow("no organisation") << ""
                                     << "Something"
                                     << "/.config/Velto/Zel6.conf";
    QTest::newRow("no application") << "Somebody"
                                    << ""
                                    << "/.config/Velto/Zel6.conf";
    QTest::newRow("neither") << ""
                             << ""
                             << "/.config/Velto/Zel6.conf";
}

void FileOutDevConfigTest::settingsAreThoseOfTheNamedApplication()
{
    QFETCH(QString, organisation);
    QFETCH(QString, application);
    QFETCH(QString, file);
    QCoreApplication::setOrganizationName(organisation);
    QCoreApplication::setApplicationName(application);
    FileOutDevConfig("banner").rememberTimeLimit(3);

    QVERIFY(QFile::exists(home() + file));
    const QSettings settings(home() + file, QSettings::IniFormat);
    QCOMPARE(settings.value("LogGroup/LogFileMaxTime").toInt(), 3);
    QCOMPARE(FileOutDevConfig("banner").getTimeLimit(), 3U);
}

void FileOutDevConfigTest::organisationAloneNamesAnApplicationObject()
{
    // Qt names the application after its file as soon as there is an application object.
    char name[] = "program";
    char* arguments[] = {name, nullptr};
    int count = 1;
    const QCoreApplication application(count, arguments);
    FileOutDevConfig("banner").rememberTimeLimit(3);
    QVERIFY(QFile::exists(home() + "/.config/Velto/Zel6.conf"));

    QCoreApplication::setOrganizationName("Somebody");
    QCOMPARE(FileOutDevConfig("banner").getTimeLimit(), 8U);
    FileOutDevConfig("banner").rememberTimeLimit(4);
    QVERIFY(QFile::exists(home() + "/.config/Somebody/" + QCoreApplication::applicationName() +
                          ".conf"));
}

void FileOutDevConfigTest::folderIsSharedByAllApplications()
{
    QCoreApplication::setOrganizationName("Somebody");
    FileOutDevConfig("banner").rememberFolderName(home());
    QCoreApplication::setOrganizationName("Somebody else");
    QCOMPARE(FileOutDevConfig("banner").getFolderName(), home());
}

void FileOutDevConfigTest::settingsThatCannotBeWrittenGiveTheDefaults()
{
    QVERIFY(QFile(home() + "/.config").open(QIODevice::WriteOnly)); // in the folder's place
    QVERIFY(QFile(home() + "/Documents").open(QIODevice::WriteOnly));
    {
        FileOutDevConfig config("banner");
        config.rememberBaseFileName("MyLog");
        config.rememberFolderName(home() + "/own logs");
        config.rememberSizeLimit(1);
        config.rememberTimeLimit(2);
    }
    const FileOutDevConfig config("banner");
    QCOMPARE(config.getBaseFileName(), QStringLiteral("ZelLogFile"));
    QCOMPARE(config.getSizeLimit(), 16U);
    QCOMPARE(config.getTimeLimit(), 8U);
    QCOMPARE(config.getFolderName(), home()); // the default cannot be made either
}

void FileOutDevConfigTest::operationsStandInTheirSlots()
{
    const std::vector<int> inOrder = {0, 1, 2, 3, 4, 5, 6, 7, 8};
    QCOMPARE(slotsOf<FileOutDevConfigInterface>(), inOrder);
    QCOMPARE(slotsOf<FileOutDevConfig>(), inOrder);
    QVERIFY(std::has_virtual_destructor_v<FileOutDevConfigInterface>);
}

// Without an application object, so that a program may also have no application name at all.
QTEST_APPLESS_MAIN(FileOutDevConfigTest)
#include "FileOutDevConfigTest.moc"

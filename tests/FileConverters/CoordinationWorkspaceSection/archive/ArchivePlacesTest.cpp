#include "FileConverters/CoordinationWorkspaceSection/archive/ArchivePlaces.h"

#include "tests/support/TestFolder.h"

#include <QtTest>

#include <cerrno>

class ArchivePlacesTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void foldersAreLookedAt_data();
    void foldersAreLookedAt();
    void reportsAreLookedAt_data();
    void reportsAreLookedAt();
    void pagesAreLookedAt_data();
    void pagesAreLookedAt();
    void aTrialMakesNoFolderForThePage();
    void nothingIsWritten();
    void whatHasNoFolderYetMayBeWritten();

private:
    QString path(const QString& name) const { return m_folder->path(name); }
    ArchiveCommandLine lineFor(const QString& source, const QString& target) const;

    std::unique_ptr<TestFolder> m_folder;
};

// An archive, a target of earlier runs, and what else there may be.
void ArchivePlacesTest::init()
{
    m_folder = std::make_unique<TestFolder>();
    QVERIFY(QDir().mkpath(path("source/sub")));
    QVERIFY(QDir().mkpath(path("target/.coordworkspace")));
    m_folder->write("file", "something else\n");
    m_folder->write("source/report", "");
    m_folder->write("other/empty", "");
}

ArchiveCommandLine ArchivePlacesTest::lineFor(const QString& source, const QString& target) const
{
    ArchiveCommandLine line;
    line.settings.source = path(source);
    line.settings.target = path(target);
    line.settings.report = line.settings.usualReport();
    return line;
}

void ArchivePlacesTest::foldersAreLookedAt_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("objection"); // how it begins
    QTest::newRow("both there") << "source"
                                << "target"
                                << "";
    QTest::newRow("target to be made") << "source"
                                       << "new/deep"
                                       << "";
    QTest::newRow("a longer name") << "source"
                                   << "source2"
                                   << "";
    QTest::newRow("no source") << "none"
                               << "target"
                               << "SOURCE is no folder: ";
    QTest::newRow("a file for a source") << "file"
                                         << "target"
                                         << "SOURCE is no folder: ";
    QTest::newRow("a file for a target") << "source"
                                         << "file"
                                         << "TARGET is no folder: ";
    QTest::newRow("the same") << "source"
                              << "source"
                              << "SOURCE and TARGET are the same";
    QTest::newRow("target inside") << "source"
                                   << "source/new"
                                   << "SOURCE and TARGET are the same";
    QTest::newRow("source inside") << "source/sub"
                                   << "source"
                                   << "SOURCE and TARGET are the same";
}

void ArchivePlacesTest::foldersAreLookedAt()
{
    QFETCH(QString, source);
    QFETCH(QString, target);
    QFETCH(QString, objection);
    const QString said = ArchivePlaces::objection(lineFor(source, target));
    QCOMPARE(said.left(objection.size()), objection);
    QCOMPARE(said.isEmpty(), objection.isEmpty());
}

void ArchivePlacesTest::reportsAreLookedAt_data()
{
    QTest::addColumn<QString>("report");
    QTest::addColumn<QString>("objection");
    const QString kept = "the report is among the files that a run keeps for itself: ";
    const QString held = "the report's place holds something else, or is in no folder: ";
    QTest::newRow("the usual one") << "target/.coordworkspace/report.jsonl"
                                   << "";
    QTest::newRow("elsewhere") << "other/report.jsonl"
                               << "";
    QTest::newRow("an empty file") << "other/empty"
                                   << "";
    QTest::newRow("in the target") << "target/report.jsonl"
                                   << "";
    QTest::newRow("in the source") << "source/report"
                                   << "the report is inside SOURCE";
    QTest::newRow("deep in the source") << "source/a/b"
                                        << "the report is inside SOURCE";
    QTest::newRow("beside the usual one") << "target/.coordworkspace/lock" << kept;
    QTest::newRow("something else") << "file" << held;
    QTest::newRow("a folder") << "other" << held;
    QTest::newRow("in no folder") << "none/report.jsonl" << held;
}

void ArchivePlacesTest::reportsAreLookedAt()
{
    QFETCH(QString, report);
    QFETCH(QString, objection);
    ArchiveCommandLine line = lineFor("source", "target");
    line.settings.report = path(report);
    const QString said = ArchivePlaces::objection(line);
    QCOMPARE(said.left(objection.size()), objection);
    QCOMPARE(said.isEmpty(), objection.isEmpty());
}

void ArchivePlacesTest::pagesAreLookedAt_data()
{
    QTest::addColumn<QString>("page");
    QTest::addColumn<QString>("objection");
    const QString kept = "the page is among the files that a run keeps for itself: ";
    const QString held = "the page's place holds something else, or is in no folder: ";
    QTest::newRow("elsewhere") << "other/page.html"
                               << "";
    QTest::newRow("an empty file") << "other/empty"
                                   << "";
    QTest::newRow("in the target") << "target/page.html"
                                   << "";
    QTest::newRow("in the source") << "source/page.html"
                                   << "the page is inside SOURCE";
    QTest::newRow("in the run's folder") << "target/.coordworkspace/page" << kept;
    QTest::newRow("the report") << "other/report.jsonl" << kept;
    QTest::newRow("something else") << "file" << held;
    QTest::newRow("a folder") << "other" << held;
    QTest::newRow("in no folder") << "none/page.html" << held;
}

void ArchivePlacesTest::pagesAreLookedAt()
{
    QFETCH(QString, page);
    QFETCH(QString, objection);
    ArchiveCommandLine line = lineFor("source", "target");
    line.settings.report = path("other/report.jsonl");
    line.page = path(page);
    const QString said = ArchivePlaces::objection(line);
    QCOMPARE(said.left(objection.size()), objection);
    QCOMPARE(said.isEmpty(), objection.isEmpty());
}

void ArchivePlacesTest::aTrialMakesNoFolderForThePage()
{
    ArchiveCommandLine line = lineFor("source", "new");
    line.page = path("new/page.html");
    QCOMPARE(ArchivePlaces::objection(line), QString());
    line.isTrial = true;
    QVERIFY(ArchivePlaces::objection(line).startsWith("the page's place"));
}

void ArchivePlacesTest::nothingIsWritten()
{
    ArchiveCommandLine line = lineFor("source", "new");
    line.settings.report = path("other/report.jsonl");
    line.page = path("other/page.html");
    QCOMPARE(ArchivePlaces::objection(line), QString());
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList({"file", "other", "source", "target"}));
    QCOMPARE(QDir(path("other")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList({"empty"}));
}

void ArchivePlacesTest::whatHasNoFolderYetMayBeWritten()
{
    QVERIFY(ArchivePlaces::mayWrite(path("other/page.html")));
    QVERIFY(ArchivePlaces::mayWrite(path("new/page.html")));
    errno = 0;
    QVERIFY(!ArchivePlaces::mayWrite(path("file/page.html"))); // not even for root
    QCOMPARE(errno, EACCES);
}

QTEST_GUILESS_MAIN(ArchivePlacesTest)

#include "ArchivePlacesTest.moc"

#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveSurvey.h"

#include "tests/support/TestFolder.h"

#include <QtTest>

#include <functional>

using Change = std::function<void(ArchiveCommandLine&, DocumentRecord&)>;
Q_DECLARE_METATYPE(Change)

class ArchiveSurveyTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void whatIsToBeDoneIsTold();
    void whatIsDoneIsDone_data();
    void whatIsDoneIsDone();
    void whatHasChangedIsDoneAgain_data();
    void whatHasChangedIsDoneAgain();
    void whatStandsInTheWayIsKept_data();
    void whatStandsInTheWayIsKept();
    void whatIsLeftAloneKeepsItsEarlierTarget();
    void whatIsGoneIsTold_data();
    void whatIsGoneIsTold();

private:
    QString path(const QString& name) const { return m_folder->path(name); }
    /** a.xml as a run before has converted it. */
    DocumentRecord converted() const;
    void report(const DocumentRecord& record) const;
    /** Looks, after what has been reported. */
    void look(ArchiveSurvey& survey, RunRecords& records, ArchiveHistory& before) const;

    std::unique_ptr<TestFolder> m_folder;
    ArchiveCommandLine m_line;
};

void ArchiveSurveyTest::init()
{
    m_folder = std::make_unique<TestFolder>();
    m_line = ArchiveCommandLine();
    m_line.settings.source = path("source");
    m_line.settings.target = path("target");
    m_line.settings.report = m_line.settings.usualReport();
    QVERIFY(QDir().mkpath(m_line.settings.folder()));
    m_folder->write("source/a.xml", "<before/>");
}

DocumentRecord ArchiveSurveyTest::converted() const
{
    m_folder->write("target/a.xml", "<after/>");
    DocumentRecord record;
    record.path = "a.xml";
    record.outcome = DocumentRecord::CONVERTED;
    record.source = FileIdentity::of(path("source/a.xml"));
    record.target = FileIdentity::of(path("target/a.xml"));
    return record;
}

void ArchiveSurveyTest::report(const DocumentRecord& record) const
{
    if (!ArchiveReport::append(m_line.settings.report, {record})) {
        qFatal("the report cannot be written");
    }
}

void ArchiveSurveyTest::look(ArchiveSurvey& survey, RunRecords& records,
                             ArchiveHistory& before) const
{
    if (!before.read() || !survey.look(records)) {
        qFatal("the look was cut off");
    }
}

void ArchiveSurveyTest::whatIsToBeDoneIsTold()
{
    m_folder->write("source/sub/b.xml", "<bb/>");
    m_folder->write("source/sub/c.txt", "text");
    ArchiveHistory before(m_line.settings);
    RunRecords records(before, false);
    ArchiveSurvey survey(m_line, before);
    look(survey, records, before);
    QCOMPARE(survey.documents().size(), std::size_t(2));
    const PlannedDocument& document = survey.documents()[1];
    QCOMPARE(document.path, QString("sub/b.xml"));
    QCOMPARE(document.size, qint64(5));
    QVERIFY(!document.mayReplace && !document.isBlocked && !document.earlier);
    QCOMPARE(survey.others().size(), std::size_t(1));
    QCOMPARE(survey.others()[0].path, QString("sub/c.txt"));
    QCOMPARE(survey.others()[0].outcome, DocumentRecord::REFUSED);
    QCOMPARE(survey.others()[0].reason, QString("no-workspace"));
    QVERIFY(!survey.others()[0].text.isEmpty());
    QVERIFY(records.all().isEmpty());
}

void ArchiveSurveyTest::whatIsDoneIsDone_data()
{
    QTest::addColumn<Change>("change");
    QTest::newRow("converted") << Change([](auto&, auto&) {});
    QTest::newRow("lossy") << Change(
        [](auto&, DocumentRecord& record) { record.outcome = DocumentRecord::LOSSY; });
    QTest::newRow("verified, when that is asked for")
        << Change([](ArchiveCommandLine& line, DocumentRecord& record) {
               line.settings.verifies = record.isVerified = true;
           });
    // The copy of a current document needs no verification.
    QTest::newRow("current, when that is asked for")
        << Change([](ArchiveCommandLine& line, DocumentRecord& record) {
               line.settings.verifies = true;
               record.outcome = DocumentRecord::CURRENT;
           });
    QTest::newRow("by force") << Change(
        [](ArchiveCommandLine& line, auto&) { line.forces = true; });
}

void ArchiveSurveyTest::whatIsDoneIsDone()
{
    QFETCH(Change, change);
    DocumentRecord record = converted();
    change(m_line, record);
    report(record);
    ArchiveHistory before(m_line.settings);
    RunRecords records(before, false);
    ArchiveSurvey survey(m_line, before);
    look(survey, records, before);
    QVERIFY(survey.documents().empty());
    QVERIFY(records.all()["a.xml"].tellsTheSameAs(record));
    QVERIFY(records.summary().text().endsWith("; 1 done by an earlier run"));
}

void ArchiveSurveyTest::whatHasChangedIsDoneAgain_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("mayReplace"); // what stands is what a run has written
    QTest::addColumn<Change>("change");
    const Change none([](auto&, auto&) {});
    QTest::newRow("another document") << "source/a.xml" << QByteArray("<beforE/>") << true << none;
    QTest::newRow("a longer document")
        << "source/a.xml" << QByteArray("<before />") << true << none;
    QTest::newRow("another target") << "target/a.xml" << QByteArray("<afteR/>") << false << none;
    QTest::newRow("never verified")
        << "other" << QByteArray() << true
        << Change([](ArchiveCommandLine& line, auto&) { line.settings.verifies = true; });
    QTest::newRow("not written by the last run")
        << "other" << QByteArray() << true << Change([](auto&, DocumentRecord& record) {
               record.outcome = DocumentRecord::FAILED;
               record.earlier = record.target;
               record.target.reset();
           });
    QTest::newRow("a document that was not read")
        << "other" << QByteArray() << true
        << Change([](auto&, DocumentRecord& record) { record.source.reset(); });
}

void ArchiveSurveyTest::whatHasChangedIsDoneAgain()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, bytes);
    QFETCH(bool, mayReplace);
    QFETCH(Change, change);
    DocumentRecord record = converted();
    const std::optional<FileIdentity> standing = record.target;
    change(m_line, record);
    report(record);
    m_folder->write(file, bytes);
    ArchiveHistory before(m_line.settings);
    RunRecords records(before, false);
    ArchiveSurvey survey(m_line, before);
    look(survey, records, before);
    QVERIFY(records.all().isEmpty());
    QCOMPARE(survey.documents().size(), std::size_t(1));
    QCOMPARE(survey.documents()[0].mayReplace, mayReplace);
    QCOMPARE(survey.documents()[0].isBlocked, !mayReplace);
    QCOMPARE(survey.documents()[0].earlier, mayReplace ? standing : std::nullopt);
}

void ArchiveSurveyTest::whatStandsInTheWayIsKept_data()
{
    QTest::addColumn<QString>("name"); // of a file that stands there
    QTest::addColumn<bool>("blocks");
    QTest::addColumn<bool>("blocksForce");
    QTest::newRow("nothing") << "target/b.xml" << false << false;
    QTest::newRow("a file") << "target/a.xml" << true << false;
    QTest::newRow("a folder") << "target/a.xml/b" << true << true;
    QTest::newRow("a link that leads nowhere") << "link" << true << false;
    QTest::newRow("the report's place") << "report" << true << true;
    QTest::newRow("the page's place") << "page" << true << true;
}

void ArchiveSurveyTest::whatStandsInTheWayIsKept()
{
    QFETCH(QString, name);
    if (name == "link") {
        QVERIFY(QFile::link("/no/file", path("target/a.xml")));
    } else if (name == "report") {
        m_line.settings.report = path("target/a.xml");
    } else if (name == "page") {
        m_line.page = path("target/a.xml");
    } else {
        m_folder->write(name, "mine");
    }
    for (const bool forces : {false, true}) {
        m_line.forces = forces;
        ArchiveHistory before(m_line.settings);
        RunRecords records(before, false);
        ArchiveSurvey survey(m_line, before);
        look(survey, records, before);
        QCOMPARE(survey.documents().size(), std::size_t(1));
        QTEST(survey.documents()[0].isBlocked, forces ? "blocksForce" : "blocks");
        QCOMPARE(survey.documents()[0].mayReplace, forces);
    }
}

void ArchiveSurveyTest::whatIsLeftAloneKeepsItsEarlierTarget()
{
    const DocumentRecord record = converted();
    report(record);
    m_folder->write("source/a.xml", "no XML any more");
    ArchiveHistory before(m_line.settings);
    RunRecords records(before, false);
    ArchiveSurvey survey(m_line, before);
    look(survey, records, before);
    QCOMPARE(survey.others().size(), std::size_t(1));
    QCOMPARE(survey.others()[0].earlier, record.target);
    QVERIFY(!survey.others()[0].target);
    QVERIFY(records.gone().isEmpty());
}

void ArchiveSurveyTest::whatIsGoneIsTold_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<bool>("isTold");
    QTest::newRow("written") << Change([](auto&, auto&) {}) << true;
    QTest::newRow("written by an earlier run")
        << Change([](auto&, DocumentRecord& record) { record.target.swap(record.earlier); })
        << true;
    QTest::newRow("never written")
        << Change([](auto&, DocumentRecord& record) { record.target.reset(); }) << false;
    QTest::newRow("written, and gone as well") << Change([](ArchiveCommandLine& line, auto&) {
        QFile::remove(line.settings.targetOf("a.xml"));
    }) << false;
    QTest::newRow("written, and a link that leads nowhere now")
        << Change([](ArchiveCommandLine& line, auto&) {
               QFile::remove(line.settings.targetOf("a.xml"));
               QFile::link("/no/file", line.settings.targetOf("a.xml"));
           })
        << true;
}

void ArchiveSurveyTest::whatIsGoneIsTold()
{
    QFETCH(Change, change);
    QFETCH(bool, isTold);
    DocumentRecord record = converted();
    change(m_line, record);
    report(record);
    QVERIFY(QFile::remove(path("source/a.xml")));
    ArchiveHistory before(m_line.settings);
    RunRecords records(before, false);
    ArchiveSurvey survey(m_line, before);
    look(survey, records, before);
    QVERIFY(survey.documents().empty() && survey.others().empty());
    QCOMPARE(records.gone().contains("a.xml"), isTold);
    QCOMPARE(records.all().contains("a.xml"), isTold);
}

QTEST_GUILESS_MAIN(ArchiveSurveyTest)

#include "ArchiveSurveyTest.moc"

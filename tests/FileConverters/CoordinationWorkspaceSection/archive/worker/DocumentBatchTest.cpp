#include "FileConverters/CoordinationWorkspaceSection/archive/worker/DocumentBatch.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/report/ArchiveReport.h"
#include "tests/support/TestFolder.h"

#include <QtTest>

#include <cerrno>

#include <dlfcn.h>
#include <pthread.h>
#include <sys/stat.h>

namespace {

constexpr int PLENTY = 1000;

int threadsLeft = PLENTY;

} // namespace

/** Stands in for the C library's in the whole program. */
extern "C" __attribute__((visibility("default"))) int pthread_create(pthread_t* thread,
                                                                     const pthread_attr_t* attr,
                                                                     void* (*routine)(void*),
                                                                     void* arg) noexcept
{
    if (threadsLeft == 0) {
        return EAGAIN;
    }
    --threadsLeft;
    using Create = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    return reinterpret_cast<Create>(dlsym(RTLD_NEXT, "pthread_create"))(thread, attr, routine, arg);
}

/** What came back from other machines; what is converted here is tested on the programs. */
class DocumentBatchTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void whatIsAsToldIsTakenIn();
    void whatIsNotAsToldStaysToBeDone_data();
    void whatIsNotAsToldStaysToBeDone();
    void aTrialTakesItsWord();
    void aFileFromAnotherFileSystemIsTakenIn();
    void fewThreadsTakeInAsMuch_data();
    void fewThreadsTakeInAsMuch();
    void whatStandsInItsPlaceByThenIsKept();
    void aReportThatCannotBeWrittenIsToldWithNothingLost();

private:
    QString path(const QString& name) const { return m_folder->path(name); }
    ReturnedDocument returned() const;

    std::unique_ptr<TestFolder> m_folder;
    ArchiveSettings m_settings;
};

void DocumentBatchTest::init()
{
    m_folder = std::make_unique<TestFolder>();
    m_settings = {};
    m_settings.source = path("source");
    m_settings.target = path("target");
    m_settings.report = m_settings.usualReport();
    QVERIFY(QDir().mkpath(m_settings.folder()));
    m_folder->write("source/sub/a.xml", "before");
    m_folder->write("returned", "after");
    QVERIFY(QFile::setPermissions(path("source/sub/a.xml"), QFile::ReadUser | QFile::WriteUser));
}

ReturnedDocument DocumentBatchTest::returned() const
{
    ReturnedDocument document;
    document.document = {QStringLiteral("sub/a.xml"), 6, false, false, {}};
    document.output = path("returned");
    document.told.path = document.document.path;
    document.told.outcome = DocumentRecord::CONVERTED;
    document.told.source = FileIdentity::of(path("source/sub/a.xml"));
    document.told.target = FileIdentity::of(path("returned"));
    return document;
}

void DocumentBatchTest::whatIsAsToldIsTakenIn()
{
    const auto records = acceptBatch(m_settings, {returned()});
    QVERIFY(records);
    QCOMPARE(records->size(), std::size_t(1));
    QCOMPARE(m_folder->read("target/sub/a.xml"), QByteArray("after"));
    QVERIFY(!QFile::exists(path("returned")));
    struct stat before = {};
    struct stat after = {};
    QCOMPARE(stat(qPrintable(path("source/sub/a.xml")), &before), 0);
    QCOMPARE(stat(qPrintable(path("target/sub/a.xml")), &after), 0);
    QCOMPARE(after.st_mode, before.st_mode);
    QCOMPARE(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
    for (const QString& report : {m_settings.report, m_settings.pendingReport()}) {
        QVERIFY(ArchiveReport::read(report)->value("sub/a.xml").tellsTheSameAs(records->front()));
    }
}

void DocumentBatchTest::whatIsNotAsToldStaysToBeDone_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("the output has other bytes") << "returned" << QByteArray("afteR");
    QTest::newRow("the output was cut off") << "returned" << QByteArray("aft");
    QTest::newRow("the document has changed since") << "source/sub/a.xml" << QByteArray("beforE");
}

void DocumentBatchTest::whatIsNotAsToldStaysToBeDone()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, bytes);
    const ReturnedDocument wrong = returned();
    m_folder->write(file, bytes);
    ReturnedDocument missing = wrong;
    missing.output.clear();
    for (const ReturnedDocument& document : {wrong, missing}) {
        const auto records = acceptBatch(m_settings, {document});
        QVERIFY(records);
        QVERIFY(records->empty());
        QVERIFY(!QFile::exists(path("target/sub/a.xml")));
        QVERIFY(!QFile::exists(m_settings.report));
    }
    // No unfinished file is left, either.
    QVERIFY(QDir(path("target/sub")).entryList(QDir::Files | QDir::Hidden).isEmpty());
}

void DocumentBatchTest::aTrialTakesItsWord()
{
    m_settings.staging = path("staging");
    ReturnedDocument document = returned();
    document.output.clear();
    const auto records = acceptBatch(m_settings, {document});
    QVERIFY(records);
    QCOMPARE(records->size(), std::size_t(1));
    QVERIFY(!QFile::exists(path("target/sub")));
    QVERIFY(!QFile::exists(m_settings.report));
}

void DocumentBatchTest::aFileFromAnotherFileSystemIsTakenIn()
{
    QTemporaryDir other(QStringLiteral("/dev/shm/DocumentBatchTest-XXXXXX"));
    struct stat here = {};
    struct stat there = {};
    if (!other.isValid() || stat(qPrintable(other.path()), &there) != 0 ||
        stat(qPrintable(m_folder->path()), &here) != 0 || here.st_dev == there.st_dev) {
        QSKIP("There is no other file system.");
    }
    ReturnedDocument document = returned();
    document.output = other.filePath("returned");
    QVERIFY(QFile::copy(path("returned"), document.output));
    const auto records = acceptBatch(m_settings, {document});
    QVERIFY(records && records->size() == 1);
    QCOMPARE(m_folder->read("target/sub/a.xml"), QByteArray("after"));
}

void DocumentBatchTest::fewThreadsTakeInAsMuch_data()
{
    QTest::addColumn<int>("left");
    QTest::newRow("none") << 0;
    QTest::newRow("one") << 1;
}

void DocumentBatchTest::fewThreadsTakeInAsMuch()
{
    QFETCH(int, left);
    std::vector<ReturnedDocument> documents;
    for (const char* name : {"a.xml", "b.xml", "c.xml"}) {
        ReturnedDocument document = returned();
        document.document.path = document.told.path = name;
        document.output = path("returned-") + name;
        m_folder->write(QStringLiteral("source/") + name, "before");
        QVERIFY(QFile::copy(path("returned"), document.output));
        documents.push_back(document);
    }

    threadsLeft = left;
    const auto records = acceptBatch(m_settings, documents);
    const int stillLeft = threadsLeft;
    threadsLeft = PLENTY;

    QCOMPARE(stillLeft, 0);
    QVERIFY(records);
    QCOMPARE(records->size(), documents.size());
    for (const DocumentRecord& record : *records) {
        QCOMPARE(record.outcome, DocumentRecord::CONVERTED);
        QCOMPARE(m_folder->read("target/" + record.path), QByteArray("after"));
    }
}

void DocumentBatchTest::whatStandsInItsPlaceByThenIsKept()
{
    m_folder->write("target/sub/a.xml", "mine");
    const auto records = acceptBatch(m_settings, {returned()});
    QVERIFY(records && records->size() == 1);
    QCOMPARE(records->front().outcome, DocumentRecord::REFUSED);
    QCOMPARE(records->front().reason, QStringLiteral("target-exists"));
    QCOMPARE(m_folder->read("target/sub/a.xml"), QByteArray("mine"));
}

void DocumentBatchTest::aReportThatCannotBeWrittenIsToldWithNothingLost()
{
    QVERIFY(QDir().mkpath(m_settings.pendingReport()));
    QVERIFY(!acceptBatch(m_settings, {returned()}));
    QVERIFY(!QFile::exists(path("target/sub/a.xml")));
}

QTEST_GUILESS_MAIN(DocumentBatchTest)
#include "DocumentBatchTest.moc"

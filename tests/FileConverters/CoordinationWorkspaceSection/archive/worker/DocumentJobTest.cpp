#include "FileConverters/CoordinationWorkspaceSection/archive/worker/DocumentJob.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ArchiveSettings.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/processes/BoundedServer.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/Sanitizer.h"
#include "tests/support/TestFolder.h"

#include <QtTest>

#include <QFile>

#include <array>
#include <cerrno>
#include <cstring>
#include <new>
#include <optional>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

Q_DECLARE_METATYPE(DocumentRecord::Outcome)
Q_DECLARE_METATYPE(std::optional<QByteArray>)
Q_DECLARE_METATYPE(timespec)

namespace {

constexpr timespec BEFORE{1000000000, 500};

QString testFile(const char* path)
{
    return QFINDTESTDATA(path);
}

// It gathers each of its systems, and its names are known.
QByteArray sound()
{
    QFile file(testFile("../../cases/one_system/input.xml"));
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("the document of the test cannot be read");
    }
    return file.readAll();
}

QByteArray edited(const QByteArray& from, const QByteArray& to)
{
    QByteArray document = sound();
    if (!document.contains(from)) {
        qFatal("nothing to edit: %s", from.constData());
    }
    return document.replace(from, to);
}

// It is copied rather than converted.
QByteArray current()
{
    return edited("version=\"0.2\"", "version=\"0.3\"");
}

QString write(const TestFolder& folder, const QByteArray& document)
{
    folder.write("document.xml", document);
    return folder.path("document.xml");
}

DocumentRecord judged(const QString& path)
{
    const auto record = DocumentRecord::fromLine(DocumentJob::answerOfReader(path.toUtf8()));
    if (!record) {
        qFatal("the reader answered no record");
    }
    return *record;
}

QByteArray compared(const QString& before, const QString& after)
{
    return DocumentJob::answerOfReader(before.toUtf8() + '\0' + after.toUtf8());
}

// The folder has the document, and gets what becomes of it.
ArchiveSettings settingsFor(const TestFolder& folder)
{
    ArchiveSettings settings;
    settings.source = folder.path("source");
    settings.target = folder.path("target");
    settings.memoryBytes = 0;
    return settings;
}

QStringList namesIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System |
                                  QDir::NoDotAndDotDot);
}

DocumentRecord worked(const ArchiveSettings& settings, const BoundedServer::Work& work)
{
    PlannedDocument document;
    document.path = "document.xml";
    BoundedServer reader(work);
    DocumentJob job(settings, document, reader);
    job.run();
    job.commit();
    return job.record();
}

void setTime(const QString& path, const timespec& time)
{
    const std::array<timespec, 2> times{time, time}; // of the last access, of the last change
    if (utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times.data(), 0) != 0) {
        qFatal("the document's time cannot be set");
    }
}

} // namespace

class DocumentJobTest : public QObject
{
    Q_OBJECT

private slots:
    void readerJudgesADocument_data();
    void readerJudgesADocument();
    void readerTellsOfAPlaceInABrokenDocument();
    void readerCannotReadWhatIsGone();
    void lossesOfOneKindAreToldOnce();
    void readerFindsNothingInARightConversion();
    void readerTellsTheFirstDifference();
    void readerCannotCompareWithWhatIsGone();
    void documentThatChangesWhileItIsReadIsNotWritten_data();
    void documentThatChangesWhileItIsReadIsNotWritten();
    void documentThatIsNoLongerTheOneThatWasReadIsNotCopied_data();
    void documentThatIsNoLongerTheOneThatWasReadIsNotCopied();
    void documentThatIsGoneIsNotAskedFor();
    void outputThatFindsNoPlaceIsToldOf();
    void copyThatFindsNoRoomIsToldOf();
    void copyThatCannotBeOpenedIsToldOf();
    void outputThatLosesItsFileIsNotWritten();
    void outputThatCannotBeVerifiedWithinItsLimitsIsNotWritten();
};

void DocumentJobTest::readerJudgesADocument_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<DocumentRecord::Outcome>("outcome");
    QTest::addColumn<QString>("reason");
    QTest::addColumn<QStringList>("losses");

    const QByteArray version = "version=\"0.2\"";
    const QByteArray broken = "<coordinated_data_root version=\"0.2\">";
    QTest::newRow("nothing is lost") << sound() << DocumentRecord::CONVERTED << "" << QStringList();
    QTest::newRow("current already")
        << edited(version, "version=\"0.3\"") << DocumentRecord::CURRENT << "" << QStringList();
    QTest::newRow("a loss") << edited("name=\"robust\"", "name=\"Robust\"") << DocumentRecord::LOSSY
                            << "" << QStringList("profile-name-emptied");
    QTest::newRow("older than what is known to convert")
        << edited(version, "version=\"0.05\"") << DocumentRecord::LOSSY << ""
        << QStringList("too-old");
    QTest::newRow("newer than what is known")
        << edited(version, "version=\"0.4\"") << DocumentRecord::REFUSED << "too-new"
        << QStringList();
    QTest::newRow("a profile without a UUID")
        << edited("profile id=\"11111111-1111-4111-8111-111111111111\"", "profile id=\"7\"")
        << DocumentRecord::FAILED << "invalid-profile-id" << QStringList();
    QTest::newRow("a workspace that broke off")
        << broken << DocumentRecord::FAILED << "not-well-formed" << QStringList();
    QTest::newRow("something else that is no XML")
        << QByteArray("<html>\n<p>Hi</html>") << DocumentRecord::REFUSED << "no-workspace"
        << QStringList();
    QTest::newRow("another document") << QByteArray("<html><body>Set list</body></html>")
                                      << DocumentRecord::REFUSED << "no-workspace" << QStringList();
    QTest::newRow("two sections") << QByteArray(
                                         "<a><coordinated_data_root/><coordinated_data_root/></a>")
                                  << DocumentRecord::REFUSED << "several-sections" << QStringList();
}

void DocumentJobTest::readerJudgesADocument()
{
    QFETCH(QByteArray, document);
    QFETCH(DocumentRecord::Outcome, outcome);
    QFETCH(QString, reason);
    QFETCH(QStringList, losses);
    const TestFolder folder;

    const DocumentRecord record = judged(write(folder, document));

    QCOMPARE(record.outcome, outcome);
    QCOMPARE(record.reason, reason);
    QCOMPARE(record.text.isEmpty(), reason.isEmpty());
    QStringList kinds;
    for (const LossSummary& loss : record.losses) {
        kinds.append(loss.kind);
    }
    QCOMPARE(kinds, losses);
}

void DocumentJobTest::readerTellsOfAPlaceInABrokenDocument()
{
    const TestFolder folder;
    const QString path = write(folder, "<coordinated_data_root>\n\n<a></b>");
    QVERIFY2(judged(path).text.startsWith("line 3: "), qPrintable(judged(path).text));
}

void DocumentJobTest::readerCannotReadWhatIsGone()
{
    const TestFolder folder;
    const DocumentRecord record = judged(folder.path("gone.xml"));
    QCOMPARE(record.outcome, DocumentRecord::FAILED);
    QCOMPARE(record.reason, QString("not-readable"));
}

void DocumentJobTest::lossesOfOneKindAreToldOnce()
{
    const TestFolder folder;
    const QString path = write(folder, edited("<compat_profiles>", "<compat_profiles>\n<x/><x/>"));

    const DocumentRecord record = judged(path);

    QCOMPARE(record.outcome, DocumentRecord::LOSSY);
    QCOMPARE(record.losses.size(), std::size_t(1));
    const LossSummary& loss = record.losses.front();
    QCOMPARE(loss.kind, QString("unread-element"));
    QCOMPARE(loss.count, 2);
    QCOMPARE(loss.line, 1 + sound().left(sound().indexOf("<compat_profiles>")).count('\n') + 1);
    QCOMPARE(loss.path, QString("/coordinated_data_root/compat_profiles/x[1]"));
    QVERIFY(!loss.text.isEmpty());
}

void DocumentJobTest::readerFindsNothingInARightConversion()
{
    QCOMPARE(compared(testFile("../../cases/one_system/input.xml"),
                      testFile("../../cases/one_system/output.xml")),
             QByteArray());
}

void DocumentJobTest::readerTellsTheFirstDifference()
{
    const TestFolder folder;
    QFile file(testFile("../../cases/one_system/output.xml"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QByteArray output = file.readAll();
    const int at = output.indexOf("version=\"0.3\"");
    QVERIFY(at >= 0);
    const int line = 1 + output.left(at).count('\n');
    output.replace(at, 13, "version=\"0.2\"");

    const QByteArray told =
        compared(testFile("../../cases/one_system/input.xml"), write(folder, output));

    const QByteArray place =
        "line " + QByteArray::number(line) + ", /coordinated_data_root/@version: ";
    QVERIFY2(told.startsWith(place) && told.size() > place.size(), told.constData());
}

void DocumentJobTest::readerCannotCompareWithWhatIsGone()
{
    const TestFolder folder;
    QVERIFY(compared(testFile("../../cases/one_system/input.xml"), folder.path("gone.xml"))
                .startsWith("it cannot be compared"));
}

void DocumentJobTest::documentThatChangesWhileItIsReadIsNotWritten_data()
{
    QTest::addColumn<timespec>("after");
    QTest::addColumn<bool>("isRewritten");
    QTest::addColumn<DocumentRecord::Outcome>("outcome");
    QTest::addColumn<QString>("reason");

    QTest::newRow("no change") << BEFORE << false << DocumentRecord::CURRENT << "";
    QTest::newRow("within the second") << timespec{BEFORE.tv_sec, BEFORE.tv_nsec + 1} << false
                                       << DocumentRecord::FAILED << "changed";
    QTest::newRow("by a whole second") << timespec{BEFORE.tv_sec + 1, BEFORE.tv_nsec} << false
                                       << DocumentRecord::FAILED << "changed";
    QTest::newRow("to an earlier time") << timespec{BEFORE.tv_sec - 1, BEFORE.tv_nsec} << false
                                        << DocumentRecord::FAILED << "changed";
    // The copy is not what was hashed, either.
    QTest::newRow("other bytes") << timespec{BEFORE.tv_sec + 1, BEFORE.tv_nsec} << true
                                 << DocumentRecord::FAILED << "changed";
}

void DocumentJobTest::documentThatChangesWhileItIsReadIsNotWritten()
{
    QFETCH(timespec, after);
    QFETCH(bool, isRewritten);
    QFETCH(DocumentRecord::Outcome, outcome);
    QFETCH(QString, reason);
    const TestFolder folder;
    folder.write("source/document.xml", current());
    setTime(folder.path("source/document.xml"), BEFORE);

    const DocumentRecord record = worked(settingsFor(folder), [&](const QByteArray& request) {
        QByteArray answer = DocumentJob::answerOfReader(request);
        if (isRewritten) {
            folder.write("source/document.xml", "<other/>");
        }
        setTime(folder.path("source/document.xml"), after);
        return answer;
    });

    QCOMPARE(record.outcome, outcome);
    QCOMPARE(record.reason, reason);
    QCOMPARE(QFile::exists(folder.path("target/document.xml")), reason.isEmpty());
}

void DocumentJobTest::documentThatIsNoLongerTheOneThatWasReadIsNotCopied_data()
{
    QTest::addColumn<std::optional<QByteArray>>("after");
    QTest::newRow("it is gone") << std::optional<QByteArray>();
    QTest::newRow("it has grown") << std::optional(current() + "\n");
    QTest::newRow("it has other bytes of the same number")
        << std::optional(current().replace("S1", "S2"));
}

// With the time that it had, so that nothing but its bytes tells.
void DocumentJobTest::documentThatIsNoLongerTheOneThatWasReadIsNotCopied()
{
    QFETCH(std::optional<QByteArray>, after);
    const TestFolder folder;
    folder.write("source/document.xml", current());
    setTime(folder.path("source/document.xml"), BEFORE);

    const DocumentRecord record = worked(settingsFor(folder), [&](const QByteArray& request) {
        QByteArray answer = DocumentJob::answerOfReader(request);
        QFile::remove(folder.path("source/document.xml"));
        if (after) {
            folder.write("source/document.xml", *after);
            setTime(folder.path("source/document.xml"), BEFORE);
        }
        return answer;
    });

    QCOMPARE(record.outcome, DocumentRecord::FAILED);
    QVERIFY(!record.reason.isEmpty() && !record.text.isEmpty());
    QVERIFY(!record.target);
    QCOMPARE(namesIn(folder.path("target")), QStringList());
}

void DocumentJobTest::documentThatIsGoneIsNotAskedFor()
{
    const TestFolder folder;

    const DocumentRecord record = worked(settingsFor(folder), [](const QByteArray& /*request*/) {
        DocumentRecord wrong;
        wrong.outcome = DocumentRecord::CURRENT;
        return wrong.toLine();
    });

    QCOMPARE(record.outcome, DocumentRecord::FAILED);
    QCOMPARE(record.reason, QString("not-readable"));
    QVERIFY(!record.source);
    QVERIFY(!QFile::exists(folder.path("target/document.xml")));
}

void DocumentJobTest::outputThatFindsNoPlaceIsToldOf()
{
    const TestFolder folder;
    folder.write("source/document.xml", current());
    folder.write("target", "mine");

    const DocumentRecord record = worked(settingsFor(folder), DocumentJob::answerOfReader);

    QCOMPARE(record.outcome, DocumentRecord::FAILED);
    QCOMPARE(record.reason, QString("not-written"));
    QVERIFY(!record.target);
    QCOMPARE(folder.read("target"), QByteArray("mine"));
}

void DocumentJobTest::copyThatFindsNoRoomIsToldOf()
{
    const TestFolder folder;
    folder.write("source/document.xml", current());

    DocumentRecord record;
    {
        const FileSizeLimit limit(static_cast<rlim_t>(current().size() - 1));
        record = worked(settingsFor(folder), DocumentJob::answerOfReader);
    }

    QCOMPARE(record.outcome, DocumentRecord::FAILED);
    QCOMPARE(record.reason, QString("not-written"));
    QVERIFY2(record.text.contains(std::strerror(EFBIG)), qPrintable(record.text));
    QVERIFY(!record.target);
    QCOMPARE(namesIn(folder.path("target")), QStringList());
}

void DocumentJobTest::copyThatCannotBeOpenedIsToldOf()
{
    if (IS_SANITIZED) {
        QSKIP("a sanitizer looks at memory through descriptors");
    }
    const TestFolder folder;
    folder.write("source/document.xml", current());
    const ArchiveSettings settings = settingsFor(folder);
    PlannedDocument document;
    document.path = "document.xml";
    BoundedServer reader(DocumentJob::answerOfReader);
    reader.ask("begin", {}); // its pipes are open from here on
    DocumentJob job(settings, document, reader);
    const int next = dup(STDERR_FILENO);
    close(next);
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit one{static_cast<rlim_t>(next) + 1, before.rlim_max}; // for the document only

    setrlimit(RLIMIT_NOFILE, &one);
    job.run();
    setrlimit(RLIMIT_NOFILE, &before);

    QCOMPARE(job.record().outcome, DocumentRecord::FAILED);
    QCOMPARE(job.record().reason, QString("not-written"));
    QVERIFY2(job.record().text.contains(std::strerror(EMFILE)), qPrintable(job.record().text));
}

void DocumentJobTest::outputThatLosesItsFileIsNotWritten()
{
    const TestFolder folder;
    folder.write("source/document.xml", sound());
    folder.writeProgram("converter",
                        "ln -sf /no/file '" + folder.path("target").toUtf8() + "'/.*.part");
    ArchiveSettings settings = settingsFor(folder);
    settings.converter = folder.path("converter");

    const DocumentRecord record = worked(settings, DocumentJob::answerOfReader);

    QCOMPARE(record.outcome, DocumentRecord::FAILED);
    QCOMPARE(record.reason, QString("not-written"));
    QVERIFY(!record.target);
    QCOMPARE(namesIn(folder.path("target")), QStringList());
}

void DocumentJobTest::outputThatCannotBeVerifiedWithinItsLimitsIsNotWritten()
{
    const TestFolder folder;
    folder.write("source/document.xml", sound());
    folder.writeProgram("converter", "cat \"$1\"");
    ArchiveSettings settings = settingsFor(folder);
    settings.converter = folder.path("converter");
    settings.verifies = true;

    const DocumentRecord record = worked(settings, [](const QByteArray& request) {
        if (request.contains('\0')) { // it names two documents, to be compared
            throw std::bad_alloc();
        }
        return DocumentJob::answerOfReader(request);
    });

    QCOMPARE(record.outcome, DocumentRecord::LIMIT);
    QCOMPARE(record.reason, QString("memory"));
    QVERIFY(!record.target);
    QCOMPARE(namesIn(folder.path("target")), QStringList());
}

QTEST_GUILESS_MAIN(DocumentJobTest)

#include "DocumentJobTest.moc"

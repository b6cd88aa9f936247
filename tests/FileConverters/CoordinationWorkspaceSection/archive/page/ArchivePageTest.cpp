#include "FileConverters/CoordinationWorkspaceSection/archive/page/ArchivePage.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <cerrno>

#include <sys/stat.h>

class ArchivePageTest : public QObject
{
    Q_OBJECT

private slots:
    void itTellsOfTheRun();
    void itTellsWhenTheRunEndedAndWhere_data();
    void itTellsWhenTheRunEndedAndWhere();
    void itCountsEachOutcome();
    void filesComeByPath();
    void aFileTellsItsOutcomeSizesAndSeconds();
    void lossesAreToldByKind();
    void whyNothingWasWrittenIsTold();
    void filesThatAreNoDocumentsAndGoneOnesAreToldApart();
    void eachOutcomeCanBeLeftOut();
    void spacingsAreToldBeforeAndAfter();
    void aReportWithoutSpacingsIsSaidToBeOne();
    void aDocumentShowsSoManySystemsAtMost();
    void aPageShowsSoManySystemsAtMost();
    void foreignTextIsTextWhereverItStands();
    void styleAndScriptAreTheOnesTheBrowserIsTold();
    void nothingIsLoaded();
    void tablesHaveCaptionsAndHeaders();
    void anEmptyArchiveHasAPage();
    void aDryRunIsCalledOne();
    void onlyPagesAreReplaced_data();
    void onlyPagesAreReplaced();
    void aPageIsReplacedWhole();
    void aPageThatCannotBeWrittenLeavesTheFormerOne();
    void aDeviceThatTakesNothingIsTold();
};

namespace {

constexpr char HOSTILE[] = "</script><img src=x onerror=alert(1)>\"'&\u202e\u2028\n]]>";
constexpr char HOSTILE_SHOWN[] =
    "</script><img src=x onerror=alert(1)>\"'&⟨U+202E⟩⟨U+2028⟩⟨U+000A⟩]]>";

DocumentRecord recordOf(const char* path, DocumentRecord::Outcome outcome, const char* reason = "")
{
    DocumentRecord record;
    record.path = QString::fromUtf8(path);
    record.outcome = outcome;
    record.reason = QString::fromUtf8(reason);
    return record;
}

ChangedSystem changedSystem(const QString& series)
{
    ChangedSystem system;
    system.zone = QStringLiteral("Hall");
    system.series = series;
    system.band = QStringLiteral("G5");
    system.nameBefore = QStringLiteral("median");
    system.nameAfter = QStringLiteral("Standard");
    system.spacings[1] = {150, 0};
    return system;
}

ArchivePageContent contentOf(const QList<DocumentRecord>& records)
{
    ArchivePageContent content;
    content.source = QStringLiteral("/home/crew/shows");
    content.target = QStringLiteral("/home/crew/converted");
    content.version = QStringLiteral("1.2.3");
    content.summary = QStringLiteral("the summary");
    content.ended = QDateTime(QDate(2026, 11, 21), QTime(17, 5, 9), Qt::OffsetFromUTC, 3600 + 1800);
    for (const DocumentRecord& record : records) {
        content.records.insert(record.path, record);
    }
    return content;
}

QByteArray pageOf(const ArchivePageContent& content)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    return ArchivePage::write(content, buffer) ? buffer.data() : QByteArray();
}

/** The page as a tree; the test fails when it is not well-formed. */
QDomElement treeOf(const QByteArray& page)
{
    QDomDocument document;
    QString error;
    int line = 0;
    if (!document.setContent(page, &error, &line)) {
        qCritical("line %d: %s", line, qPrintable(error));
        return {};
    }
    return document.documentElement();
}

/** Those of a name below the element, in order; all of them when the name is empty. */
QList<QDomElement> elements(const QDomElement& tree, const char* name = "")
{
    QList<QDomElement> found;
    for (QDomElement child = tree.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        if (*name == '\0' || child.tagName() == QLatin1String(name)) {
            found.append(child);
        }
        found.append(elements(child, name));
    }
    return found;
}

QDomElement withId(const QDomElement& tree, const char* id)
{
    for (const QDomElement& element : elements(tree)) {
        if (element.attribute(QStringLiteral("id")) == QLatin1String(id)) {
            return element;
        }
    }
    return {};
}

/** The rows of files: each is the first of a body. */
QList<QStringList> filesOf(const QDomElement& tree)
{
    QList<QStringList> files;
    const QDomElement table = withId(tree, "documents");
    for (QDomElement body = table.firstChildElement(QStringLiteral("tbody")); !body.isNull();
         body = body.nextSiblingElement(QStringLiteral("tbody"))) {
        QStringList cells;
        for (QDomElement cell = body.firstChildElement().firstChildElement(); !cell.isNull();
             cell = cell.nextSiblingElement()) {
            cells.append(cell.text());
        }
        files.append(cells);
    }
    return files;
}

QStringList textsOf(const QList<QDomElement>& list)
{
    QStringList texts;
    for (const QDomElement& element : list) {
        texts.append(element.text());
    }
    return texts;
}

} // namespace

void ArchivePageTest::itTellsOfTheRun()
{
    const QDomElement tree = treeOf(pageOf(contentOf({})));
    QCOMPARE(tree.attribute(QStringLiteral("lang")), QStringLiteral("en"));
    QCOMPARE(textsOf(elements(tree, "title")), QStringList("Archive report: shows"));
    QCOMPARE(textsOf(elements(tree, "h1")), QStringList("Archive report: shows"));
    const QStringList facts = textsOf(elements(tree, "dd"));
    QCOMPARE(facts.mid(0, 4),
             QStringList({"/home/crew/shows", "/home/crew/converted", "2026-11-21 17:05:09 +01:30",
                          "coordworkspace-convert-archive 1.2.3"}));
    QCOMPARE(elements(tree, "time")[0].attribute(QStringLiteral("datetime")),
             QStringLiteral("2026-11-21T17:05:09+01:30"));
    QVERIFY(textsOf(elements(tree, "p")).contains(QStringLiteral("the summary.")));
}

void ArchivePageTest::itTellsWhenTheRunEndedAndWhere_data()
{
    QTest::addColumn<int>("offset");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("machineReadable");
    QTest::newRow("UTC") << 0 << "2026-11-21 17:05:09 UTC"
                         << "2026-11-21T17:05:09Z";
    QTest::newRow("east") << 3600 << "2026-11-21 17:05:09 +01:00"
                          << "2026-11-21T17:05:09+01:00";
    QTest::newRow("west") << -5 * 3600 << "2026-11-21 17:05:09 -05:00"
                          << "2026-11-21T17:05:09-05:00";
}

void ArchivePageTest::itTellsWhenTheRunEndedAndWhere()
{
    QFETCH(int, offset);
    ArchivePageContent content = contentOf({});
    content.ended = QDateTime(QDate(2026, 11, 21), QTime(17, 5, 9), Qt::OffsetFromUTC, offset);
    const QList<QDomElement> times = elements(treeOf(pageOf(content)), "time");
    QCOMPARE(times.size(), 1);
    QTEST(times[0].text(), "shown");
    QTEST(times[0].attribute(QStringLiteral("datetime")), "machineReadable");
}

void ArchivePageTest::itCountsEachOutcome()
{
    DocumentRecord converted = recordOf("a", DocumentRecord::CONVERTED);
    converted.source = FileIdentity{1000, {}};
    converted.target = FileIdentity{900, {}};
    converted.isVerified = true;
    converted.systems = QVector<ChangedSystem>{changedSystem("S"), changedSystem("T")};
    DocumentRecord lossy = recordOf("b", DocumentRecord::LOSSY);
    lossy.source = FileIdentity{1234567, {}};
    lossy.losses = {{"x", 3, 1, {}, {}}, {"y", 4, 2, {}, {}}};
    ArchivePageContent content = contentOf(
        {converted, lossy, recordOf("c", DocumentRecord::FAILED, "broke-off"),
         recordOf("d", DocumentRecord::CURRENT), recordOf("e", DocumentRecord::LIMIT, "time"),
         recordOf("f", DocumentRecord::REFUSED, "too-new"),
         recordOf("g", DocumentRecord::REFUSED, "no-workspace"),
         recordOf("h", DocumentRecord::CONVERTED)});
    content.gone = {QStringLiteral("h")};
    const QDomElement tree = treeOf(pageOf(content));
    QStringList chart;
    for (const QDomElement& row : elements(elements(tree, "table")[0], "tr")) {
        const QList<QDomElement> bar = elements(row, "rect");
        chart.append(row.text() + (bar.isEmpty() ? "" : ' ' + bar[0].attribute("width")));
    }
    QCOMPARE(chart,
             QStringList({"OutcomeFilesShare", "converted112.5 % 12.5", "current112.5 % 12.5",
                          "lossy112.5 % 12.5", "refused112.5 % 12.5", "limit112.5 % 12.5",
                          "failed112.5 % 12.5", "no document112.5 % 12.5", "gone112.5 % 12.5"}));
    QCOMPARE(textsOf(elements(tree, "dd")).mid(4),
             QStringList({"1\u202f235\u202f567", "900", "7", "2", "1"}));
    QCOMPARE(withId(tree, "status").text(), QStringLiteral("8 of 8 files shown"));
}

void ArchivePageTest::filesComeByPath()
{
    const QDomElement tree = treeOf(pageOf(contentOf(
        {recordOf("b/1", DocumentRecord::CONVERTED), recordOf("a", DocumentRecord::FAILED, "x"),
         recordOf("ä", DocumentRecord::LOSSY), recordOf("b", DocumentRecord::CURRENT)})));
    QStringList paths;
    for (const QStringList& file : filesOf(tree)) {
        paths.append(file[0]);
    }
    QCOMPARE(paths, QStringList({"a", "b", "b/1", "ä"}));
}

void ArchivePageTest::aFileTellsItsOutcomeSizesAndSeconds()
{
    DocumentRecord record = recordOf("2019/a.xml", DocumentRecord::CURRENT);
    record.source = FileIdentity{12345, {}};
    record.target = FileIdentity{999, {}};
    record.seconds = 12.0345;
    const QDomElement tree =
        treeOf(pageOf(contentOf({record, recordOf("b", DocumentRecord::LIMIT, "size")})));
    QCOMPARE(filesOf(tree)[0],
             QStringList({"2019/a.xml", "current", "", "12\u202f345", "999", "12.034"}));
    QCOMPARE(filesOf(tree)[1], QStringList({"b", "limit", "size: ", "–", "–", "0.000"}));
}

void ArchivePageTest::lossesAreToldByKind()
{
    DocumentRecord record = recordOf("a", DocumentRecord::LOSSY);
    record.losses = {{"profile-name-emptied", 1, 1358, "/path", "The name goes."},
                     {"unread-text", 1200, 7, "/path", "Text goes."}};
    const QDomElement tree = treeOf(pageOf(contentOf({record})));
    QCOMPARE(textsOf(elements(tree, "li")),
             QStringList({"profile-name-emptied in line 1\u202f358: The name goes.",
                          "unread-text, 1\u202f200 times, first in line 7: Text goes."}));
}

void ArchivePageTest::whyNothingWasWrittenIsTold()
{
    DocumentRecord record = recordOf("a", DocumentRecord::FAILED, "not-well-formed");
    record.text = QStringLiteral("line 3: unexpected end");
    record.earlier = FileIdentity{1, {}};
    QCOMPARE(filesOf(treeOf(pageOf(contentOf({record}))))[0][2],
             QStringLiteral("not-well-formed: line 3: unexpected endWhat an earlier run wrote"
                            " stands."));
}

void ArchivePageTest::filesThatAreNoDocumentsAndGoneOnesAreToldApart()
{
    ArchivePageContent content =
        contentOf({recordOf("a.wav", DocumentRecord::REFUSED, "no-workspace"),
                   recordOf("b.xml", DocumentRecord::CURRENT)});
    content.records["a.wav"].source = FileIdentity{10, {}};
    content.records["b.xml"].source = FileIdentity{200, {}};
    content.records["b.xml"].target = FileIdentity{3000, {}};
    content.gone = {QStringLiteral("b.xml")};
    const QDomElement tree = treeOf(pageOf(content));
    QCOMPARE(textsOf(elements(tree, "dd")).mid(4, 2), QStringList({"10", "0"})); // bytes
    const QList<QStringList> files = filesOf(tree);
    QCOMPARE(files[0][1], QStringLiteral("no document"));
    QCOMPARE(files[1][1], QStringLiteral("gone"));
    QVERIFY(files[1][2].contains(QStringLiteral("in the archive no more")));
}

void ArchivePageTest::eachOutcomeCanBeLeftOut()
{
    const QDomElement tree = treeOf(pageOf(contentOf(
        {recordOf("a", DocumentRecord::CONVERTED), recordOf("b", DocumentRecord::CONVERTED)})));
    QStringList outcomes;
    for (const QDomElement& input : elements(tree, "input")) {
        if (input.attribute(QStringLiteral("type")) == QLatin1String("checkbox")) {
            QVERIFY(input.hasAttribute(QStringLiteral("checked")));
            outcomes.append(input.attribute(QStringLiteral("value")));
        }
    }
    QCOMPARE(outcomes, QStringList({"converted", "current", "lossy", "refused", "limit", "failed",
                                    "no-document", "gone"}));
    QCOMPARE(elements(tree, "label")[0].text().trimmed(), QStringLiteral("converted (2)"));
    QCOMPARE(elements(tree, "label")[1].text().trimmed(), QStringLiteral("current (0)"));
}

void ArchivePageTest::spacingsAreToldBeforeAndAfter()
{
    DocumentRecord record = recordOf("a.xml", DocumentRecord::CONVERTED);
    record.systems = QVector<ChangedSystem>{changedSystem("S1")};
    record.systems->front().spacings[5] = {0, 350};
    const QDomElement tree = treeOf(pageOf(contentOf({record})));
    const QDomElement details = elements(tree, "details")[0];
    QCOMPARE(elements(details, "summary")[0].text(),
             QStringLiteral("1 system changes its spacings"));
    const QList<QDomElement> rows = elements(details, "tr");
    QCOMPARE(rows.size(), 2);
    QCOMPARE(textsOf(elements(rows[0], "th")),
             QStringList({"Zone · series · band · mode · group", "Profile", "Ch-Ch", "2T3O", "2T5O",
                          "2T7O", "2T9O", "3T3O"}));
    QCOMPARE(elements(rows[1], "th")[0].text(), QStringLiteral("Hall · S1 · G5 · – · –"));
    QCOMPARE(textsOf(elements(rows[1], "td")),
             QStringList({"median → Standard", "", "150 → 0", "", "", "", "0 → 350"}));
}

void ArchivePageTest::aReportWithoutSpacingsIsSaidToBeOne()
{
    DocumentRecord none = recordOf("b", DocumentRecord::CONVERTED);
    none.systems = QVector<ChangedSystem>();
    const QDomElement tree = treeOf(pageOf(contentOf(
        {recordOf("a", DocumentRecord::CONVERTED), none, recordOf("c", DocumentRecord::CURRENT),
         recordOf("d", DocumentRecord::FAILED, "x")})));
    QStringList told;
    for (const QStringList& file : filesOf(tree)) {
        told.append(file[2]);
    }
    QCOMPARE(told,
             QStringList({"Converted by a version that did not report spacings.", "", "", "x: "}));
    QVERIFY(elements(tree, "details").isEmpty());
}

void ArchivePageTest::aDocumentShowsSoManySystemsAtMost()
{
    DocumentRecord record = recordOf("a", DocumentRecord::CONVERTED);
    record.systems = QVector<ChangedSystem>(9000, changedSystem(QStringLiteral("S")));
    const QDomElement details = elements(treeOf(pageOf(contentOf({record}))), "details")[0];
    QCOMPARE(elements(details, "summary")[0].text(),
             QStringLiteral("9\u202f000 systems change their spacings"));
    QCOMPARE(elements(details, "tr").size(), 1 + 200);
    QCOMPARE(textsOf(elements(details, "p")), QStringList("8\u202f800 more are in the report."));
}

void ArchivePageTest::aPageShowsSoManySystemsAtMost()
{
    QList<DocumentRecord> records;
    for (int i = 0; i < 102; ++i) {
        records.append(recordOf(QByteArray::number(1000 + i), DocumentRecord::CONVERTED));
        const int count = i == 99 ? 150 : 200;
        records.last().systems = QVector<ChangedSystem>(count, changedSystem(QStringLiteral("S")));
    }
    const QDomElement tree = treeOf(pageOf(contentOf(records)));
    const QList<QDomElement> details = elements(tree, "details");
    QCOMPARE(details.size(), 101);
    QCOMPARE(elements(details.last(), "tr").size(), 1 + 50);
    QVERIFY(withId(tree, "documents")
                .text()
                .endsWith(QStringLiteral("200 systems change their spacings; this page shows no"
                                         " more systems, the report tells them.")));
}

void ArchivePageTest::foreignTextIsTextWhereverItStands()
{
    DocumentRecord record = recordOf(HOSTILE, DocumentRecord::LOSSY, HOSTILE);
    record.text = HOSTILE;
    record.losses = {{HOSTILE, 2, 1, HOSTILE, HOSTILE}};
    ChangedSystem system;
    system.zone = system.series = system.band = system.txProfile = system.inclGroup = HOSTILE;
    system.nameBefore = system.nameAfter = HOSTILE;
    system.spacings[0] = {1, 2};
    record.systems = QVector<ChangedSystem>{system};
    ArchivePageContent content = contentOf({record});
    content.source = content.target = content.summary = content.version = HOSTILE;
    const QByteArray page = pageOf(content);
    const QDomElement tree = treeOf(page);
    QVERIFY(elements(tree, "img").isEmpty());
    QCOMPARE(elements(tree, "script").size(), 1);
    QCOMPARE(page.count("</script"), 1);
    const QString shown = QString::fromUtf8(HOSTILE_SHOWN);
    QCOMPARE(filesOf(tree)[0][0], shown);
    QCOMPARE(elements(withId(tree, "documents"), "details")[0].text().count(shown), 8);
    QCOMPARE(elements(tree, "li")[0].text().count(shown), 2);
    QCOMPARE(elements(tree, "dd")[0].text(), shown);
    QVERIFY(!QString::fromUtf8(page).contains(QChar(0x202E)));
}

void ArchivePageTest::styleAndScriptAreTheOnesTheBrowserIsTold()
{
    const QByteArray page = pageOf(contentOf({}));
    const auto hashOf = [&](const QByteArray& name) {
        const int begin = page.indexOf('<' + name + '>') + name.size() + 2;
        const QByteArray text = page.mid(begin, page.indexOf("</" + name + '>') - begin);
        return "'sha256-" + QCryptographicHash::hash(text, QCryptographicHash::Sha256).toBase64() +
               "'";
    };
    QString policy;
    for (const QDomElement& meta : elements(treeOf(page), "meta")) {
        if (meta.attribute(QStringLiteral("http-equiv")) == "Content-Security-Policy") {
            policy = meta.attribute(QStringLiteral("content"));
        }
    }
    QCOMPARE(policy, QString("default-src 'none'; style-src " + hashOf("style") + "; script-src " +
                             hashOf("script") +
                             "; base-uri 'none'; form-action 'none';"
                             " require-trusted-types-for 'script'"));
    QCOMPARE(page.count("<style"), 1);
    QCOMPARE(page.count("<script"), 1);
}

void ArchivePageTest::nothingIsLoaded()
{
    DocumentRecord record = recordOf("a", DocumentRecord::CONVERTED);
    record.systems = QVector<ChangedSystem>{changedSystem("S")};
    const QByteArray page = pageOf(contentOf({record}));
    for (const QDomElement& element : elements(treeOf(page))) {
        for (const char* attribute : {"src", "href", "style", "srcset", "action", "data"}) {
            QVERIFY2(!element.hasAttribute(QLatin1String(attribute)), attribute);
        }
    }
    for (const char* loading : {"url(", "@import", "://", "fetch", "innerHTML", "eval"}) {
        QVERIFY2(!page.contains(loading), loading);
    }
}

void ArchivePageTest::tablesHaveCaptionsAndHeaders()
{
    DocumentRecord record = recordOf("a", DocumentRecord::CONVERTED);
    record.systems = QVector<ChangedSystem>{changedSystem("S")};
    const QDomElement tree = treeOf(pageOf(contentOf({record})));
    const QList<QDomElement> tables = elements(tree, "table");
    QCOMPARE(tables.size(), 3);
    for (const QDomElement& table : tables) {
        QCOMPARE(table.firstChildElement().tagName(), QStringLiteral("caption"));
        QVERIFY(!table.firstChildElement().text().isEmpty());
        for (const QDomElement& header : elements(table, "th")) {
            const bool isInHead =
                header.parentNode().parentNode().toElement().tagName() == QLatin1String("thead");
            QCOMPARE(header.attribute(QStringLiteral("scope")), QString(isInHead ? "col" : "row"));
        }
    }
}

void ArchivePageTest::anEmptyArchiveHasAPage()
{
    const QDomElement tree = treeOf(pageOf(contentOf({})));
    QVERIFY(filesOf(tree).isEmpty());
    QCOMPARE(withId(tree, "status").text(), QStringLiteral("0 of 0 files shown"));
}

void ArchivePageTest::aDryRunIsCalledOne()
{
    ArchivePageContent content = contentOf({});
    QVERIFY(!treeOf(pageOf(content)).text().contains(QStringLiteral("dry run")));
    content.isTrial = true;
    QVERIFY(treeOf(pageOf(content)).text().contains(QStringLiteral("dry run")));
}

void ArchivePageTest::onlyPagesAreReplaced_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<bool>("mayBeReplaced");
    const QByteArray page = pageOf(contentOf({}));
    QTest::newRow("an empty file") << QByteArray("") << true;
    QTest::newRow("a page") << page << true;
    QTest::newRow("the page of another version")
        << QByteArray(page).replace("archive 1.2.3", "archive 9") << true;
    QTest::newRow("another page") << QByteArray("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n")
                                  << false;
    QTest::newRow("the first bytes of a page") << page.left(20) << false;
    QTest::newRow("a report") << QByteArray("{\"format\":1}") << false;
}

void ArchivePageTest::onlyPagesAreReplaced()
{
    QFETCH(QByteArray, contents);
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("page")));
    QVERIFY(ArchivePage::mayStandIn(file.fileName()));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(contents);
    file.close();
    QTEST(ArchivePage::mayStandIn(file.fileName()), "mayBeReplaced");
    QVERIFY(!ArchivePage::mayStandIn(folder.path()));
    QVERIFY(!ArchivePage::mayStandIn(QStringLiteral("/dev/null")));
}

void ArchivePageTest::aPageIsReplacedWhole()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("page.html"));
    const ArchivePageContent first = contentOf({});
    const ArchivePageContent second = contentOf({recordOf("a", DocumentRecord::CURRENT)});
    const mode_t mask = umask(027);
    QVERIFY(ArchivePage::replace(file, first));
    QVERIFY(ArchivePage::replace(file, second));
    umask(mask);
    QFile page(file);
    QVERIFY(page.open(QIODevice::ReadOnly));
    QCOMPARE(page.readAll(), pageOf(second));
    struct stat status = {};
    QCOMPARE(stat(QFile::encodeName(file).constData(), &status), 0);
    QCOMPARE(status.st_mode & 0777, 0640U);
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList("page.html"));
}

void ArchivePageTest::aPageThatCannotBeWrittenLeavesTheFormerOne()
{
    const QTemporaryDir folder;
    errno = 0;
    QVERIFY(!ArchivePage::replace(folder.filePath(QStringLiteral("none/page")), contentOf({})));
    QCOMPARE(errno, ENOENT);
    // A folder stands there.
    QVERIFY(QDir(folder.path()).mkpath(QStringLiteral("page/inside")));
    QVERIFY(!ArchivePage::replace(folder.filePath(QStringLiteral("page")), contentOf({})));
    QCOMPARE(errno, EISDIR);
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList());
}

void ArchivePageTest::aDeviceThatTakesNothingIsTold()
{
    QFile full(QStringLiteral("/dev/full"));
    QVERIFY(full.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    QVERIFY(!ArchivePage::write(contentOf({}), full));
}

QTEST_GUILESS_MAIN(ArchivePageTest)

#include "ArchivePageTest.moc"

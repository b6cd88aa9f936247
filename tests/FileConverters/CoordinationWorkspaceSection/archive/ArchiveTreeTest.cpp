#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveTree.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/files/AtomicFile.h"

#include "tests/support/TestFolder.h"

#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

class ArchiveTreeTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void documentsComeByPathWithTheirSizes();
    void whatIsNoDocumentIsToldWithItsReason_data();
    void whatIsNoDocumentIsToldWithItsReason();
    void namesThatAreNoUtf8LookDifferent_data();
    void namesThatAreNoUtf8LookDifferent();
    void lookAlikesAreToldApart();
    void theBeginningTellsWhatMayBeXml_data();
    void theBeginningTellsWhatMayBeXml();
    void whatRunsKeepIsNoPartOfAnArchive();
    void whatIsLargerThanQtReadsIsTold();
    void aFolderThatIsNotThereIsTold();
    void unfinishedFilesAreSwept();
    void foldersOfOtherRunsAreNotSwept();

private:
    QString path(const QString& name) const { return m_folder->path(name); }
    void write(const QString& name, const QByteArray& bytes = "<a/>") const
    {
        m_folder->write(name, bytes);
    }
    /** The name of a file that was never finished. */
    QString unfinished(const QString& folder) const;
    std::vector<ArchiveEntry> found() const { return ArchiveTree::find(m_root); }

    std::unique_ptr<TestFolder> m_folder;
    QString m_root;
};

void ArchiveTreeTest::init()
{
    m_folder = std::make_unique<TestFolder>();
    m_root = m_folder->path();
}

QString ArchiveTreeTest::unfinished(const QString& folder) const
{
    const auto file = AtomicFile::begin(path(folder), "a.xml");
    return QFileInfo(file->partPath()).fileName();
}

void ArchiveTreeTest::documentsComeByPathWithTheirSizes()
{
    write("b.xml", "<bb/>");
    write("a/z.xml", "<z/>");
    write("a/b/c.txt", "<c />");
    write(".hidden/.d", "<d/>");
    QVERIFY(QDir().mkpath(path("empty/er")));
    QVERIFY(QFile::link("../b.xml", path("a/link.xml")));
    QStringList told;
    for (const ArchiveEntry& entry : found()) {
        QCOMPARE(entry.reason, QString());
        told.append(QString("%1 %2").arg(entry.path).arg(entry.size));
    }
    QCOMPARE(told,
             QStringList({".hidden/.d 4", "a/b/c.txt 5", "a/link.xml 5", "a/z.xml 4", "b.xml 5"}));
}

void ArchiveTreeTest::whatIsNoDocumentIsToldWithItsReason_data()
{
    QTest::addColumn<QString>("target"); // of a link
    QTest::addColumn<QString>("reason");
    QTest::newRow("a link to a folder") << "/usr"
                                        << "link-to-folder";
    QTest::newRow("a link to the archive") << "."
                                           << "link-to-folder";
    QTest::newRow("a link that leads nowhere") << "/no/file"
                                               << "broken-link";
    QTest::newRow("a link to itself") << "entry"
                                      << "no-file";
    QTest::newRow("a device") << "/dev/null"
                              << "no-file";
    QTest::newRow("a pipe") << ""
                            << "no-file";
}

void ArchiveTreeTest::whatIsNoDocumentIsToldWithItsReason()
{
    QFETCH(QString, target);
    const QByteArray entry = QFile::encodeName(path("entry"));
    QCOMPARE(target.isEmpty() ? mkfifo(entry.constData(), 0600)
                              : symlink(target.toUtf8().constData(), entry.constData()),
             0);
    const std::vector<ArchiveEntry> entries = found();
    QCOMPARE(entries.size(), std::size_t(1));
    QCOMPARE(entries[0].path, QString("entry"));
    QTEST(entries[0].reason, "reason");
    QVERIFY(!entries[0].text.isEmpty());
    QCOMPARE(entries[0].outcome, DocumentRecord::REFUSED);
}

void ArchiveTreeTest::namesThatAreNoUtf8LookDifferent_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("told");
    const QString lost(QChar::ReplacementCharacter);
    QTest::newRow("Latin-1") << QByteArray("caf\xe9.xml") << "caf" + lost + "E9.xml";
    QTest::newRow("cut off") << QByteArray("caf\xc3") << "caf" + lost + "C3";
    QTest::newRow("longer than needed") << QByteArray("\xc0\xafz") << lost + "C0" + lost + "AFz";
    QTest::newRow("around what is UTF-8") << QByteArray("\xff\xf0\x9f\x8e\xa4\xff")
                                          << lost + "FF" + QString::fromUtf8("🎤") + lost + "FF";
    QTest::newRow("a byte-order mark")
        << QByteArray("\xef\xbb\xbfz") << lost + "EF" + lost + "BB" + lost + "BFz";
}

void ArchiveTreeTest::namesThatAreNoUtf8LookDifferent()
{
    QFETCH(QByteArray, name);
    const QByteArray file = QFile::encodeName(m_root) + '/' + name;
    QCOMPARE(symlink("/dev/null", file.constData()), 0);
    const std::vector<ArchiveEntry> entries = found();
    QCOMPARE(unlink(file.constData()), 0); // which Qt cannot, by such a name
    QCOMPARE(entries.size(), std::size_t(1));
    QTEST(entries[0].path, "told");
    QCOMPARE(entries[0].reason, QString("name-not-utf8"));
}

// What a broken name shows as is a name that a file may have.
void ArchiveTreeTest::lookAlikesAreToldApart()
{
    const QByteArray broken = QFile::encodeName(m_root) + "/\xff.xml";
    write("\ufffdFF.xml", "<a/>");
    write("\ufffdFF.xml\ufffd", "<a/>");
    QCOMPARE(symlink("/dev/null", broken.constData()), 0);
    const std::vector<ArchiveEntry> entries = found();
    QCOMPARE(unlink(broken.constData()), 0); // which Qt cannot, by such a name
    QCOMPARE(entries.size(), std::size_t(3));
    QCOMPARE(entries[0].path, QString("\ufffdFF.xml"));
    QCOMPARE(entries[0].reason, QString());
    QCOMPARE(entries[1].path, QString("\ufffdFF.xml\ufffd"));
    QCOMPARE(entries[1].reason, QString());
    QCOMPARE(entries[2].path, QString("\ufffdFF.xml\ufffd\ufffd"));
    QCOMPARE(entries[2].reason, QString("name-not-utf8"));
}

void ArchiveTreeTest::theBeginningTellsWhatMayBeXml_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("mayBe");
    const auto row = [](const char* name, const QByteArray& bytes, bool mayBe) {
        QTest::newRow(name) << bytes << mayBe;
    };
    const QByteArray endOfChunk(4096, ' ');
    const QByteArray longest(65536, '\n');
    row("nothing", "", false);
    row("blanks", " \t\r\n", false);
    row("a tag", "<", true);
    row("blanks and a tag", " \t\r\n<a/>", true);
    row("text", "a<b/>", false);
    row("UTF-8 with a mark", "\xef\xbb\xbf<a/>", true);
    row("UTF-16, low byte first", QByteArray("\xff\xfe<\0a\0/\0>\0", 10), true);
    row("UTF-16, high byte first", QByteArray("\xfe\xff\0<\0a\0/\0>", 10), true);
    row("UTF-32", QByteArray("\0\0\0<", 4), true);
    row("a picture", "\x89PNG<", false);
    row("blanks to the end of what is read at once", endOfChunk, false);
    row("a tag just behind it", endOfChunk + '<', true);
    row("a tag before it", endOfChunk.chopped(1) + "<", true);
    row("text just behind it", endOfChunk + "t<", false);
    row("blanks as far as anyone looks", longest, true);
    row("one blank less", longest.chopped(1), false);
    row("text behind all that", longest + "t", true);
    row("text at its end", longest.chopped(1) + "t", false);
}

void ArchiveTreeTest::theBeginningTellsWhatMayBeXml()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, mayBe);
    write("file", bytes);
    const std::vector<ArchiveEntry> entries = found();
    QCOMPARE(entries.size(), std::size_t(1));
    QCOMPARE(entries[0].reason, QString(mayBe ? "" : "no-workspace"));
    QCOMPARE(entries[0].size, mayBe ? bytes.size() : 0);
}

void ArchiveTreeTest::whatRunsKeepIsNoPartOfAnArchive()
{
    write(".coordworkspace/report.jsonl");
    write("deep/.coordworkspace/a.xml"); // which is somebody's folder, but no run's of this archive
    write(unfinished("."));
    write("deep/" + unfinished("deep"));
    const std::vector<ArchiveEntry> entries = found();
    QCOMPARE(entries.size(), std::size_t(1));
    QCOMPARE(entries[0].path, QString("deep/.coordworkspace/a.xml"));
}

void ArchiveTreeTest::whatIsLargerThanQtReadsIsTold()
{
    write("most.xml");
    write("more.xml");
    const qint64 most = std::numeric_limits<int>::max();
    // Such files have holes: they take no room.
    if (!QFile::resize(path("most.xml"), most) || !QFile::resize(path("more.xml"), most + 1)) {
        QSKIP("this file system takes no files of 2 GB");
    }
    const std::vector<ArchiveEntry> entries = found();
    QCOMPARE(entries.size(), std::size_t(2));
    QCOMPARE(entries[0].path, QString("more.xml"));
    QCOMPARE(entries[0].reason, QString("size"));
    QCOMPARE(entries[0].outcome, DocumentRecord::LIMIT);
    QCOMPARE(entries[1].reason, QString());
    QCOMPARE(entries[1].size, most);
}

void ArchiveTreeTest::aFolderThatIsNotThereIsTold()
{
    const std::vector<ArchiveEntry> entries = ArchiveTree::find(path("none"));
    QCOMPARE(entries.size(), std::size_t(1));
    QCOMPARE(entries[0].path, QString("."));
    QCOMPARE(entries[0].reason, QString("not-readable"));
    QCOMPARE(entries[0].outcome, DocumentRecord::FAILED);
}

void ArchiveTreeTest::unfinishedFilesAreSwept()
{
    write("deep/er/kept.xml");
    write("kept.part");
    const QStringList parts = {unfinished("."), "deep/" + unfinished("deep"),
                               "deep/er/" + unfinished("deep/er")};
    for (const QString& part : parts) {
        write(part);
    }
    QVERIFY(QDir().mkpath(path("folder/" + unfinished("deep"))));
    const QString link = "deep/" + unfinished("deep");
    QVERIFY(QFile::link(path("kept.part"), path(link)));

    ArchiveTree::sweep(m_root);
    for (const QString& part : parts) {
        QVERIFY2(!QFile::exists(path(part)), qPrintable(part));
    }
    QVERIFY(QFile::exists(path("deep/er/kept.xml")));
    QVERIFY(QFile::exists(path("kept.part")));
    QVERIFY(QFileInfo(path(link)).isSymLink()); // no run makes one
    QCOMPARE(QDir(path("folder"))
                 .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)
                 .size(),
             1);
    ArchiveTree::sweep(path("none"));
}

void ArchiveTreeTest::foldersOfOtherRunsAreNotSwept()
{
    write(".coordworkspace/report.jsonl");
    write("other/.coordworkspace/report.jsonl");
    write("another/a.xml");
    const QString mine = unfinished(".");
    const QString others = "other/" + unfinished("other");
    const QString mineToo = "another/" + unfinished("another");
    for (const QString& part : {mine, others, mineToo}) {
        write(part);
    }
    ArchiveTree::sweep(m_root);
    QVERIFY(!QFile::exists(path(mine)));
    QVERIFY(QFile::exists(path(others)));
    QVERIFY(!QFile::exists(path(mineToo)));
}

QTEST_GUILESS_MAIN(ArchiveTreeTest)

#include "ArchiveTreeTest.moc"

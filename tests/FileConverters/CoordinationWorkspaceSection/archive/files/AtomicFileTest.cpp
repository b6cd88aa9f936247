#include "FileConverters/CoordinationWorkspaceSection/archive/files/AtomicFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <cerrno>

class AtomicFileTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void itShowsOnlyWhenItIsCommitted();
    void itGoesWhenItIsNotCommitted();
    void anExistingFileIsKeptUnlessItMayBeReplaced();
    void itGetsTheOriginalsPermissionsAndTime();
    void anOriginalThatIsNotThereGivesNothing();
    void aFolderThatIsNotThereTakesNone();
    void whatIsWrittenAloneTakesOverWhatWasLeft();
    void namesOfPartsAreKnown_data();
    void namesOfPartsAreKnown();

private:
    std::unique_ptr<AtomicFile> beginWith(const QByteArray& bytes);
    QString path(const char* name) const { return m_folder->filePath(QLatin1String(name)); }
    QByteArray contents(const char* name) const;
    QStringList names() const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

void AtomicFileTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
}

std::unique_ptr<AtomicFile> AtomicFileTest::beginWith(const QByteArray& bytes)
{
    auto begun = AtomicFile::begin(m_folder->path(), QStringLiteral("file"));
    QFile part(begun->partPath());
    if (!part.open(QIODevice::WriteOnly) || part.write(bytes) != bytes.size()) {
        return nullptr;
    }
    return begun;
}

QByteArray AtomicFileTest::contents(const char* name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList AtomicFileTest::names() const
{
    return QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden);
}

void AtomicFileTest::itShowsOnlyWhenItIsCommitted()
{
    const auto begun = beginWith("new");
    QVERIFY(begun->finish());
    QCOMPARE(QFileInfo(begun->partPath()).absolutePath(), m_folder->path());
    QVERIFY(!QFile::exists(path("file")));
    QVERIFY(begun->commit(false));
    QCOMPARE(contents("file"), QByteArray("new"));
    QCOMPARE(names(), QStringList("file"));
}

void AtomicFileTest::itGoesWhenItIsNotCommitted()
{
    beginWith("new").reset();
    QCOMPARE(names(), QStringList());
}

void AtomicFileTest::anExistingFileIsKeptUnlessItMayBeReplaced()
{
    QVERIFY(beginWith("old")->commit(false));
    const auto begun = beginWith("new");
    QVERIFY(!begun->commit(false));
    QCOMPARE(errno, EEXIST);
    QCOMPARE(contents("file"), QByteArray("old"));
    QVERIFY(begun->commit(true));
    QCOMPARE(contents("file"), QByteArray("new"));
}

void AtomicFileTest::itGetsTheOriginalsPermissionsAndTime()
{
    QFile original(path("original"));
    QVERIFY(original.open(QIODevice::WriteOnly));
    const QDateTime modified = QDateTime::fromMSecsSinceEpoch(1234567890123);
    QVERIFY(original.setFileTime(modified, QFileDevice::FileModificationTime));
    QVERIFY(original.setPermissions(QFileDevice::ReadOwner | QFileDevice::ExeOwner));
    original.close();
    const auto begun = beginWith("new");
    QVERIFY(begun->finishLike(path("original")));
    QVERIFY(begun->commit(false));
    QCOMPARE(QFileInfo(path("file")).lastModified(), modified);
    QCOMPARE(QFile::permissions(path("file")), QFile::permissions(path("original")));
}

void AtomicFileTest::anOriginalThatIsNotThereGivesNothing()
{
    const auto begun = beginWith("new");
    const auto before = QFile::permissions(begun->partPath());
    errno = 0;
    QVERIFY(!begun->finishLike(path("nowhere")));
    QCOMPARE(errno, ENOENT);
    QCOMPARE(QFile::permissions(begun->partPath()), before);
}

void AtomicFileTest::aFolderThatIsNotThereTakesNone()
{
    QVERIFY(AtomicFile::begin(path("nowhere"), QStringLiteral("file")) == nullptr);
}

void AtomicFileTest::whatIsWrittenAloneTakesOverWhatWasLeft()
{
    QFile left(AtomicFile::beginAlone(m_folder->path(), QStringLiteral("file"))->partPath());
    QVERIFY(left.open(QIODevice::WriteOnly));
    left.write("half of something longer");
    left.close();
    const auto begun = AtomicFile::beginAlone(m_folder->path(), QStringLiteral("file"));
    QCOMPARE(begun->partPath(), left.fileName());
    QFile part(begun->partPath());
    QVERIFY(AtomicFile::isPart(QFileInfo(part).fileName()));
    QVERIFY(part.open(QIODevice::ReadWrite));
    QCOMPARE(part.readAll(), QByteArray());
    part.write("new");
    part.close();
    QVERIFY(begun->finish() && begun->commit(true));
    QCOMPARE(contents("file"), QByteArray("new"));
    QCOMPARE(names(), QStringList("file"));
    QVERIFY(AtomicFile::beginAlone(path("nowhere"), QStringLiteral("file")) == nullptr);
}

void AtomicFileTest::namesOfPartsAreKnown_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isPart");
    QTest::newRow("a part") << ".coordworkspace-aB3dE6.part" << true;
    QTest::newRow("the folder of a run") << ".coordworkspace" << false;
    QTest::newRow("a part of something else") << "show.xml.part" << false;
    QTest::newRow("a document") << "show.xml" << false;
}

void AtomicFileTest::namesOfPartsAreKnown()
{
    QFETCH(QString, name);
    QTEST(AtomicFile::isPart(name), "isPart");
}

QTEST_GUILESS_MAIN(AtomicFileTest)

#include "AtomicFileTest.moc"

#include "FileConverters/CoordinationWorkspaceSection/archive/files/Paths.h"

#include "tests/support/TestFolder.h"

#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

class PathsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void differentNamesLookDifferent_data();
    void differentNamesLookDifferent();
    void pathsAreRealAsFarAsTheyExist_data();
    void pathsAreRealAsFarAsTheyExist();
    void aPathThatIsNoUtf8IsNone();
    void foldersOverlap_data();
    void foldersOverlap();
    void placesOfFiles_data();
    void placesOfFiles();

private:
    QString path(const QString& name) const { return m_folder->path(name); }

    std::unique_ptr<TestFolder> m_folder;
    QString m_root;
};

void PathsTest::init()
{
    m_folder = std::make_unique<TestFolder>();
    m_root = m_folder->path();
}

void PathsTest::differentNamesLookDifferent_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isUtf8");
    const QString lost(QChar::ReplacementCharacter);
    QTest::newRow("ASCII") << QByteArray("a b/c.xml") << "a b/c.xml" << true;
    QTest::newRow("UTF-8") << QByteArray("k\u00fchl \u97f3 🎤")
                           << QString::fromUtf8("k\u00fchl \u97f3 🎤") << true;
    QTest::newRow("Latin-1") << QByteArray("caf\xe9.xml") << "caf" + lost + "E9.xml" << false;
    QTest::newRow("a surrogate") << QByteArray("\xed\xa0\x80")
                                 << lost + "ED" + lost + "A0" + lost + "80" << false;
    QTest::newRow("a byte-order mark")
        << QByteArray("\xef\xbb\xbfz") << lost + "EF" + lost + "BB" + lost + "BFz" << false;
}

void PathsTest::differentNamesLookDifferent()
{
    QFETCH(QByteArray, name);
    const std::filesystem::path path(name.constData());
    QTEST(Paths::textOf(path), "text");
    QTEST(Paths::isUtf8(path), "isUtf8");
    QCOMPARE(Paths::native(Paths::textOf(path)) == path, Paths::isUtf8(path));
}

void PathsTest::pathsAreRealAsFarAsTheyExist_data()
{
    QTest::addColumn<QString>("given"); // below the folder
    QTest::addColumn<QString>("real");
    QTest::newRow("a folder") << "/folder"
                              << "/folder";
    QTest::newRow("with a slash") << "/folder/"
                                  << "/folder";
    QTest::newRow("with dots") << "/./folder/../folder/."
                               << "/folder";
    QTest::newRow("a link") << "/link"
                            << "/folder";
    QTest::newRow("beyond a link") << "/link/not/there"
                                   << "/folder/not/there";
    QTest::newRow("dots beyond what is there") << "/link/not/../there"
                                               << "/folder/there";
    QTest::newRow("up from a link") << "/link/../other"
                                    << "/other";
    QTest::newRow("nothing there") << "/none/at/all"
                                   << "/none/at/all";
    const QString tooLong = "/" + QString(300, 'x');
    QTest::newRow("a name that no file system takes") << tooLong << tooLong;
}

void PathsTest::pathsAreRealAsFarAsTheyExist()
{
    QFETCH(QString, given);
    QFETCH(QString, real);
    QVERIFY(QDir().mkpath(path("folder")));
    QVERIFY(QFile::link("folder", path("link")));
    QCOMPARE(Paths::real(m_root + given).value(), m_root + real);
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_root));
    QCOMPARE(Paths::real(given.mid(1)).value(), m_root + real);
    QVERIFY(QDir::setCurrent(before));
}

// As a text it would be the path of something else.
void PathsTest::aPathThatIsNoUtf8IsNone()
{
    const QByteArray folder = QFile::encodeName(path("caf")) + "\xe9";
    QCOMPARE(mkdir(folder.constData(), S_IRWXU), 0);
    QCOMPARE(symlink("caf\xe9", QFile::encodeName(path("link")).constData()), 0);
    const std::optional<QString> real = Paths::real(path("link/new"));
    QCOMPARE(rmdir(folder.constData()), 0); // which Qt cannot, by such a name
    QVERIFY(!real);
}

void PathsTest::foldersOverlap_data()
{
    QTest::addColumn<QString>("one");
    QTest::addColumn<QString>("other");
    QTest::addColumn<bool>("overlap");
    QTest::newRow("the same") << "folder"
                              << "folder/" << true;
    QTest::newRow("the same by a link") << "folder"
                                        << "link" << true;
    QTest::newRow("one inside") << "folder/in"
                                << "folder" << true;
    QTest::newRow("one deep inside, not there yet") << "folder"
                                                    << "folder/in/a/b" << true;
    QTest::newRow("one inside by a link") << "link/new"
                                          << "folder" << true;
    QTest::newRow("beside") << "folder"
                            << "other" << false;
    QTest::newRow("beside with a longer name") << "folder"
                                               << "folder2" << false;
    QTest::newRow("beside, neither is there") << "none"
                                              << "none2" << false;
}

void PathsTest::foldersOverlap()
{
    QFETCH(QString, one);
    QFETCH(QString, other);
    QVERIFY(QDir().mkpath(path("folder/in")));
    QVERIFY(QDir().mkpath(path("other")));
    QVERIFY(QFile::link("folder", path("link")));
    QTEST(Paths::overlap(path(one), path(other)), "overlap");
    QTEST(Paths::overlap(path(other), path(one)), "overlap");
}

void PathsTest::placesOfFiles_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("hasPlace");
    QTest::newRow("in the folder") << "new.xml" << true;
    QTest::newRow("in a folder to be made") << "new/a/b.xml" << true;
    QTest::newRow("in a folder that is there") << "folder/in/new.xml" << true;
    QTest::newRow("in a file's place") << "file.xml" << true;
    QTest::newRow("in a link's place") << "link" << true;
    QTest::newRow("in a broken link's place") << "broken" << true;
    QTest::newRow("in a folder's place") << "folder" << false;
    QTest::newRow("in a folder's place, deeper") << "folder/in" << false;
    QTest::newRow("below a file") << "file.xml/a.xml" << false;
    QTest::newRow("below a link to a folder") << "link/a.xml" << false;
    QTest::newRow("below a broken link") << "broken/a.xml" << false;
}

void PathsTest::placesOfFiles()
{
    QVERIFY(QDir().mkpath(path("folder/in")));
    m_folder->write("file.xml", "<a/>");
    QVERIFY(QFile::link("folder", path("link")));
    QVERIFY(QFile::link("/no/file", path("broken")));
    QFETCH(QString, path);
    QTEST(Paths::hasPlaceFor(m_root, path), "hasPlace");
}

QTEST_GUILESS_MAIN(PathsTest)

#include "PathsTest.moc"

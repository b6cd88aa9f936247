#include "FileConverters/CoordinationWorkspaceSection/archive/files/FileIdentity.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

class FileIdentityTest : public QObject
{
    Q_OBJECT

private slots:
    void identityIsSizeAndHash_data();
    void identityIsSizeAndHash();
    void whatCannotBeReadHasNoIdentity_data();
    void whatCannotBeReadHasNoIdentity();
    void identitiesDifferBySizeOrHash();
    void sizeIsOneThatAFileMayHave_data();
    void sizeIsOneThatAFileMayHave();
    void onlyAnObjectIsAnIdentity();
};

void FileIdentityTest::identityIsSizeAndHash_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("sha256"); // FIPS 180-4 and its examples
    QTest::newRow("empty") << QByteArray()
                           << "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855";
    QTest::newRow("a few") << QByteArray("abc")
                           << "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";
    QTest::newRow("one") << QByteArray("a")
                         << "ca978112ca1bbdcafac231b39a23dc4da786eff8147c4e72b9807785afee48bb";
    QTest::newRow("a million")
        << QByteArray(1000000, 'a')
        << "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0";
}

void FileIdentityTest::identityIsSizeAndHash()
{
    QFETCH(QByteArray, bytes);
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write(bytes);
    file.close();
    const auto identity = FileIdentity::of(file.fileName());
    QVERIFY(identity);
    QCOMPARE(identity->size, qint64(bytes.size()));
    QTEST(identity->sha256, "sha256");
}

void FileIdentityTest::whatCannotBeReadHasNoIdentity_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("not there") << "/nowhere";
    QTest::newRow("a folder") << "/";
    QTest::newRow("fails at its first byte") << "/proc/self/mem"; // no process has that address
}

void FileIdentityTest::whatCannotBeReadHasNoIdentity()
{
    QFETCH(QString, path);
    QVERIFY(!FileIdentity::of(path));
}

void FileIdentityTest::identitiesDifferBySizeOrHash()
{
    const FileIdentity one{1, QStringLiteral("0f")};
    QVERIFY(one == (FileIdentity{1, QStringLiteral("0f")}));
    QVERIFY(one != (FileIdentity{2, QStringLiteral("0f")}));
    QVERIFY(one != (FileIdentity{1, QStringLiteral("1f")}));
}

void FileIdentityTest::sizeIsOneThatAFileMayHave_data()
{
    QTest::addColumn<QByteArray>("told");
    QTest::addColumn<qint64>("size");
    QTest::newRow("none") << QByteArray("0") << qint64(0);
    QTest::newRow("beyond 32 bits") << QByteArray("4294967296") << qint64(4294967296);
    QTest::newRow("less than nothing") << QByteArray("-1") << qint64(0);
    QTest::newRow("beyond any file") << QByteArray("1e300") << qint64(9007199254740992);
    QTest::newRow("no number") << QByteArray("\"1\"") << qint64(0);
}

void FileIdentityTest::sizeIsOneThatAFileMayHave()
{
    QFETCH(QByteArray, told);
    const QJsonObject object =
        QJsonDocument::fromJson(R"({"sha256":"0f","size":)" + told + "}").object();
    const auto identity = FileIdentity::fromJson(object);
    QVERIFY(identity);
    QTEST(identity->size, "size");
    QCOMPARE(identity->sha256, QStringLiteral("0f"));
}

void FileIdentityTest::onlyAnObjectIsAnIdentity()
{
    QVERIFY(!FileIdentity::fromJson(QJsonValue()));
    QVERIFY(!FileIdentity::fromJson(QStringLiteral("0f")));
}

QTEST_GUILESS_MAIN(FileIdentityTest)

#include "FileIdentityTest.moc"

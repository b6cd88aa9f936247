#include "FileConverters/CoordinationWorkspaceSection/archive/machines/LoginFile.h"

#include <QtTest>

class LoginFileTest : public QObject
{
    Q_OBJECT

private slots:
    void whatIsNamed_data();
    void whatIsNamed();
    void whatIsNoFileNamesNone();
};

void LoginFileTest::whatIsNamed_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("machines");
    QTest::addColumn<bool>("namesOther");
    QTest::addColumn<int>("jobsHere");
    QTest::newRow("nothing") << QByteArray() << 0 << false << 0;
    QTest::newRow("comments and blanks") << QByteArray("# one\n\n \t\n  # two") << 0 << false << 0;
    QTest::newRow("no line feed at the end") << QByteArray("one") << 1 << true << 0;
    QTest::newRow("every form of a line")
        << QByteArray("one\n4/two\nuser@three # here\n2/:\n8/ssh -p 2222 four\r\n") << 5 << true
        << 2;
    QTest::newRow("this machine only") << QByteArray("# here\n:\n") << 1 << false << 0;
    QTest::newRow("this machine only, with its jobs") << QByteArray(" 16/: \n") << 1 << false << 16;
    QTest::newRow("a machine by its address")
        << QByteArray("4/[2001:db8::1]:22\n::1\n") << 2 << true << 0;
    QTest::newRow("a group of machines") << QByteArray("@here/:") << 1 << true << 0;
    QTest::newRow("a command that ends as this machine does")
        << QByteArray("/usr/bin/ssh/:") << 1 << true << 0;
}

void LoginFileTest::whatIsNamed()
{
    QFETCH(QByteArray, text);
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write(text);
    file.close();
    const LoginFile login = LoginFile::read(file.fileName());
    QTEST(login.machines, "machines");
    QTEST(login.namesOther, "namesOther");
    QTEST(login.jobsHere, "jobsHere");
}

void LoginFileTest::whatIsNoFileNamesNone()
{
    QTemporaryDir folder;
    QCOMPARE(LoginFile::read(folder.path()).machines, 0);
    QCOMPARE(LoginFile::read(folder.filePath("nowhere")).machines, 0);
}

QTEST_GUILESS_MAIN(LoginFileTest)
#include "LoginFileTest.moc"

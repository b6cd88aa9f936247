#include "FileConverters/CoordinationWorkspaceSection/MachinesRound.h"

#include <QtTest>

class MachinesRoundTest : public QObject
{
    Q_OBJECT

private slots:
    void machinesOfAFile_data();
    void machinesOfAFile();
    void whatIsNoFileNamesNone();
};

void MachinesRoundTest::machinesOfAFile_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("count");
    QTest::newRow("nothing") << QByteArray() << 0;
    QTest::newRow("comments and blanks") << QByteArray("# one\n\n \t\n  # two") << 0;
    QTest::newRow("no line feed at the end") << QByteArray("one") << 1;
    QTest::newRow("every form of a line")
        << QByteArray("one\n4/two\nuser@three # here\n:\n8/ssh -p 2222 four\r\n") << 5;
}

void MachinesRoundTest::machinesOfAFile()
{
    QFETCH(QByteArray, text);
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write(text);
    file.close();
    QTEST(MachinesRound::countMachines(file.fileName()), "count");
}

void MachinesRoundTest::whatIsNoFileNamesNone()
{
    QTemporaryDir folder;
    QCOMPARE(MachinesRound::countMachines(folder.path()), 0);
    QCOMPARE(MachinesRound::countMachines(folder.filePath("nowhere")), 0);
}

QTEST_GUILESS_MAIN(MachinesRoundTest)
#include "MachinesRoundTest.moc"

#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveMessages.h"

#include "tests/support/CapturedStream.h"

#include <QtTest>

#include <cerrno>
#include <cstring>
#include <iostream>

class ArchiveMessagesTest : public QObject
{
    Q_OBJECT

private slots:
    void aMessageIsALine_data();
    void aMessageIsALine();
    void whatFailsIsToldWithItsReason();
    void aStopIsTold();
};

void ArchiveMessagesTest::aMessageIsALine_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("text") << "in the way: a.xml" << QByteArray("in the way: a.xml");
    QTest::newRow("letters of all kinds")
        << QString::fromUtf8("kühl 音 🎤") << QByteArray("kühl 音 🎤");
    // A name may hold what a terminal obeys.
    QTest::newRow("an escape") << "a\x1b[2Jb" << QByteArray("a\ufffd[2Jb");
    QTest::newRow("a line feed") << "a\nb" << QByteArray("a\ufffdb");
}

void ArchiveMessagesTest::aMessageIsALine()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, line);
    const CapturedStream errors(std::cerr);
    ArchiveMessages::say(text);
    QCOMPARE(errors.bytes(), "coordworkspace-convert-archive: " + line + '\n');
}

void ArchiveMessagesTest::whatFailsIsToldWithItsReason()
{
    const CapturedStream errors(std::cerr);
    errno = ENOSPC;
    QCOMPARE(ArchiveMessages::sayCannotWrite("the report"), ARCHIVE_NOT_WRITTEN);
    errno = EIO;
    QCOMPARE(ArchiveMessages::sayCannotRead("the report"), ARCHIVE_NOT_WRITTEN);
    const QByteArray begin = "coordworkspace-convert-archive: the report cannot be ";
    QCOMPARE(errors.bytes(), begin + "written: " + QByteArray(std::strerror(ENOSPC)) + '\n' +
                                 begin + "read: " + QByteArray(std::strerror(EIO)) + '\n');
}

void ArchiveMessagesTest::aStopIsTold()
{
    const CapturedStream errors(std::cerr);
    QCOMPARE(ArchiveMessages::sayStopped(), ARCHIVE_STOPPED);
    QVERIFY(errors.bytes().contains("stopped"));
}

QTEST_GUILESS_MAIN(ArchiveMessagesTest)

#include "ArchiveMessagesTest.moc"

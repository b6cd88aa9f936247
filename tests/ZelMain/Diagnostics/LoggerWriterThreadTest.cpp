#include "ZelMain/Diagnostics/LoggerWriterThread.h"

#include "ZelMain/Diagnostics/LoggerDataAccessInterface.h"

#include <QtTest>

class LoggerWriterThreadTest : public QObject
{
    Q_OBJECT

private slots:
    void writesUntilTheSourceSaysNo();
    void runsAgainAfterItsEnd();
    void hasAMetaObject();
};

namespace {

/** Gives out a number of lines and remembers where it was asked. */
class CountedSource : public PkLogger::LoggerDataAccessInterface
{
public:
    bool writeData() override
    {
        thread = QThread::currentThread();
        ++calls;
        return calls % 5 != 0;
    }

    int calls = 0;
    QThread* thread = nullptr;
};

} // namespace

void LoggerWriterThreadTest::writesUntilTheSourceSaysNo()
{
    CountedSource source;
    PkLogger::LoggerWriterThread writer(&source);
    QCOMPARE(source.calls, 0);
    writer.start();
    QVERIFY(writer.wait());
    QCOMPARE(source.calls, 5);
    QCOMPARE(source.thread, &writer);
}

void LoggerWriterThreadTest::runsAgainAfterItsEnd()
{
    CountedSource source;
    PkLogger::LoggerWriterThread writer(&source);
    writer.start();
    QVERIFY(writer.wait());
    writer.start();
    QVERIFY(writer.wait());
    QCOMPARE(source.calls, 10);
}

void LoggerWriterThreadTest::hasAMetaObject()
{
    QCOMPARE(PkLogger::LoggerWriterThread::staticMetaObject.className(),
             "PkLogger::LoggerWriterThread");
}

QTEST_GUILESS_MAIN(LoggerWriterThreadTest)
#include "LoggerWriterThreadTest.moc"

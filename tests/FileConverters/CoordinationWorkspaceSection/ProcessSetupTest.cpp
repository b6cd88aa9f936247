#include "FileConverters/CoordinationWorkspaceSection/ProcessSetup.h"

#include <QFileInfo>
#include <QTextCodec>
#include <QtTest>

#include <array>

#include <fcntl.h>
#include <unistd.h>

namespace {

/** While it lives, a standard stream leads to a file. */
class RedirectedStream
{
public:
    RedirectedStream(int stream, const char* file) : m_stream(stream), m_before(dup(stream))
    {
        const int opened = open(file, O_RDWR | O_NOCTTY);
        dup2(opened, m_stream);
        close(opened);
    }
    ~RedirectedStream()
    {
        dup2(m_before, m_stream);
        close(m_before);
    }
    RedirectedStream(const RedirectedStream&) = delete;
    RedirectedStream& operator=(const RedirectedStream&) = delete;

private:
    const int m_stream;
    const int m_before;
};

} // namespace

class ProcessSetupTest : public QObject
{
    Q_OBJECT

private slots:
    void argumentsStandBehindTheName_data();
    void argumentsStandBehindTheName();
    void programsAreFoundFromThisOne();
    void filesAreUtf8WhateverTheLocale();
    void terminalsAreToldApart_data();
    void terminalsAreToldApart();
    void closedStreamsFailAsTheyDid_data();
    void closedStreamsFailAsTheyDid();
};

void ProcessSetupTest::argumentsStandBehindTheName_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("no name even") << 0 << QStringList{};
    QTest::newRow("none") << 1 << QStringList{};
    QTest::newRow("one") << 2 << QStringList{"Große Bühne.xml"};
    QTest::newRow("an empty one") << 3 << QStringList{"Große Bühne.xml", ""};
}

void ProcessSetupTest::argumentsStandBehindTheName()
{
    QFETCH(int, count);
    std::array<QByteArray, 3> texts = {"program", "Große Bühne.xml", ""};
    std::array<char*, 4> given = {texts[0].data(), texts[1].data(), texts[2].data(), nullptr};
    QTEST(ProcessSetup::argumentsOf(count, given.data()), "arguments");
}

void ProcessSetupTest::programsAreFoundFromThisOne()
{
    const QFileInfo self(QStringLiteral("/proc/self/exe"));
    const QString folder = QFileInfo(self.canonicalFilePath()).path();
    QCOMPARE(ProcessSetup::fromThisProgram("other"), folder + "/other");
    QCOMPARE(ProcessSetup::fromThisProgram("../lib/./other"),
             QFileInfo(folder).path() + "/lib/other");
}

void ProcessSetupTest::filesAreUtf8WhateverTheLocale()
{
    const QtMessageHandler ofTheTest = qInstallMessageHandler(nullptr);
    QTextCodec* const ofTheLocale = QTextCodec::codecForLocale();
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    ProcessSetup::shutOutTheEnvironment();
    const QByteArray codec = QTextCodec::codecForLocale()->name();
    QTextCodec::setCodecForLocale(ofTheLocale);
    qInstallMessageHandler(ofTheTest);
    QCOMPARE(codec, QByteArray("UTF-8"));
}

void ProcessSetupTest::terminalsAreToldApart_data()
{
    QTest::addColumn<bool>("isOutput");
    QTest::addColumn<bool>("isError");
    QTest::newRow("none") << false << false;
    QTest::newRow("output") << true << false;
    QTest::newRow("errors") << false << true;
    QTest::newRow("both") << true << true;
}

void ProcessSetupTest::terminalsAreToldApart()
{
    QFETCH(bool, isOutput);
    QFETCH(bool, isError);
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    QVERIFY(master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0);
    const QByteArray terminal = ptsname(master);
    bool isOutputTold = false;
    bool isErrorTold = false;
    {
        const RedirectedStream output(STDOUT_FILENO, isOutput ? terminal.constData() : "/dev/null");
        const RedirectedStream errors(STDERR_FILENO, isError ? terminal.constData() : "/dev/null");
        isOutputTold = ProcessSetup::isOutputTerminal();
        isErrorTold = ProcessSetup::isErrorTerminal();
    }
    close(master);
    QCOMPARE(isOutputTold, isOutput);
    QCOMPARE(isErrorTold, isError);
}

void ProcessSetupTest::closedStreamsFailAsTheyDid_data()
{
    QTest::addColumn<int>("stream");
    QTest::addColumn<int>("access");
    QTest::newRow("input cannot be read") << STDIN_FILENO << O_WRONLY;
    QTest::newRow("output cannot be written") << STDOUT_FILENO << O_RDONLY;
    QTest::newRow("errors cannot be written") << STDERR_FILENO << O_RDONLY;
}

// And no file that the program opens gets their numbers.
void ProcessSetupTest::closedStreamsFailAsTheyDid()
{
    QFETCH(int, stream);
    const RedirectedStream meanwhile(stream, "/dev/null");
    ProcessSetup::keepClosedStreamsClosed();
    const int open = fcntl(stream, F_GETFL) & O_ACCMODE;
    close(stream);
    ProcessSetup::keepClosedStreamsClosed();
    const int closed = fcntl(stream, F_GETFL) & O_ACCMODE;
    QCOMPARE(open, O_RDWR); // as it was
    QTEST(closed, "access");
}

QTEST_GUILESS_MAIN(ProcessSetupTest)
#include "ProcessSetupTest.moc"

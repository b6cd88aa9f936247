#include "FileConverters/CoordinationWorkspaceSection/ProcessSetup.h"

#include <QFileInfo>
#include <QtTest>

#include <array>

class ProcessSetupTest : public QObject
{
    Q_OBJECT

private slots:
    void argumentsStandBehindTheName_data();
    void argumentsStandBehindTheName();
    void programsAreFoundFromThisOne();
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

QTEST_GUILESS_MAIN(ProcessSetupTest)
#include "ProcessSetupTest.moc"

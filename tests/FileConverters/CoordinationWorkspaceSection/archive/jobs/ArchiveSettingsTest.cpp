#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ArchiveSettings.h"

#include <QtTest>

class ArchiveSettingsTest : public QObject
{
    Q_OBJECT

private slots:
    void limitsGrowWithTheDocument_data();
    void limitsGrowWithTheDocument();
    void limitsThatAreNamedHoldForEveryDocument();
    void theyGoThroughJsonAndBack();
};

void ArchiveSettingsTest::limitsGrowWithTheDocument_data()
{
    QTest::addColumn<qint64>("size");
    QTest::addColumn<qint64>("milliseconds");
    QTest::addColumn<qint64>("memoryBytes");
    // 10 s and 1 s for each MB; 256 MB and 64 times the document.
    QTest::newRow("nothing") << qint64(0) << qint64(10000) << qint64(256000000);
    QTest::newRow("half a MB") << qint64(500000) << qint64(10500) << qint64(288000000);
    QTest::newRow("10 MB") << qint64(10000000) << qint64(20000) << qint64(896000000);
    QTest::newRow("5 GB") << qint64(5000000000) << qint64(5010000) << qint64(320256000000);
    QTest::newRow("5 TB") << qint64(5000000000000) << qint64(5000010000) << qint64(320000256000000);
}

void ArchiveSettingsTest::limitsGrowWithTheDocument()
{
    QFETCH(qint64, size);
    const ProcessLimits limits = ArchiveSettings().limitsFor(size);
    QTEST(limits.milliseconds, "milliseconds");
    QTEST(limits.memoryBytes, "memoryBytes");
}

void ArchiveSettingsTest::limitsThatAreNamedHoldForEveryDocument()
{
    ArchiveSettings settings;
    settings.milliseconds = 3000000000000;
    QCOMPARE(settings.limitsFor(1).milliseconds, qint64(3000000000000));
    settings.milliseconds = 3000;
    settings.memoryBytes = 0;
    const ProcessLimits limits = settings.limitsFor(10000000);
    QCOMPARE(limits.milliseconds, qint64(3000));
    QCOMPARE(limits.memoryBytes, qint64(0));
}

void ArchiveSettingsTest::theyGoThroughJsonAndBack()
{
    ArchiveSettings settings;
    settings.source = QStringLiteral("/ä \"x\"\n");
    settings.target = QStringLiteral("/target");
    settings.report = QStringLiteral("/report");
    settings.converter = QStringLiteral("/converter");
    settings.staging = QStringLiteral("/staging");
    settings.version = QStringLiteral("1.2");
    settings.milliseconds = 1;
    settings.onlyClean = true;
    settings.verifies = true;
    const ArchiveSettings read = ArchiveSettings::fromLine(settings.toLine());
    QCOMPARE(read.source, settings.source);
    QCOMPARE(read.milliseconds, settings.milliseconds);
    QCOMPARE(read.memoryBytes, std::optional<qint64>());
    QVERIFY(read.isTrial());
    QCOMPARE(read.toLine(), settings.toLine());
}

QTEST_GUILESS_MAIN(ArchiveSettingsTest)

#include "ArchiveSettingsTest.moc"

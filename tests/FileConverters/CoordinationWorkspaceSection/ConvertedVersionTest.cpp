#include "ZelMain/ImportExport/XmlVersions.h"

#include <QDir>
#include <QDomDocument>
#include <QProcess>
#include <QtTest>

/**
 * The converter's output as the next program of the family takes it in.
 *
 * The environment names the executable, CONVERTER, and the folder of the samples, SAMPLES.
 */
class ConvertedVersionTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void convertedSampleIsCurrent_data();
    void convertedSampleIsCurrent();
};

namespace {

XmlVersions::XmlValidState verdictOnRoot(const QByteArray& text)
{
    QDomDocument document;
    if (!document.setContent(text)) {
        return XmlVersions::XmlInvalid;
    }
    const QDomElement root = document.documentElement();
    return root.tagName() == "coordinated_data_root" ? XmlVersions::Verdict(root)
                                                     : XmlVersions::XmlInvalid;
}

} // namespace

void ConvertedVersionTest::initTestCase()
{
    const XmlVersions versions; // fills the tables
}

void ConvertedVersionTest::convertedSampleIsCurrent_data()
{
    QTest::addColumn<QString>("path");
    const QDir samples(qEnvironmentVariable("SAMPLES"));
    const QFileInfoList files = samples.entryInfoList({"*.xml"}, QDir::Files, QDir::Name);
    QVERIFY(!files.isEmpty());
    for (const QFileInfo& file : files) {
        QTest::newRow(qPrintable(file.fileName())) << file.filePath();
    }
}

void ConvertedVersionTest::convertedSampleIsCurrent()
{
    QFETCH(QString, path);
    QFile sample(path);
    QVERIFY(sample.open(QIODevice::ReadOnly));
    QCOMPARE(verdictOnRoot(sample.readAll()), XmlVersions::XmlConvertible);

    QProcess converter;
    converter.start(qEnvironmentVariable("CONVERTER"), {path}, QIODevice::ReadOnly);
    QVERIFY(converter.waitForFinished());
    QCOMPARE(converter.exitCode(), 0);
    QCOMPARE(verdictOnRoot(converter.readAllStandardOutput()), XmlVersions::XmlCurrent);
}

QTEST_GUILESS_MAIN(ConvertedVersionTest)
#include "ConvertedVersionTest.moc"

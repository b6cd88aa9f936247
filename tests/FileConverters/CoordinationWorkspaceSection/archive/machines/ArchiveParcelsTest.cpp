#include "FileConverters/CoordinationWorkspaceSection/archive/machines/ArchiveParcels.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/files/ArchiveLock.h"

#include <QtTest>

#include <cerrno>
#include <cstdlib>

#include <sys/wait.h>
#include <unistd.h>

class ArchiveParcelsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void aParcelHoldsThePlanAndLinksToTheDocuments();
    void aPlanIsToldFromItsFolder();
    void aTrialStaysInItsParcel();
    void documentsAreThoseOfTheirParcelUntilTheyAreDone();
    void anOutputIsAFileThatNoLinkLeadsTo();
    void aParcelGoesWithItsLastDocument();
    void whatIsDoneWithMayBeToldAgain();
    void whatCannotBePackedIsToldByErrno();
    void nothingBehindALinkIsTouched();
    void aWorkerOfAnotherVersionHasAnObjection();
    void whatCutOffRunsHaveLeftIsSwept_data();
    void whatCutOffRunsHaveLeftIsSwept();
    void parcelsAtWorkStay();
    void nothingIsSweptWhereParallelHasPutNothing();

private:
    QString path(const QString& name) const { return m_folder->filePath(name); }
    void write(const QString& name) const;
    void leave(const QString& parcel, int secondsAgo) const;
    static PlannedDocument document(const QString& path) { return {path, 1, false, false, {}}; }

    std::unique_ptr<QTemporaryDir> m_folder;
    ArchiveSettings m_settings;
};

void ArchiveParcelsTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_settings = {};
    m_settings.source = path("source");
    m_settings.target = path("target");
    m_settings.report = path("report");
    m_settings.converter = path("converter");
    write("source/a.xml");
    write("source/sub/b c.xml");
}

void ArchiveParcelsTest::write(const QString& name) const
{
    QDir().mkpath(QFileInfo(path(name)).path());
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(name.toUtf8());
}

void ArchiveParcelsTest::aParcelHoldsThePlanAndLinksToTheDocuments()
{
    ArchiveParcels parcels(m_settings, path("parcels"));
    QVERIFY(parcels.pack({document("a.xml")}));
    QVERIFY(parcels.pack({document("sub/b c.xml")}));
    QCOMPARE(QFile::symLinkTarget(path("parcels/1/in/a.xml")), path("source/a.xml"));
    QCOMPARE(QFile::symLinkTarget(path("parcels/2/in/sub/b c.xml")), path("source/sub/b c.xml"));
    QVERIFY(QFileInfo(path("parcels/1/out")).isDir());
}

void ArchiveParcelsTest::aPlanIsToldFromItsFolder()
{
    ArchiveParcels parcels(m_settings, path("parcels"));
    const auto job = parcels.pack({document("a.xml"), document("sub/b c.xml")});
    QVERIFY(job);
    QVERIFY(QDir().rename(path("parcels/1"), path("elsewhere")));
    ArchiveSettings settings;
    const auto documents = ArchivePlan::read(path("elsewhere/plan"), *job, settings);
    QCOMPARE(documents.size(), std::size_t(2));
    QCOMPARE(documents[1].path, QStringLiteral("sub/b c.xml"));
    // What an attempt before has left in its place there is nobody's.
    QVERIFY(documents[0].mayReplace);
    QCOMPARE(settings.source, path("elsewhere/in"));
    QCOMPARE(settings.target, path("elsewhere/out"));
    QVERIFY(settings.report.startsWith(path("elsewhere/out/")));
    QVERIFY(settings.converter.isEmpty());
    QVERIFY(!settings.isTrial());
}

void ArchiveParcelsTest::aTrialStaysInItsParcel()
{
    m_settings.staging = path("staging");
    ArchiveParcels parcels(m_settings, path("parcels"));
    const auto job = parcels.pack({document("a.xml")});
    QVERIFY(job);
    ArchiveSettings settings;
    ArchivePlan::read(path("parcels/1/plan"), *job, settings);
    QVERIFY(settings.staging.startsWith(path("parcels/1/")));
}

void ArchiveParcelsTest::documentsAreThoseOfTheirParcelUntilTheyAreDone()
{
    ArchiveParcels parcels(m_settings, path("parcels"));
    QVERIFY(parcels.pack({document("a.xml")}));
    QVERIFY(parcels.pack({document("sub/b c.xml")}));
    QVERIFY(parcels.find(1, "a.xml"));
    QVERIFY(!parcels.find(1, "a.xml")->mayReplace);
    for (const int parcel : {2, 3, 0, -1}) {
        QVERIFY(!parcels.find(parcel, "a.xml"));
    }
    QVERIFY(!parcels.find(1, "../a.xml"));
    parcels.finish(1, "a.xml");
    QVERIFY(!parcels.find(1, "a.xml"));
}

void ArchiveParcelsTest::anOutputIsAFileThatNoLinkLeadsTo()
{
    ArchiveParcels parcels(m_settings, path("parcels"));
    QVERIFY(parcels.pack({document("a.xml"), document("sub/b c.xml")}));
    QCOMPARE(parcels.output(1, "a.xml"), QString());
    write("parcels/1/out/a.xml");
    QCOMPARE(parcels.output(1, "a.xml"), path("parcels/1/out/a.xml"));
    QVERIFY(QFile::remove(path("parcels/1/out/a.xml")));
    QVERIFY(QFile::link(path("source/a.xml"), path("parcels/1/out/a.xml")));
    QCOMPARE(parcels.output(1, "a.xml"), QString());
    QVERIFY(QFile::link(path("source/sub"), path("parcels/1/out/sub")));
    QCOMPARE(parcels.output(1, "sub/b c.xml"), QString());
}

void ArchiveParcelsTest::aParcelGoesWithItsLastDocument()
{
    {
        ArchiveParcels parcels(m_settings, path("parcels"));
        QVERIFY(parcels.pack({document("a.xml"), document("sub/b c.xml")}));
        QVERIFY(parcels.pack({document("a.xml")}));
        parcels.finish(1, "a.xml");
        QVERIFY(QFileInfo::exists(path("parcels/1")));
        parcels.finish(1, "sub/b c.xml");
        QVERIFY(!QFileInfo::exists(path("parcels/1")));
        QVERIFY(QFileInfo::exists(path("parcels/2")));
    }
    QVERIFY(!QFileInfo::exists(path("parcels")));
}

void ArchiveParcelsTest::whatIsDoneWithMayBeToldAgain()
{
    ArchiveParcels parcels(m_settings, path("parcels"));
    QVERIFY(parcels.pack({document("a.xml")}));
    parcels.finish(1, "a.xml");
    parcels.finish(1, "a.xml");
    parcels.finish(2, "a.xml");
    QVERIFY(!parcels.find(1, "a.xml"));
}

void ArchiveParcelsTest::whatCannotBePackedIsToldByErrno()
{
    write("file");
    ArchiveParcels inAFile(m_settings, path("file/parcels"));
    QVERIFY(!inAFile.pack({document("a.xml")}));
    QCOMPARE(errno, ENOTDIR);

    ArchiveParcels parcels(m_settings, path("parcels"));
    QVERIFY(!parcels.pack({document(QString(300, 'x'))}));
    QCOMPARE(errno, ENAMETOOLONG);
}

void ArchiveParcelsTest::nothingBehindALinkIsTouched()
{
    QVERIFY(QFile::setPermissions(path("source/a.xml"), QFile::ReadUser));
    const QFile::Permissions before = QFile::permissions(path("source/a.xml"));
    {
        ArchiveParcels parcels(m_settings, path("parcels"));
        QVERIFY(parcels.pack({document("a.xml")}));
        QVERIFY(QFile::link(path("source/sub"), path("parcels/1/out/sub")));
    }
    QCOMPARE(QFile::permissions(path("source/a.xml")), before);
    QVERIFY(QFileInfo::exists(path("source/sub/b c.xml")));
}

void ArchiveParcelsTest::aWorkerOfAnotherVersionHasAnObjection()
{
    ArchiveParcels parcels(m_settings, path("parcels"));
    const auto job = parcels.pack({document("a.xml")});
    QVERIFY(job);
    ArchiveSettings settings;
    ArchivePlan::read(path("parcels/1/plan"), *job, settings);
    QCOMPARE(ArchiveParcels::objection(settings), QString());
    QCOMPARE(ArchiveParcels::objection(m_settings), QString());
    settings.version = QStringLiteral("0.0.1");
    QVERIFY(ArchiveParcels::objection(settings).contains("0.0.1"));
}

// A parcel as a job leaves it that is cut off.
void ArchiveParcelsTest::leave(const QString& parcel, int secondsAgo) const
{
    write(parcel + "/plan");
    QVERIFY(QDir().mkpath(path(parcel + "/out/.coordworkspace")));
    QFile plan(path(parcel + "/plan"));
    QVERIFY(plan.open(QIODevice::ReadWrite));
    QVERIFY(plan.setFileTime(QDateTime::currentDateTime().addSecs(-secondsAgo),
                             QFileDevice::FileModificationTime));
}

void ArchiveParcelsTest::whatCutOffRunsHaveLeftIsSwept_data()
{
    QTest::addColumn<int>("secondsAgo");
    QTest::addColumn<QString>("missing");
    QTest::addColumn<QString>("more");
    QTest::addColumn<bool>("isSwept");
    QTest::newRow("a day ago") << 86400 << ""
                               << "" << true;
    QTest::newRow("less than a day ago") << 86400 - 600 << ""
                                         << "" << false;
    QTest::newRow("without a plan") << 100000 << "1/plan"
                                    << "" << false;
    QTest::newRow("without a run's folder") << 100000 << "1/out/.coordworkspace"
                                            << "" << false;
    QTest::newRow("with something else") << 100000 << ""
                                         << "other/file" << false;
}

void ArchiveParcelsTest::whatCutOffRunsHaveLeftIsSwept()
{
    QFETCH(int, secondsAgo);
    QFETCH(QString, missing);
    QFETCH(QString, more);
    leave(".parallel/tmp/old/1", secondsAgo);
    leave(".parallel/tmp/new/1", 100000);
    if (!missing.isEmpty()) {
        ArchiveParcels::remove(path(".parallel/tmp/old/" + missing));
    }
    if (!more.isEmpty()) {
        write(".parallel/tmp/old/" + more);
    }
    ArchiveParcels::sweepBeside(path(".parallel/tmp/new/1/plan"));
    QTEST(!QFileInfo::exists(path(".parallel/tmp/old")), "isSwept");
    QVERIFY(QFileInfo::exists(path(".parallel/tmp/new/1/plan")));
}

void ArchiveParcelsTest::parcelsAtWorkStay()
{
    leave(".parallel/tmp/old/1", 100000);
    leave(".parallel/tmp/new/1", 0);
    const QString plan = path(".parallel/tmp/new/1/plan");
    ArchiveSettings settings;
    settings.target = path(".parallel/tmp/old/1/out");
    {
        const ArchiveLock lock(settings.jobsLock(), ArchiveLock::TOGETHER);
        // In a process of its own: a process does not stand in its own way.
        const pid_t process = fork();
        if (process == 0) {
            ArchiveParcels::sweepBeside(plan);
            _exit(EXIT_SUCCESS);
        }
        QCOMPARE(waitpid(process, nullptr, 0), process);
        QVERIFY(QFileInfo::exists(path(".parallel/tmp/old/1/plan")));
    }
    ArchiveParcels::sweepBeside(plan);
    QVERIFY(!QFileInfo::exists(path(".parallel/tmp/old")));
}

void ArchiveParcelsTest::nothingIsSweptWhereParallelHasPutNothing()
{
    leave("elsewhere/old/1", 100000);
    leave("elsewhere/new/1", 0);
    ArchiveParcels::sweepBeside(path("elsewhere/new/1/plan"));
    QVERIFY(QFileInfo::exists(path("elsewhere/old/1/plan")));
}

QTEST_GUILESS_MAIN(ArchiveParcelsTest)
#include "ArchiveParcelsTest.moc"

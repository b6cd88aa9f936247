#include "ZelMain/Diagnostics/LocalClock.h"

#include "ZelMain/Diagnostics/TimeText.h"

#include <QRandomGenerator>
#include <QTimeZone>
#include <QtTest>

using PkLogger::LocalClock;
using PkLogger::LocalMoment;
using PkLogger::TimeText;

/** Local time and its text, compared with what Qt says about the same moments. */
class LocalClockTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void everyZoneIsFollowedOverItsChanges_data();
    void everyZoneIsFollowedOverItsChanges();
    void momentsInOneHundredthShareTheirBase();
    void timeBefore1970IsTold();
    void changedZoneIsFollowedAtOnce();
    void emptyZoneIsNotAnUnsetOne();
    void exactMomentNeedsNoExtra();
    void patternWithMillisecondsElsewhereNeedsExactMoments_data();
    void patternWithMillisecondsElsewhereNeedsExactMoments();

private:
    void compareWithQt(qint64 ms);

    QByteArray m_zoneBefore;
    LocalClock m_clock;
    TimeText m_default;
    TimeText m_seconds{QStringLiteral("dd MMM yyyy hh:mm:ss t")};
};

void LocalClockTest::initTestCase()
{
    m_zoneBefore = qgetenv("TZ");
}

void LocalClockTest::cleanup()
{
    if (m_zoneBefore.isNull()) {
        qunsetenv("TZ");
    } else {
        qputenv("TZ", m_zoneBefore);
    }
}

void LocalClockTest::compareWithQt(qint64 ms)
{
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(ms);
    const LocalMoment moment = m_clock.at(ms);
    QVERIFY(moment.extraMs >= 0);
    QCOMPARE(moment.base.addMSecs(moment.extraMs), time);
    QCOMPARE(moment.base.time().addMSecs(moment.extraMs), time.time());
    QCOMPARE(m_default.textOf(moment), time.toString("dd MMM yyyy hh:mm:ss.zzz"));
    QCOMPARE(m_seconds.textOf(moment), time.toString("dd MMM yyyy hh:mm:ss t"));
}

void LocalClockTest::everyZoneIsFollowedOverItsChanges_data()
{
    QTest::addColumn<QByteArray>("zone");
    // Northern and southern summers, changes at midnight, of half an hour, in winter, and none.
    for (const char* zone :
         {"Europe/Berlin", "Europe/London", "Europe/Dublin", "America/New_York", "America/St_Johns",
          "America/Santiago", "Asia/Beirut", "Africa/Cairo", "Africa/Casablanca",
          "Australia/Lord_Howe", "Australia/Sydney", "Pacific/Auckland", "Pacific/Chatham",
          "Antarctica/Troll", "Asia/Kolkata", "UTC"}) {
        QTest::newRow(zone) << QByteArray(zone);
    }
}

void LocalClockTest::everyZoneIsFollowedOverItsChanges()
{
    QFETCH(QByteArray, zone);
    const QTimeZone rules(zone);
    QVERIFY(rules.isValid());
    qputenv("TZ", zone);

    const QDateTime from(QDate(2024, 1, 1), QTime(0, 0), Qt::UTC);
    const QDateTime to(QDate(2025, 1, 1), QTime(0, 0), Qt::UTC);
    const QTimeZone::OffsetDataList changes = rules.transitions(from, to);
    QCOMPARE(changes.isEmpty(), zone == "UTC" || zone == "Asia/Kolkata");
    for (const QTimeZone::OffsetData& change : changes) {
        const qint64 ms = change.atUtc.toMSecsSinceEpoch();
        for (qint64 around = ms - 30; around <= ms + 30; ++around) {
            compareWithQt(around);
        }
        for (const qint64 hours :
             {-3, -2, -1, 1, 2, 3}) { // the hour that is told twice, both times
            compareWithQt(ms + hours * 3600 * 1000 - 1);
        }
    }
    QRandomGenerator random(20241);
    for (int i = 0; i < 500; ++i) {
        compareWithQt(from.toMSecsSinceEpoch() + random.bounded(366 * 24 * 3600) * qint64(1000) +
                      random.bounded(1000));
    }
}

void LocalClockTest::momentsInOneHundredthShareTheirBase()
{
    const qint64 ms = 1772420645010; // a whole hundredth of a second
    const QDateTime base = m_clock.at(ms).base;
    QCOMPARE(m_clock.at(ms + 9).base, base);
    QCOMPARE(m_clock.at(ms + 9).extraMs, 9);
    QCOMPARE(m_clock.at(ms + 10).base, base.addMSecs(10));
    QCOMPARE(m_clock.at(ms - 1).base, base.addMSecs(-10));
    QCOMPARE(m_clock.at(ms - 1).extraMs, 9);
    compareWithQt(ms - 3600000); // a clock that is set back
    compareWithQt(ms);
}

void LocalClockTest::timeBefore1970IsTold()
{
    for (const qint64 ms : {-1, -10, -11, -999, -1000, -1001, 0, 1}) {
        compareWithQt(ms);
    }
}

void LocalClockTest::changedZoneIsFollowedAtOnce()
{
    const qint64 ms = 1772420645123;
    for (const char* zone : {"Europe/Berlin", "Asia/Tokyo", "America/New_York", "Europe/Berlin"}) {
        qputenv("TZ", zone);
        compareWithQt(ms);
        QCOMPARE(m_clock.at(ms).base.offsetFromUtc(),
                 QTimeZone(zone).offsetFromUtc(QDateTime::fromMSecsSinceEpoch(ms)));
    }
}

void LocalClockTest::emptyZoneIsNotAnUnsetOne()
{
    const qint64 ms = 1772420645123;
    qputenv("TZ", "Asia/Tokyo");
    compareWithQt(ms);
    qunsetenv("TZ");
    compareWithQt(ms);
    qputenv("TZ", "");
    compareWithQt(ms);
    QCOMPARE(m_clock.at(ms).base.offsetFromUtc(), 0);
}

void LocalClockTest::exactMomentNeedsNoExtra()
{
    const qint64 ms = 1772420645123;
    const LocalMoment moment = LocalClock::exactlyAt(ms);
    QCOMPARE(moment.base, QDateTime::fromMSecsSinceEpoch(ms));
    QCOMPARE(moment.extraMs, 0);
    TimeText pattern(QStringLiteral("zzz ss"));
    QCOMPARE(pattern.textOf(moment), moment.base.toString("zzz ss"));
}

void LocalClockTest::patternWithMillisecondsElsewhereNeedsExactMoments_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<bool>("needsExactMoments");
    QTest::newRow("default") << "" << false;
    QTest::newRow("default, spelt out") << "dd MMM yyyy hh:mm:ss.zzz" << false;
    QTest::newRow("without milliseconds") << "dd MMM yyyy hh:mm:ss" << false;
    QTest::newRow("short milliseconds at the end") << "ss.z" << true;
    QTest::newRow("milliseconds in the middle") << "ss.zzz t" << true;
}

void LocalClockTest::patternWithMillisecondsElsewhereNeedsExactMoments()
{
    QFETCH(QString, pattern);
    QTEST(TimeText(pattern).needsExactMoments(), "needsExactMoments");
}

QTEST_GUILESS_MAIN(LocalClockTest)
#include "LocalClockTest.moc"

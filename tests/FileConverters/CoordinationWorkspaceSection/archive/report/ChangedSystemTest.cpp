#include "FileConverters/CoordinationWorkspaceSection/archive/report/ChangedSystem.h"

#include "FileConverters/CoordinationWorkspaceSection/inspect/Inspection.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/JsonLine.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

#include <functional>

namespace {

using Field = std::function<int&(PkCompatProfile&)>;

InspectedSystem inspected(const char* series, const std::function<void(PkCompatProfile&)>& change)
{
    InspectedSystem system;
    system.key = CompatSystemUniqueKey("Zone", series, "G1", "Mode", "2");
    system.oldName = "median";
    system.before.chCh = system.after.chCh = 300;
    system.before.imd2t3o = system.after.imd2t3o = 150;
    system.after.name = "Standard";
    change(system.after);
    return system;
}

QJsonArray arrayOf(const QVector<ChangedSystem>& systems)
{
    JsonLine line;
    ChangedSystem::addTo(line, "systems", systems);
    return QJsonDocument::fromJson(line.take()).object()["systems"].toArray();
}

} // namespace

Q_DECLARE_METATYPE(Field)

class ChangedSystemTest : public QObject
{
    Q_OBJECT

private slots:
    void onlySystemsWhoseSpacingsChangeAreTold();
    void everySpacingCounts_data();
    void everySpacingCounts();
    void namesEndAtTheirFirstNul();
    void onlySpacingsThatChangeAreWritten();
    void systemsGoThroughJsonAndBack();
    void whatIsNotToldIsNothing();
    void whatIsNoArrayIsNone_data();
    void whatIsNoArrayIsNone();
};

void ChangedSystemTest::onlySystemsWhoseSpacingsChangeAreTold()
{
    const auto changed = ChangedSystem::among({
        inspected("first", [](PkCompatProfile& after) { after.imd2t3o = 0; }),
        inspected("same", [](PkCompatProfile& after) { after.filterStart = 470000; }),
        inspected("last", [](PkCompatProfile& after) { after.chCh = 301; }),
    });
    QCOMPARE(changed.size(), 2);
    QCOMPARE(changed[0].key(), QStringList({"Zone", "first", "G1", "Mode", "2"}));
    QCOMPARE(changed[1].key(), QStringList({"Zone", "last", "G1", "Mode", "2"}));
    QCOMPARE(changed[0].nameBefore, QString("median"));
    QCOMPARE(changed[0].nameAfter, QString("Standard"));
}

void ChangedSystemTest::everySpacingCounts_data()
{
    QTest::addColumn<int>("spacing");
    QTest::addColumn<Field>("field");
    int count = 0;
    const auto row = [&](const char* heading, int PkCompatProfile::*field) {
        QTest::newRow(heading) << count++ << Field([field](PkCompatProfile& profile) -> int& {
            return profile.*field;
        });
    };
    row("Ch-Ch", &PkCompatProfile::chCh);
    row("2T3O", &PkCompatProfile::imd2t3o);
    row("2T5O", &PkCompatProfile::imd2t5o);
    row("2T7O", &PkCompatProfile::imd2t7o);
    row("2T9O", &PkCompatProfile::imd2t9o);
    row("3T3O", &PkCompatProfile::imd3t3o);
}

void ChangedSystemTest::everySpacingCounts()
{
    QFETCH(int, spacing);
    QFETCH(Field, field);
    InspectedSystem system = inspected("S", [](PkCompatProfile&) {});
    const int before = field(system.before) = -7;
    field(system.after) = 2147483647;
    const QVector<ChangedSystem> changed = ChangedSystem::among({system});
    QCOMPARE(changed.size(), 1);
    for (std::size_t i = 0; i < ChangedSystem::SPACING_COUNT; ++i) {
        QCOMPARE(changed[0].spacings[i].isThere(), i == static_cast<std::size_t>(spacing));
    }
    const ChangedSystem::Change& change = changed[0].spacings[static_cast<std::size_t>(spacing)];
    QCOMPARE(change.before, before);
    QCOMPARE(change.after, 2147483647);
    QCOMPARE(ChangedSystem::headingOf(static_cast<std::size_t>(spacing)),
             QString(QTest::currentDataTag()));
}

// As they are written in documents.
void ChangedSystemTest::namesEndAtTheirFirstNul()
{
    InspectedSystem system = inspected("S", [](PkCompatProfile& after) {
        after.chCh = 0;
        after.name = std::string("Stan\0dard", 9);
    });
    system.key.zone = std::string("Zo\0ne", 5);
    const QVector<ChangedSystem> changed = ChangedSystem::among({system});
    QCOMPARE(changed[0].zone, QString("Zo"));
    QCOMPARE(changed[0].nameAfter, QString("Stan"));
}

void ChangedSystemTest::onlySpacingsThatChangeAreWritten()
{
    const QJsonArray systems = arrayOf(
        ChangedSystem::among({inspected("S", [](PkCompatProfile& after) { after.imd2t3o = 0; })}));
    QCOMPARE(systems.size(), 1);
    QCOMPARE(
        systems[0].toObject(),
        QJsonObject({
            {"zone", "Zone"},
            {"series", "S"},
            {"band", "G1"},
            {"tx_profile", "Mode"},
            {"incl_group", "2"},
            {"name", QJsonObject{{"before", "median"}, {"after", "Standard"}}},
            {"spacings", QJsonObject{{"imd_2t3o", QJsonObject{{"before", 150}, {"after", 0}}}}},
        }));
}

void ChangedSystemTest::systemsGoThroughJsonAndBack()
{
    ChangedSystem system;
    system.zone = "\u202e\u202c\"\\";
    system.nameBefore = "\n";
    system.spacings[0] = {-1, 7};
    system.spacings[5] = {2147483647, -2147483647};
    const QVector<ChangedSystem> systems = {system, ChangedSystem()};
    const auto read = ChangedSystem::fromJson(arrayOf(systems));
    QVERIFY(read);
    QCOMPARE(read->size(), 2);
    QCOMPARE(read->at(0).key(), system.key());
    QCOMPARE(read->at(0).nameBefore, system.nameBefore);
    QVERIFY(read->at(0).nameAfter.isEmpty());
    for (std::size_t i = 0; i < ChangedSystem::SPACING_COUNT; ++i) {
        QCOMPARE(read->at(0).spacings[i].before, system.spacings[i].before);
        QCOMPARE(read->at(0).spacings[i].after, system.spacings[i].after);
        QVERIFY(!read->at(1).spacings[i].isThere());
    }
}

void ChangedSystemTest::whatIsNotToldIsNothing()
{
    const auto read = ChangedSystem::fromJson(QJsonArray{QJsonObject(), 7, QJsonArray()});
    QVERIFY(read);
    QCOMPARE(read->size(), 3);
    for (const ChangedSystem& system : *read) {
        QCOMPARE(system.key(), QStringList({"", "", "", "", ""}));
        for (const ChangedSystem::Change& change : system.spacings) {
            QVERIFY(!change.isThere());
        }
    }
    QVERIFY(ChangedSystem::fromJson(QJsonArray())->isEmpty());
}

void ChangedSystemTest::whatIsNoArrayIsNone_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::newRow("nothing") << QJsonValue(QJsonValue::Undefined);
    QTest::newRow("null") << QJsonValue();
    QTest::newRow("an object") << QJsonValue(QJsonObject());
    QTest::newRow("a text") << QJsonValue("[]");
}

void ChangedSystemTest::whatIsNoArrayIsNone()
{
    QFETCH(QJsonValue, value);
    QVERIFY(!ChangedSystem::fromJson(value));
}

QTEST_GUILESS_MAIN(ChangedSystemTest)

#include "ChangedSystemTest.moc"

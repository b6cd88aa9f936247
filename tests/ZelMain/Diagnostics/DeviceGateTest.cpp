#include "ZelMain/Diagnostics/DeviceGate.h"

#include "tests/support/WaitingCall.h"

#include <QBuffer>
#include <QtTest>

#include <future>
#include <memory>
#include <vector>

using namespace PkLogger;

Q_DECLARE_METATYPE(PkLogger::DeviceGate::Visitor)

namespace {

constexpr std::chrono::milliseconds NO_TIME(0);

// What the call returns on a thread of its own.
template <typename Call>
bool elsewhere(Call call)
{
    return std::async(std::launch::async, call).get();
}

} // namespace

class DeviceGateTest : public QObject
{
    Q_OBJECT

private slots:
    void oneThreadIsInside();
    void threadInsideMayEnterAgain();
    void sameVisitorMayComeTwiceWhenNobodyWaits();
    void visitorsWhoWaitTakeTurns_data();
    void visitorsWhoWaitTakeTurns();
    void visitEndsWithItsScope();
    void closedGateLetsNobodyIn();
    void whoWaitsIsTurnedAway_data();
    void whoWaitsIsTurnedAway();
    void closingTellsTheDeviceInUse();
};

void DeviceGateTest::oneThreadIsInside()
{
    DeviceGate gate;
    QVERIFY(gate.enter(DeviceGate::Writer));
    QVERIFY(!elsewhere([&] { return gate.enterWithin(NO_TIME); }));
    gate.leave();
    QVERIFY(elsewhere([&] { return gate.enterWithin(NO_TIME); }));
}

void DeviceGateTest::threadInsideMayEnterAgain()
{
    DeviceGate gate;
    QVERIFY(gate.enter(DeviceGate::Call));
    QVERIFY(gate.enter(DeviceGate::Call));
    QVERIFY(gate.enterWithin(NO_TIME));
    gate.leave();
    gate.leave();
    QVERIFY(!elsewhere([&] { return gate.enterWithin(NO_TIME); })); // left twice, entered thrice
    gate.leave();
    QVERIFY(elsewhere([&] { return gate.enterWithin(NO_TIME); }));
}

void DeviceGateTest::sameVisitorMayComeTwiceWhenNobodyWaits()
{
    DeviceGate gate;
    for (const DeviceGate::Visitor visitor :
         {DeviceGate::Writer, DeviceGate::Writer, DeviceGate::Call, DeviceGate::Call}) {
        QVERIFY(gate.enter(visitor));
        gate.leave();
    }
}

void DeviceGateTest::visitorsWhoWaitTakeTurns_data()
{
    QTest::addColumn<DeviceGate::Visitor>("first");
    QTest::addColumn<DeviceGate::Visitor>("other");
    QTest::newRow("after the writer") << DeviceGate::Writer << DeviceGate::Call;
    QTest::newRow("after a call") << DeviceGate::Call << DeviceGate::Writer;
}

void DeviceGateTest::visitorsWhoWaitTakeTurns()
{
    QFETCH(DeviceGate::Visitor, first);
    QFETCH(DeviceGate::Visitor, other);
    DeviceGate gate;
    std::vector<DeviceGate::Visitor> visits; // written by who is inside
    std::vector<std::unique_ptr<WaitingCall>> waiting;
    QVERIFY(gate.enter(first));
    for (const DeviceGate::Visitor visitor : {first, first, other, other}) {
        waiting.push_back(std::make_unique<WaitingCall>([&gate, &visits, visitor] {
            const GateVisit visit(gate, visitor);
            visits.push_back(visitor);
        }));
        QVERIFY(waiting.back()->waitUntilAsleep());
    }
    gate.leave();
    for (const auto& call : waiting) {
        call->end();
    }
    QCOMPARE(visits, (std::vector<DeviceGate::Visitor>{other, first, other, first}));
}

void DeviceGateTest::visitEndsWithItsScope()
{
    DeviceGate gate;
    {
        const GateVisit visit(gate, DeviceGate::Writer);
        QVERIFY(visit.isInside());
        QVERIFY(!elsewhere([&] { return gate.enterWithin(NO_TIME); }));
    }
    QVERIFY(elsewhere([&] {
        const GateVisit visit(gate, DeviceGate::Call);
        return visit.isInside();
    }));
    QVERIFY(gate.enterWithin(NO_TIME));
    gate.leave();
    gate.close();
    const GateVisit late(gate, DeviceGate::Writer);
    QVERIFY(!late.isInside());
}

void DeviceGateTest::closedGateLetsNobodyIn()
{
    QBuffer device;
    DeviceGate gate;
    QVERIFY(gate.close() == nullptr);
    QVERIFY(!gate.enter(DeviceGate::Writer));
    QVERIFY(!gate.enter(DeviceGate::Call));
    QVERIFY(!gate.enterWithin(NO_TIME));
    QVERIFY(!gate.use(&device));
}

void DeviceGateTest::whoWaitsIsTurnedAway_data()
{
    QTest::addColumn<bool>("hasPatience");
    QTest::newRow("for ever") << false;
    QTest::newRow("for an hour") << true;
}

void DeviceGateTest::whoWaitsIsTurnedAway()
{
    QFETCH(bool, hasPatience);
    DeviceGate gate;
    QVERIFY(gate.enter(DeviceGate::Writer));
    bool isInside = true;
    WaitingCall waiting([&] {
        isInside =
            hasPatience ? gate.enterWithin(std::chrono::hours(1)) : gate.enter(DeviceGate::Call);
    });
    QVERIFY(waiting.waitUntilAsleep());
    gate.close();
    waiting.end();
    QVERIFY(!isInside);
    gate.leave();
}

void DeviceGateTest::closingTellsTheDeviceInUse()
{
    QBuffer first;
    QBuffer second;
    DeviceGate gate;
    QVERIFY(gate.enter(DeviceGate::Writer));
    QVERIFY(gate.use(&first));
    QVERIFY(gate.use(&second));
    QCOMPARE(gate.close(), static_cast<QIODevice*>(&second));
    QVERIFY(!gate.use(&first)); // it belongs to whoever closed the gate
    QCOMPARE(gate.close(), static_cast<QIODevice*>(&second));
    gate.leave();
    QVERIFY(gate.close() == nullptr);

    DeviceGate left;
    QVERIFY(left.enter(DeviceGate::Writer));
    QVERIFY(left.use(&first));
    QVERIFY(left.enter(DeviceGate::Writer));
    left.leave();
    QVERIFY(left.enter(DeviceGate::Writer));
    left.leave();
    left.leave();
    QVERIFY(left.close() == nullptr);

    DeviceGate leftOnce;
    QVERIFY(leftOnce.enter(DeviceGate::Writer));
    QVERIFY(leftOnce.enter(DeviceGate::Writer));
    QVERIFY(leftOnce.use(&first));
    leftOnce.leave();
    QVERIFY(leftOnce.close() == &first);
}

QTEST_GUILESS_MAIN(DeviceGateTest)
#include "DeviceGateTest.moc"

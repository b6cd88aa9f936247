#include "ZelMain/FrequencyCompatibility/shared/TuningCapability.h"

#include "tests/support/VirtualSlot.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <boost/uuid/entropy_error.hpp>
#include <boost/uuid/nil_generator.hpp>
#include <boost/uuid/string_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <cerrno>
#include <cstring>
#include <sys/syscall.h>
#include <type_traits>
#include <unistd.h>
#include <utility>

static_assert(std::has_virtual_destructor_v<TuningCapability>);

namespace {

enum class RandomSource { System, Zeros, Ones, Broken };

RandomSource randomSource = RandomSource::System;

/** What the random source of the process is until the end of the scope. */
class WithRandomSource
{
public:
    explicit WithRandomSource(RandomSource source) { randomSource = source; }
    ~WithRandomSource() { randomSource = RandomSource::System; }
    Q_DISABLE_COPY_MOVE(WithRandomSource)
};

} // namespace

/** Stands in front of the C library's, so that the system's random source can be told to fail. */
extern "C" ssize_t getrandom(void* buffer, size_t length, unsigned int flags)
{
    switch (randomSource) {
    case RandomSource::Broken:
        errno = ENOSYS;
        return -1;
    case RandomSource::Zeros:
        std::memset(buffer, 0x00, length);
        return static_cast<ssize_t>(length);
    case RandomSource::Ones:
        std::memset(buffer, 0xFF, length);
        return static_cast<ssize_t>(length);
    case RandomSource::System:
        break;
    }
    return syscall(SYS_getrandom, buffer, length, flags);
}

class TuningCapabilityTest : public QObject
{
    Q_OBJECT

private slots:
    void newCapabilityHasNoFrequencies();
    void newIdIsRandom();
    void randomBytesBecomeAVersion4Id_data();
    void randomBytesBecomeAVersion4Id();
    void missingRandomBytesAreAnError();
    void givenIdIsKept();
    void copiesAndMovesHaveAllFields();
    void fileOperationsDoNothing();
    void operationsStandInTheirSlots();
};

void TuningCapabilityTest::newCapabilityHasNoFrequencies()
{
    const TuningCapability capability;
    QCOMPARE(capability.rangeStart, 0);
    QCOMPARE(capability.rangeEnd, 0);
    QCOMPARE(capability.step, 0);
    QVERIFY(capability.freqList.empty());
    QVERIFY(capability.subRanges.empty());
}

void TuningCapabilityTest::newIdIsRandom()
{
    const TuningCapability first;
    const TuningCapability second;
    QVERIFY(first.id != second.id);
    QCOMPARE(first.id.version(), boost::uuids::uuid::version_random_number_based);
    QCOMPARE(first.id.variant(), boost::uuids::uuid::variant_rfc_4122);
}

void TuningCapabilityTest::randomBytesBecomeAVersion4Id_data()
{
    QTest::addColumn<int>("source");
    QTest::addColumn<QString>("id");
    QTest::newRow("all bits unset")
        << int(RandomSource::Zeros) << "00000000-0000-4000-8000-000000000000";
    QTest::newRow("all bits set") << int(RandomSource::Ones)
                                  << "ffffffff-ffff-4fff-bfff-ffffffffffff";
}

void TuningCapabilityTest::randomBytesBecomeAVersion4Id()
{
    QFETCH(int, source);
    const WithRandomSource scope(static_cast<RandomSource>(source));
    QTEST(QString::fromStdString(to_string(TuningCapability().id)), "id");
}

void TuningCapabilityTest::missingRandomBytesAreAnError()
{
    const WithRandomSource scope(RandomSource::Broken);
    QVERIFY_EXCEPTION_THROWN(TuningCapability(), boost::uuids::entropy_error);
    // An id that is given needs none.
    QVERIFY(TuningCapability(boost::uuids::nil_uuid()).id.is_nil());
}

void TuningCapabilityTest::givenIdIsKept()
{
    const auto id = boost::uuids::string_generator()("01234567-89ab-cdef-0123-456789abcdef");
    const TuningCapability capability(id);
    QVERIFY(capability.id == id);
    QCOMPARE(capability.rangeStart, 0);
    QCOMPARE(capability.rangeEnd, 0);
    QCOMPARE(capability.step, 0);
    QVERIFY(capability.freqList.empty());
    QVERIFY(capability.subRanges.empty());
}

void TuningCapabilityTest::copiesAndMovesHaveAllFields()
{
    TuningCapability capability;
    capability.rangeStart = 470000;
    capability.rangeEnd = 480000;
    capability.step = 25;
    capability.freqList = {470025, 470000};
    capability.subRanges = {{470000, 471000}, {475000, 476000}};

    const TuningCapability copy(capability);
    TuningCapability assigned;
    assigned = capability;
    TuningCapability source(capability);
    const TuningCapability moved(std::move(source));
    TuningCapability moveAssigned;
    moveAssigned = TuningCapability(capability);
    for (const TuningCapability& each : {copy, assigned, moved, moveAssigned}) {
        QVERIFY(each.id == capability.id);
        QCOMPARE(each.rangeStart, 470000);
        QCOMPARE(each.rangeEnd, 480000);
        QCOMPARE(each.step, 25);
        QVERIFY(each.freqList == capability.freqList);
        QVERIFY(each.subRanges == capability.subRanges);
    }
}

void TuningCapabilityTest::fileOperationsDoNothing()
{
    const QTemporaryDir folder;
    const std::string path = folder.filePath(QStringLiteral("capability.xml")).toStdString();
    TuningCapability capability;
    const boost::uuids::uuid id = capability.id;
    QVERIFY(!capability.Export(path, true));
    QVERIFY(!capability.Export(path, false));
    QVERIFY(!capability.Import(path));
    QVERIFY(!capability.Import(std::string()));
    QVERIFY(capability.id == id);
    QVERIFY(QDir(folder.path()).isEmpty());
}

void TuningCapabilityTest::operationsStandInTheirSlots()
{
    // The destructor stands behind them.
    QCOMPARE(virtualSlot(&TuningCapability::Export), 0);
    QCOMPARE(virtualSlot(&TuningCapability::Import), 1);
}

QTEST_GUILESS_MAIN(TuningCapabilityTest)
#include "TuningCapabilityTest.moc"

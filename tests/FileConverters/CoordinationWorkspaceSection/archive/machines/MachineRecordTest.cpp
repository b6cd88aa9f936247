#include "FileConverters/CoordinationWorkspaceSection/archive/machines/MachineRecord.h"

#include <QtTest>

class MachineRecordTest : public QObject
{
    Q_OBJECT

private slots:
    void whatIsAnAnswer_data();
    void whatIsAnAnswer();
    void verifiedIsExactlyWhatWasAskedToBe_data();
    void verifiedIsExactlyWhatWasAskedToBe();
    void lossyOnesAreNotWrittenWhereOnlyCleanOnesAre();
    void ofADocumentThatWasNotReadNothingIsKnown();
};

namespace {

const FileIdentity BEFORE{10, QStringLiteral("aa")};
const FileIdentity AFTER{11, QStringLiteral("bb")};

DocumentRecord left(DocumentRecord::Outcome outcome, const char* reason)
{
    DocumentRecord record;
    record.path = QStringLiteral("a.xml");
    record.source = BEFORE;
    record.outcome = outcome;
    record.reason = QLatin1String(reason);
    return record;
}

DocumentRecord written(DocumentRecord::Outcome outcome, const FileIdentity& target, int losses = 0)
{
    DocumentRecord record = left(outcome, "");
    record.target = target;
    record.losses.resize(static_cast<std::size_t>(losses));
    return record;
}

PlannedDocument document(bool isBlocked = false)
{
    return {QStringLiteral("a.xml"), 10, false, isBlocked, {}};
}

} // namespace

Q_DECLARE_METATYPE(DocumentRecord)

void MachineRecordTest::whatIsAnAnswer_data()
{
    QTest::addColumn<DocumentRecord>("told");
    QTest::addColumn<bool>("isBlocked");
    QTest::addColumn<bool>("isAnswer");
    const auto row = [](const char* name, const DocumentRecord& told, bool isAnswer,
                        bool isBlocked = false) {
        QTest::newRow(name) << told << isBlocked << isAnswer;
    };
    using R = DocumentRecord;
    row("converted", written(R::CONVERTED, AFTER), true);
    row("converted, and lost something", written(R::CONVERTED, AFTER, 1), false);
    row("converted to nothing", left(R::CONVERTED, ""), false);
    row("converted where something is kept", written(R::CONVERTED, AFTER), false, true);
    row("lossy", written(R::LOSSY, AFTER, 2), true);
    row("lossy without a loss", written(R::LOSSY, AFTER), false);
    row("lossy and not written", left(R::LOSSY, "not-clean"), false);
    row("copied", written(R::CURRENT, BEFORE), true);
    row("copied to other bytes", written(R::CURRENT, AFTER), false);
    row("too new", left(R::REFUSED, "too-new"), true);
    row("none of ours", left(R::REFUSED, "no-workspace"), true);
    row("several sections", left(R::REFUSED, "several-sections"), true);
    row("something in its place here", left(R::REFUSED, "target-exists"), true, true);
    row("something in its place there", left(R::REFUSED, "target-exists"), false);
    row("refused for a reason that no worker has", left(R::REFUSED, "sunday"), false);
    row("not well-formed", left(R::FAILED, "not-well-formed"), true);
    row("a profile without a UUID", left(R::FAILED, "invalid-profile-id"), true);
    row("not readable there", left(R::FAILED, "not-readable"), false);
    row("no room there", left(R::FAILED, "not-written"), false);
    row("no converter there", left(R::FAILED, "no-converter"), false);
    row("changed there", left(R::FAILED, "changed"), false);
    row("out of time there", left(R::LIMIT, "time"), false);
    row("out of memory there", left(R::LIMIT, "memory"), false);
    R failed = written(R::FAILED, AFTER);
    failed.reason = QStringLiteral("not-well-formed");
    row("failed, and written", failed, false);
}

void MachineRecordTest::whatIsAnAnswer()
{
    QFETCH(DocumentRecord, told);
    QFETCH(bool, isBlocked);
    QTEST(MachineRecord::isAnswer(told, document(isBlocked), {}), "isAnswer");
}

void MachineRecordTest::verifiedIsExactlyWhatWasAskedToBe_data()
{
    QTest::addColumn<DocumentRecord>("told");
    QTest::addColumn<bool>("verifies");
    QTest::addColumn<bool>("isVerified");
    using R = DocumentRecord;
    QTest::newRow("a conversion, asked for") << written(R::CONVERTED, AFTER) << true << true;
    QTest::newRow("a conversion, not asked for") << written(R::CONVERTED, AFTER) << false << false;
    QTest::newRow("a lossy one, asked for") << written(R::LOSSY, AFTER, 1) << true << true;
    QTest::newRow("a copy, asked for") << written(R::CURRENT, BEFORE) << true << false;
    QTest::newRow("not written, asked for") << left(R::REFUSED, "too-new") << true << false;
}

void MachineRecordTest::verifiedIsExactlyWhatWasAskedToBe()
{
    QFETCH(DocumentRecord, told);
    QFETCH(bool, verifies);
    QFETCH(bool, isVerified);
    ArchiveSettings settings;
    settings.verifies = verifies;
    told.isVerified = isVerified;
    QVERIFY(MachineRecord::isAnswer(told, document(), settings));
    told.isVerified = !isVerified;
    QVERIFY(!MachineRecord::isAnswer(told, document(), settings));
}

void MachineRecordTest::lossyOnesAreNotWrittenWhereOnlyCleanOnesAre()
{
    ArchiveSettings settings;
    settings.onlyClean = true;
    QVERIFY(
        MachineRecord::isAnswer(left(DocumentRecord::LOSSY, "not-clean"), document(), settings));
    QVERIFY(!MachineRecord::isAnswer(left(DocumentRecord::LOSSY, "too-new"), document(), settings));
    QVERIFY(
        !MachineRecord::isAnswer(written(DocumentRecord::LOSSY, AFTER, 1), document(), settings));
    QVERIFY(
        MachineRecord::isAnswer(written(DocumentRecord::CONVERTED, AFTER), document(), settings));
}

void MachineRecordTest::ofADocumentThatWasNotReadNothingIsKnown()
{
    DocumentRecord told = left(DocumentRecord::REFUSED, "too-new");
    told.source.reset();
    QVERIFY(!MachineRecord::isAnswer(told, document(), {}));
}

QTEST_GUILESS_MAIN(MachineRecordTest)
#include "MachineRecordTest.moc"

#include "FileConverters/CoordinationWorkspaceSection/inspect/InspectCommandLine.h"

#include <QtTest>

Q_DECLARE_METATYPE(InspectCommandLine::Task)
Q_DECLARE_METATYPE(InspectCommandLine::Colour)

class InspectCommandLineTest : public QObject
{
    Q_OBJECT

private slots:
    void argumentsAreUnderstood_data();
    void argumentsAreUnderstood();
    void switchesStandAlone();
    void wrongUsageIsTold_data();
    void wrongUsageIsTold();
};

void InspectCommandLineTest::argumentsAreUnderstood_data()
{
    using Line = InspectCommandLine;
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<Line::Task>("task");
    QTest::addColumn<QStringList>("documents");
    QTest::addColumn<Line::Colour>("colour");
    const auto row = [](const char* name, const QStringList& arguments, Line::Task task,
                        const QStringList& documents, Line::Colour colour = Line::AUTO) {
        QTest::newRow(name) << arguments << task << documents << colour;
    };
    row("nothing is standard input", {}, Line::INSPECT, {"-"});
    row("hyphen", {"-"}, Line::INSPECT, {"-"});
    row("several", {"a", "-", "a"}, Line::INSPECT, {"a", "-", "a"});
    row("options behind documents", {"a", "--color=never"}, Line::INSPECT, {"a"}, Line::NEVER);
    row("value apart", {"--color", "always", "a"}, Line::INSPECT, {"a"}, Line::ALWAYS);
    row("document like an option", {"--", "--json"}, Line::INSPECT, {"--json"});
    row("verify", {"--verify", "a", "b"}, Line::VERIFY, {"a", "b"});
    row("verify standard input", {"--verify", "a", "-"}, Line::VERIFY, {"a", "-"});
    row("help", {"--help"}, Line::SHOW_HELP, {"-"});
    row("version", {"--version"}, Line::SHOW_VERSION, {"-"});
    row("schema", {"--json-schema"}, Line::SHOW_SCHEMA, {"-"});
}

void InspectCommandLineTest::argumentsAreUnderstood()
{
    QFETCH(QStringList, arguments);
    QFETCH(InspectCommandLine::Task, task);
    QFETCH(QStringList, documents);
    QFETCH(InspectCommandLine::Colour, colour);

    InspectCommandLine line;
    QCOMPARE(line.parse(arguments), QString());
    QCOMPARE(line.task, task);
    QCOMPARE(line.documents, documents);
    QCOMPARE(line.colour, colour);
    QVERIFY(!line.isJson && !line.isQuiet && !line.joinsLines);
}

void InspectCommandLineTest::switchesStandAlone()
{
    InspectCommandLine json;
    QCOMPARE(json.parse({"--json"}), QString());
    QVERIFY(json.isJson && !json.isQuiet && !json.joinsLines);
    InspectCommandLine quiet;
    QCOMPARE(quiet.parse({"--quiet"}), QString());
    QVERIFY(!quiet.isJson && quiet.isQuiet && !quiet.joinsLines);
    InspectCommandLine joins;
    QCOMPARE(joins.parse({"--stdin", "a"}), QString());
    QVERIFY(!joins.isJson && !joins.isQuiet && joins.joinsLines);
}

void InspectCommandLineTest::wrongUsageIsTold_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("unknown option") << QStringList{"--colour=always"};
    QTest::newRow("unknown letter") << QStringList{"-j"};
    QTest::newRow("unknown colour") << QStringList{"--color=yes"};
    QTest::newRow("colour without a value") << QStringList{"--color"};
    QTest::newRow("value too many") << QStringList{"--quiet=1"};
    QTest::newRow("nothing to verify") << QStringList{"--verify"};
    QTest::newRow("one to verify") << QStringList{"--verify", "a"};
    QTest::newRow("three to verify") << QStringList{"--verify", "a", "b", "c"};
    QTest::newRow("standard input twice") << QStringList{"-", "a", "-"};
}

void InspectCommandLineTest::wrongUsageIsTold()
{
    QFETCH(QStringList, arguments);
    InspectCommandLine line;
    QVERIFY(!line.parse(arguments).isEmpty());
    QVERIFY(!line.isJson);
    InspectCommandLine json;
    QVERIFY(!json.parse(QStringList("--json") + arguments).isEmpty());
    QVERIFY(json.isJson);
}

QTEST_GUILESS_MAIN(InspectCommandLineTest)
#include "InspectCommandLineTest.moc"

// Hunts command lines that the inspector takes, refuses or understands otherwise than its help
// says.
//
// The input's lines are the arguments.

#include "fuzz/FuzzTarget.h"

#include "FileConverters/CoordinationWorkspaceSection/inspect/InspectCommandLine.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/ReportJson.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

using FuzzTarget::require;

namespace {

const QSet<QString> FLAGS = {"verify", "stdin", "json", "quiet", "json-schema", "help", "version"};

/** The arguments by the rules of the help. */
struct Rules
{
    explicit Rules(const QStringList& arguments)
    {
        for (int i = 0; i < arguments.size(); ++i) {
            const QString& argument = arguments[i];
            if (areOptionsOver || argument == QLatin1String("-") ||
                !argument.startsWith(QLatin1Char('-'))) {
                documents.append(argument);
            } else if (argument == QLatin1String("--")) {
                areOptionsOver = true;
            } else if (argument == QLatin1String("--color")) {
                hasMistake = hasMistake || i + 1 == arguments.size();
                colour = arguments.value(++i);
            } else if (argument.startsWith(QLatin1String("--color="))) {
                colour = argument.mid(8);
            } else if (argument.startsWith(QLatin1String("--"))) {
                takeFlag(argument.mid(2));
            } else {
                hasMistake = true; // there are no short options
            }
        }
    }

    // A flag takes no value. One that is given one is a mistake and counts all the same, so that
    // the mistake is told as JSON when JSON was asked for.
    void takeFlag(const QString& text)
    {
        const QString name = text.section(QLatin1Char('='), 0, 0);
        hasMistake = hasMistake || !FLAGS.contains(text);
        flags.insert(name);
    }

    bool isRight() const
    {
        const bool isColourKnown = colour == QLatin1String("auto") ||
                                   colour == QLatin1String("always") ||
                                   colour == QLatin1String("never");
        return !hasMistake && isColourKnown && (!verifies() || documents.size() == 2) &&
               documents.count(QStringLiteral("-")) <= 1;
    }

    InspectCommandLine::Task task() const
    {
        if (flags.contains(QStringLiteral("help"))) {
            return InspectCommandLine::SHOW_HELP;
        }
        if (flags.contains(QStringLiteral("version"))) {
            return InspectCommandLine::SHOW_VERSION;
        }
        if (flags.contains(QStringLiteral("json-schema"))) {
            return InspectCommandLine::SHOW_SCHEMA;
        }
        return flags.contains(QStringLiteral("verify")) ? InspectCommandLine::VERIFY
                                                        : InspectCommandLine::INSPECT;
    }

    bool verifies() const { return task() == InspectCommandLine::VERIFY; }

    bool areOptionsOver = false;
    bool hasMistake = false;
    QString colour = QStringLiteral("auto");
    QSet<QString> flags;
    QStringList documents;
};

void checkRight(const InspectCommandLine& commandLine, const Rules& rules)
{
    require(commandLine.task == rules.task(), "the options say what is to be done");
    require(commandLine.isJson == rules.flags.contains("json"), "--json is understood");
    require(commandLine.isQuiet == rules.flags.contains("quiet"), "--quiet is understood");
    require(commandLine.joinsLines == rules.flags.contains("stdin"), "--stdin is understood");
    const InspectCommandLine::Colour colour = rules.colour == "auto" ? InspectCommandLine::AUTO
                                              : rules.colour == "always"
                                                  ? InspectCommandLine::ALWAYS
                                                  : InspectCommandLine::NEVER;
    require(commandLine.colour == colour, "--color is understood");
    require(commandLine.documents ==
                (rules.documents.isEmpty() ? QStringList("-") : rules.documents),
            "the rest are documents, and without any it is standard input");
}

void checkWrong(const QString& problem)
{
    const QByteArray json = ReportJson::ofUsageError(problem);
    require(json.count('\n') == 1 && json.endsWith('\n'), "an object stands on one line");
    require(QJsonDocument::fromJson(json).object().contains(QStringLiteral("error")),
            "what is wrong is told as an error");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzTarget::setUp();
    FuzzTarget::Input input(data, size);
    QStringList arguments;
    while (!input.isEmpty()) {
        const QByteArray line = input.takeLine();
        arguments.append(QString::fromUtf8(line.constData())); // no argument has a zero in it
    }
    const Rules rules(arguments);
    InspectCommandLine commandLine;
    const QString problem = commandLine.parse(arguments);
    require(problem.isEmpty() == rules.isRight(), "right command lines are taken, and no others");
    if (problem.isEmpty()) {
        checkRight(commandLine, rules);
    } else {
        require(commandLine.isJson == rules.flags.contains("json"),
                "who asks for JSON is told so what is wrong");
        checkWrong(problem);
    }
    return 0;
}

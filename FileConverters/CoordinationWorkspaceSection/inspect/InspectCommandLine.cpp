#include "FileConverters/CoordinationWorkspaceSection/inspect/InspectCommandLine.h"

#include <QCommandLineOption>
#include <QCommandLineParser>

namespace {

const char* const HELP = R"(usage: coordworkspace-inspect [OPTION...] [DOCUMENT...]
       coordworkspace-inspect [OPTION...] --verify BEFORE AFTER

Tells what the conversion of coordination workspaces to section version 0.3 would do and what it
would lose, or whether it was done right. Changes nothing. A document is a file, or "-" for standard
input, which is also read when none is named.

  --verify         compare the converted document AFTER with BEFORE
  --stdin          read documents (with --verify: BEFORE) as the converter reads standard input,
                   with their lines joined
  --json           one JSON object a line for each document
  --quiet          answer by the status alone
  --color=WHEN     auto (the default), always or never
  --json-schema    print the JSON Schema of what --json prints
  --help           print this
  --version        print the version

Status: 0 converts and nothing is lost, or the conversion is right; 2 something would be lost, it is
current already or too old, or the conversion is wrong; 1 newer than known, cannot be converted or
read; 64 wrong usage. Of several documents the worst counts, 1 over 2.
)";

const QString STANDARD_INPUT = QStringLiteral("-");

QCommandLineOption option(const char* name)
{
    return QCommandLineOption(QLatin1String(name));
}

QCommandLineOption colourOption()
{
    QCommandLineOption colour = option("color");
    colour.setValueName(QStringLiteral("WHEN"));
    colour.setDefaultValue(QStringLiteral("auto"));
    return colour;
}

bool parseColour(const QString& when, InspectCommandLine::Colour& colour)
{
    if (when == QLatin1String("auto")) {
        colour = InspectCommandLine::AUTO;
    } else if (when == QLatin1String("always")) {
        colour = InspectCommandLine::ALWAYS;
    } else if (when == QLatin1String("never")) {
        colour = InspectCommandLine::NEVER;
    } else {
        return false;
    }
    return true;
}

InspectCommandLine::Task taskOf(const QCommandLineParser& parser)
{
    if (parser.isSet(QStringLiteral("help"))) {
        return InspectCommandLine::SHOW_HELP;
    }
    if (parser.isSet(QStringLiteral("version"))) {
        return InspectCommandLine::SHOW_VERSION;
    }
    if (parser.isSet(QStringLiteral("json-schema"))) {
        return InspectCommandLine::SHOW_SCHEMA;
    }
    return parser.isSet(QStringLiteral("verify")) ? InspectCommandLine::VERIFY
                                                  : InspectCommandLine::INSPECT;
}

} // namespace

QString InspectCommandLine::parse(const QStringList& arguments)
{
    QCommandLineParser parser;
    for (const char* name :
         {"verify", "stdin", "json", "quiet", "json-schema", "help", "version"}) {
        parser.addOption(option(name));
    }
    parser.addOption(colourOption());
    // The parser takes the first for the program's name.
    const bool isKnown = parser.parse(QStringList(QString()) + arguments);
    isJson = parser.isSet(QStringLiteral("json"));
    isQuiet = parser.isSet(QStringLiteral("quiet"));
    joinsLines = parser.isSet(QStringLiteral("stdin"));
    if (!isKnown) {
        return parser.errorText();
    }
    if (!parseColour(parser.value(QStringLiteral("color")), colour)) {
        return QStringLiteral("--color is auto, always or never");
    }
    task = taskOf(parser);
    documents = parser.positionalArguments();
    if (task == VERIFY && documents.size() != 2) {
        return QStringLiteral("--verify takes the document before and the one after");
    }
    if (documents.count(STANDARD_INPUT) > 1) {
        return QStringLiteral("standard input can be read once only");
    }
    if (documents.isEmpty()) {
        documents.append(STANDARD_INPUT);
    }
    return {};
}

QString InspectCommandLine::helpText()
{
    return QString::fromUtf8(HELP);
}

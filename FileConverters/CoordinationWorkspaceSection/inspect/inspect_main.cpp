#include "FileConverters/CoordinationWorkspaceSection/ProcessSetup.h"
#include "FileConverters/CoordinationWorkspaceSection/Utf8Output.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/DocumentText.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/InspectCommandLine.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/Report.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/ReportJson.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/ReportText.h"

#include <QFile>
#include <QFileInfo>

#include <cstdio>
#include <iostream>

namespace {

bool isStandardInput(const QString& document)
{
    return document == QLatin1String("-");
}

ReadError notReadable(const QString& document, const QString& which = {})
{
    QString reason = QStringLiteral("it fails while it is read, or is not in its encoding");
    if (!isStandardInput(document)) {
        const QFileInfo file(document);
        if (!file.exists()) {
            reason = QStringLiteral("there is no such file");
        } else if (file.isDir()) {
            reason = QStringLiteral("it is a folder");
        } else if (!file.isReadable()) {
            reason = QStringLiteral("it may not be read");
        }
    }
    return {QStringLiteral("not-readable"), which + reason, 0};
}

// As the converter reads.
std::optional<DocumentText> readDocument(const QString& document, bool joinsLines)
{
    if (isStandardInput(document)) {
        return DocumentText::ofStream(std::cin);
    }
    return joinsLines ? DocumentText::ofFileAsStream(document) : DocumentText::ofFile(document);
}

// What the converter wrote.
std::optional<DocumentText> readConverted(const QString& document)
{
    QFile file(document);
    const bool isOpen = isStandardInput(document) ? file.open(stdin, QIODevice::ReadOnly)
                                                  : file.open(QIODevice::ReadOnly);
    return isOpen ? DocumentText::ofOutput(file) : std::nullopt;
}

DocumentReport inspect(const QString& document, bool joinsLines)
{
    const std::optional<DocumentText> text = readDocument(document, joinsLines);
    if (!text) {
        return {document, notReadable(document)};
    }
    ReadError error;
    std::optional<Inspection> inspection = inspectDocument(*text, error);
    if (!inspection) {
        return {document, error};
    }
    return {document, std::move(*inspection)};
}

VerificationReport verify(const QString& before, const QString& after, bool joinsLines)
{
    const std::optional<DocumentText> beforeText = readDocument(before, joinsLines);
    if (!beforeText) {
        return {before, after, notReadable(before, QStringLiteral("the document before: "))};
    }
    const std::optional<DocumentText> afterText = readConverted(after);
    if (!afterText) {
        return {before, after, notReadable(after, QStringLiteral("the document after: "))};
    }
    ReadError error;
    std::optional<Verification> verification = verifyConversion(*beforeText, *afterText, error);
    if (!verification) {
        return {before, after, error};
    }
    return {before, after, std::move(*verification)};
}

bool isColoured(InspectCommandLine::Colour colour)
{
    if (colour == InspectCommandLine::AUTO) {
        return qEnvironmentVariableIsEmpty("NO_COLOR") && qgetenv("TERM") != "dumb" &&
               ProcessSetup::isOutputTerminal();
    }
    return colour == InspectCommandLine::ALWAYS;
}

/** Writes reports in the form that was asked for. */
class Output
{
public:
    explicit Output(const InspectCommandLine& commandLine)
        : m_isJson(commandLine.isJson), m_isQuiet(commandLine.isQuiet),
          m_isColoured(isColoured(commandLine.colour))
    {
    }

    template <typename Report>
    void write(const Report& report)
    {
        if (m_isQuiet) {
            return;
        }
        if (m_isJson) {
            std::cout << ReportJson::of(report).constData();
            return;
        }
        if (m_hasWritten) {
            std::cout << '\n';
        }
        writeUtf8(ReportText::of(report, m_isColoured), std::cout);
        m_hasWritten = true;
    }

private:
    const bool m_isJson;
    const bool m_isQuiet;
    const bool m_isColoured;
    bool m_hasWritten = false;
};

int inspectAll(const InspectCommandLine& commandLine)
{
    Output output(commandLine);
    int status = STATUS_GOOD;
    for (const QString& document : commandLine.documents) {
        const DocumentReport report = inspect(document, commandLine.joinsLines);
        output.write(report);
        status = worseStatus(status, statusOf(report));
    }
    return status;
}

int verifyPair(const InspectCommandLine& commandLine)
{
    const VerificationReport report =
        verify(commandLine.documents[0], commandLine.documents[1], commandLine.joinsLines);
    Output(commandLine).write(report);
    return statusOf(report);
}

int run(const InspectCommandLine& commandLine)
{
    switch (commandLine.task) {
    case InspectCommandLine::INSPECT:
        return inspectAll(commandLine);
    case InspectCommandLine::VERIFY:
        return verifyPair(commandLine);
    case InspectCommandLine::SHOW_HELP:
        writeUtf8(InspectCommandLine::helpText(), std::cout);
        break;
    case InspectCommandLine::SHOW_VERSION:
        std::cout << "coordworkspace-inspect " INSPECT_VERSION "\n";
        break;
    case InspectCommandLine::SHOW_SCHEMA: {
        QFile schema(QStringLiteral(":/inspect.schema.json"));
        schema.open(QIODevice::ReadOnly);
        std::cout << schema.readAll().constData();
        break;
    }
    }
    return STATUS_GOOD;
}

int refuse(const InspectCommandLine& commandLine, const QString& problem)
{
    if (commandLine.isJson) {
        std::cout << ReportJson::ofUsageError(problem).constData();
    } else {
        writeUtf8(QStringLiteral("coordworkspace-inspect: %1\n"
                                 "coordworkspace-inspect --help tells the usage\n")
                      .arg(problem),
                  std::cerr);
    }
    return STATUS_USAGE;
}

} // namespace

int main(int argc, char** argv)
{
    ProcessSetup::raiseStackLimit();
    ProcessSetup::reportWriteFailuresAsErrors();
    ProcessSetup::tuneAllocator();
    ProcessSetup::shutOutTheEnvironment();
    std::ios::sync_with_stdio(false);

    InspectCommandLine commandLine;
    const QString problem = commandLine.parse(ProcessSetup::argumentsOf(argc, argv));
    const int status = problem.isEmpty() ? run(commandLine) : refuse(commandLine, problem);
    // A report that did not get there must not pass for one.
    std::cout.flush();
    return std::cout.good() ? status : worseStatus(status, STATUS_IMPOSSIBLE);
}

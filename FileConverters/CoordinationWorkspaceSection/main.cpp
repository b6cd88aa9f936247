#include "FileConverters/CoordinationWorkspaceSection/CoordWorkSpaceSectionConverter0_3.h"
#include "FileConverters/CoordinationWorkspaceSection/ProcessSetup.h"
#include "FileConverters/CoordinationWorkspaceSection/Utf8Output.h"

#include <QDomDocument>
#include <QHash>
#include <QTextCodec>

#include <iostream>
#include <string>

namespace {

constexpr int SUCCEEDED = 0;
constexpr int FAILED = 1;
constexpr int INDENT = 4;

void sayNothing(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& /*text*/)
{
}

// The same document gives the same bytes and the same silence everywhere, whatever the environment
// says to Qt.
void shutOutTheEnvironment()
{
    qInstallMessageHandler(sayNothing);
    // Messages that end the run.
    qunsetenv("QT_FATAL_WARNINGS");
    qunsetenv("QT_FATAL_CRITICALS");
    // Attributes come out in the order of their hashes.
    qunsetenv("QT_HASH_SEED");
    qSetGlobalQHashSeed(0);
    // Decodes file names and files, and decides which characters are printed as they are.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
}

// Lines are joined with nothing between them. Returns false when the input failed before its end.
bool readStandardInput(QString& text)
{
    const char lineFeed = std::cin.widen('\n');
    std::string line;
    while (!std::cin.eof()) {
        std::getline(std::cin, line, lineFeed);
        if (std::cin.bad()) {
            return false;
        }
        if (!line.empty()) {
            text += QString::fromStdString(line);
        }
    }
    return true;
}

// The document, or null when the input cannot be read or is not well-formed.
//
// Nobody destroys it: after the outcome word nothing may run that could still fail, and freeing a
// large document node by node takes a good part of a run.
QDomDocument* readDocument(int argc, char** argv)
{
    static QDomDocument* document = nullptr;
    QString text;
    if (argc == 2) {
        CoordWorkSpaceSectionConverter0_3::ReadInputFile(QString(argv[1]), text);
    } else if (!readStandardInput(text)) {
        return nullptr;
    }
    document = new QDomDocument;
    return document->setContent(text, nullptr, nullptr, nullptr) ? document : nullptr;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 1 && argc != 2) {
        return FAILED;
    }
    ProcessSetup::raiseStackLimit();
    ProcessSetup::reportWriteFailuresAsErrors();
    ProcessSetup::tuneAllocator();
    shutOutTheEnvironment();
    // Apart from C's streams, C++'s tell a failed read from the end of the input.
    std::ios::sync_with_stdio(false);

    QDomDocument* const document = readDocument(argc, argv);
    if (document == nullptr) {
        return FAILED;
    }
    if (!CoordWorkSpaceSectionConverter0_3::Convert(*document)) {
        std::cerr << "\nFAILURE";
        return FAILED;
    }
    if (!writeUtf8(document->toString(INDENT), std::cout)) {
        return FAILED;
    }
    std::cerr << "\nPROGRESS";
    return SUCCEEDED;
}

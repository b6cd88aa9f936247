#include "FileConverters/CoordinationWorkspaceSection/CoordWorkSpaceSectionConverter0_3.h"
#include "FileConverters/CoordinationWorkspaceSection/ProcessSetup.h"
#include "FileConverters/CoordinationWorkspaceSection/StandardInput.h"
#include "FileConverters/CoordinationWorkspaceSection/Utf8Output.h"

#include <QDomDocument>
#include <QString>

#include <iostream>

namespace {

constexpr int SUCCEEDED = 0;
constexpr int FAILED = 1;
constexpr int INDENT = 4;

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
    } else if (!readJoinedLines(std::cin, text)) {
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
    ProcessSetup::shutOutTheEnvironment();
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

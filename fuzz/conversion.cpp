// Hunts documents that the conversion, from the bytes of a file or of standard input to the bytes
// that are written, takes or refuses wrongly, changes although it refuses them, or writes so that
// nobody can read them or the new element does not count what it holds.
//
// The input is what a file holds, and what comes on standard input.

#include "fuzz/ConvertedDocument.h"
#include "fuzz/DocumentMutator.h"
#include "fuzz/FuzzTarget.h"
#include "fuzz/MemoryFile.h"
#include "fuzz/Vocabularies.h"

#include "FileConverters/CoordinationWorkspaceSection/CoordWorkSpaceSectionConverter0_3.h"
#include "FileConverters/CoordinationWorkspaceSection/StandardInput.h"

#include <QBuffer>
#include <QTextCodec>
#include <QTextStream>

#include <sstream>

using FuzzTarget::require;
using FuzzTarget::requireEqual;

namespace {

QString readAsFile(const QByteArray& bytes)
{
    static const MemoryFile SCRATCH;
    SCRATCH.setContent(bytes);
    QString text;
    CoordWorkSpaceSectionConverter0_3::ReadInputFile(SCRATCH.path(), text);
    return text;
}

// The rules step by step, on a device that can go back.
QString textOfFile(QByteArray bytes)
{
    QBuffer device(&bytes);
    device.open(QIODevice::ReadOnly);
    QTextStream stream(&device);
    const std::string firstLine = stream.readLine().toStdString();
    if (QByteArray(firstLine.c_str()).size() == 1) {
        stream.setAutoDetectUnicode(false);
        stream.setCodec(QTextCodec::codecForName("UTF-16"));
    }
    stream.seek(0);
    return stream.readAll();
}

QString readAsStandardInput(const QByteArray& bytes)
{
    std::istringstream stream(bytes.toStdString());
    QString text;
    require(readJoinedLines(stream, text), "memory can be read to its end");
    return text;
}

QString textOfStandardInput(const QByteArray& bytes)
{
    QString text;
    for (const QByteArray& line : bytes.split('\n')) {
        text += FuzzTarget::textOf(line);
    }
    return text;
}

} // namespace

const Vocabulary& vocabularyOfTarget()
{
    return Vocabularies::workspace();
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzTarget::setUp();
    const QByteArray bytes = FuzzTarget::Input(data, size).takeRest();
    const QString ofFile = readAsFile(bytes);
    requireEqual(ofFile, textOfFile(bytes), "a file is read by its rules");
    const QString ofStandardInput = readAsStandardInput(bytes);
    requireEqual(ofStandardInput, textOfStandardInput(bytes),
                 "standard input is read by its rules");

    ConvertedDocument(ofFile).check();
    if (ofStandardInput != ofFile) {
        ConvertedDocument(ofStandardInput).check();
    }
    return 0;
}

#include "FileConverters/CoordinationWorkspaceSection/StandardInput.h"

#include <QString>

#include <istream>
#include <string>

namespace {

void appendLines(std::istream& stream, QString& text, std::vector<int>* lineStarts)
{
    const char lineFeed = stream.widen('\n');
    std::string line;
    while (!stream.eof()) {
        std::getline(stream, line, lineFeed);
        if (lineStarts != nullptr) {
            lineStarts->push_back(text.size());
        }
        if (!line.empty()) {
            text += QString::fromStdString(line);
        }
    }
}

} // namespace

bool readJoinedLines(std::istream& stream, QString& text, std::vector<int>* lineStarts)
{
    try {
        // Without exceptions a stream shows exhausted memory as a failed device.
        stream.exceptions(std::ios::badbit);
        appendLines(stream, text, lineStarts);
        return true;
    } catch (const std::ios_base::failure&) {
        return false;
    }
}

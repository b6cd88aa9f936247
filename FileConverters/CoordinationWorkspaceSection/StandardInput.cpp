#include "FileConverters/CoordinationWorkspaceSection/StandardInput.h"

#include <QString>

#include <istream>
#include <string>

bool readJoinedLines(std::istream& stream, QString& text, std::vector<int>* lineStarts)
{
    const char lineFeed = stream.widen('\n');
    std::string line;
    while (!stream.eof()) {
        std::getline(stream, line, lineFeed);
        if (stream.bad()) {
            return false;
        }
        if (lineStarts != nullptr) {
            lineStarts->push_back(text.size());
        }
        if (!line.empty()) {
            text += QString::fromStdString(line);
        }
    }
    return true;
}

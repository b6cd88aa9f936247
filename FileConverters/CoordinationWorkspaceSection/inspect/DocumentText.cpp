#include "FileConverters/CoordinationWorkspaceSection/inspect/DocumentText.h"

#include "FileConverters/CoordinationWorkspaceSection/CoordWorkSpaceSectionConverter0_3.h"
#include "FileConverters/CoordinationWorkspaceSection/StandardInput.h"

#include <QFile>
#include <QTextCodec>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <utility>

namespace {

std::vector<int> findLineStarts(const QString& text)
{
    std::vector<int> starts = {0};
    for (int i = 0; i < text.size(); ++i) {
        const bool endsLine = text[i] == QLatin1Char('\n') ||
                              (text[i] == QLatin1Char('\r') &&
                               (i + 1 == text.size() || text[i + 1] != QLatin1Char('\n')));
        if (endsLine) {
            starts.push_back(i + 1);
        }
    }
    return starts;
}

// Lines that joining ended, and those that a carriage return ends inside of one. A carriage return
// that stood before a dropped line feed ends no line of its own.
std::vector<int> mergeLineStarts(const std::vector<int>& joined, const std::vector<int>& found)
{
    std::vector<int> merged;
    std::set_union(joined.begin(), joined.end(), found.begin(), found.end(),
                   std::back_inserter(merged));
    return merged;
}

} // namespace

DocumentText::DocumentText(QString text, std::vector<int> joinedLineStarts)
    : m_text(std::move(text)), m_isJoined(!joinedLineStarts.empty()),
      m_joinedLineStarts(std::move(joinedLineStarts)), m_parserLineStarts(findLineStarts(m_text)),
      m_lineStarts(m_isJoined ? mergeLineStarts(m_joinedLineStarts, m_parserLineStarts)
                              : m_parserLineStarts)
{
}

std::optional<DocumentText> DocumentText::ofFile(const QString& path)
{
    // A file that cannot be read leaves the text as it is, and an empty one does not.
    const QString untouched = QStringLiteral("untouched");
    QString text = untouched;
    CoordWorkSpaceSectionConverter0_3::ReadInputFile(path, text);
    return text.isSharedWith(untouched) ? std::nullopt : std::optional(DocumentText(text, {}));
}

std::optional<DocumentText> DocumentText::ofStream(std::istream& stream)
{
    QString text;
    std::vector<int> lineStarts;
    if (!readJoinedLines(stream, text, &lineStarts)) {
        return std::nullopt;
    }
    return DocumentText(text, lineStarts);
}

std::optional<DocumentText> DocumentText::ofFileAsStream(const QString& path)
{
    std::ifstream stream(QFile::encodeName(path).constData(), std::ios::binary);
    return stream ? ofStream(stream) : std::nullopt;
}

std::optional<DocumentText> DocumentText::ofOutput(QFile& file)
{
    const QByteArray bytes = file.readAll();
    QTextCodec::ConverterState state;
    const QString text =
        QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    const bool isUtf8 = state.invalidChars == 0 && state.remainingChars == 0;
    const bool isWhole = file.error() == QFileDevice::NoError;
    if (!isUtf8 || !isWhole) {
        return std::nullopt;
    }
    return DocumentText(text, {});
}

QString DocumentText::withLineFeeds() const
{
    if (!m_isJoined) {
        return m_text;
    }
    QString text;
    text.reserve(m_text.size() + static_cast<int>(m_joinedLineStarts.size()));
    for (std::size_t i = 0; i < m_joinedLineStarts.size(); ++i) {
        const bool isLast = i + 1 == m_joinedLineStarts.size();
        const int end = isLast ? m_text.size() : m_joinedLineStarts[i + 1];
        text += m_text.midRef(m_joinedLineStarts[i], end - m_joinedLineStarts[i]);
        if (!isLast) {
            text += QLatin1Char('\n');
        }
    }
    return text;
}

int DocumentText::positionOf(int parserLine, int parserColumn) const
{
    const int lines = static_cast<int>(m_parserLineStarts.size());
    const int line = std::clamp(parserLine, 1, lines);
    const int start = m_parserLineStarts[static_cast<std::size_t>(line - 1)];
    return std::clamp(start + parserColumn - 1, 0, m_text.size());
}

int DocumentText::lineOf(int position) const
{
    const auto next = std::upper_bound(m_lineStarts.begin(), m_lineStarts.end(), position);
    return std::max(1, static_cast<int>(std::distance(m_lineStarts.begin(), next)));
}

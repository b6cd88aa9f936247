#include "FileConverters/CoordinationWorkspaceSection/inspect/Verification.h"

#include "FileConverters/CoordinationWorkspaceSection/inspect/DocumentText.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/DocumentTree.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/ExpectedDocument.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/Inspection.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/TextLayout.h"

#include <QDomDocument>

#include <algorithm>
#include <array>
#include <utility>

using TextLayout::quoted;

namespace {

constexpr int PRINTED_INDENT = 4;

/** Compares two trees and tells where they differ. */
class Comparison
{
public:
    Comparison(const DocumentTree& expected, const DocumentTree& actual,
               const DocumentPlaces& places)
        : m_expected(expected), m_actual(actual), m_places(places)
    {
    }

    std::vector<Difference> run()
    {
        comparePair(DocumentTree::TOP, DocumentTree::TOP);
        while (!m_waiting.empty()) {
            const auto [expected, actual] = m_waiting.back();
            m_waiting.pop_back();
            compareAttributes(m_expected.node(expected), m_actual.node(actual));
            compareChildren(expected, actual);
        }
        std::stable_sort(m_found.begin(), m_found.end(),
                         [](const Difference& left, const Difference& right) {
                             return left.place.line < right.place.line;
                         });
        return std::move(m_found);
    }

private:
    using Node = DocumentTree::Node;

    void comparePair(int expected, int actual)
    {
        if (isSame(expected, actual)) {
            return;
        }
        if (m_expected.node(expected).mayHaveChildren()) {
            m_waiting.emplace_back(expected, actual);
            return;
        }
        add(actual, QStringLiteral("%1 stands here instead of this: %2.")
                        .arg(m_actual.describe(actual), m_expected.describe(expected)));
    }

    void compareAttributes(const Node& expected, const Node& actual)
    {
        for (auto entry = expected.attributes.begin(); entry != expected.attributes.end();
             ++entry) {
            const auto found = actual.attributes.find(entry.key());
            if (found == actual.attributes.end()) {
                addAttribute(
                    actual, entry.key(),
                    QStringLiteral("It is missing and should be %1.").arg(quoted(entry.value())));
            } else if (found.value() != entry.value()) {
                addAttribute(actual, entry.key(),
                             QStringLiteral("It is %1 and should be %2.")
                                 .arg(quoted(found.value()), quoted(entry.value())));
            }
        }
        for (auto entry = actual.attributes.begin(); entry != actual.attributes.end(); ++entry) {
            if (!expected.attributes.contains(entry.key())) {
                addAttribute(
                    actual, entry.key(),
                    QStringLiteral("It is %1 and should not be there.").arg(quoted(entry.value())));
            }
        }
    }

    // What both begin with and what both end with is right; between them one is held against the
    // other.
    void compareChildren(int expectedParent, int actualParent)
    {
        const std::vector<int>& expected = m_expected.node(expectedParent).children;
        const std::vector<int>& actual = m_actual.node(actualParent).children;
        std::size_t begin = 0;
        std::size_t expectedEnd = expected.size();
        std::size_t actualEnd = actual.size();
        while (begin < expectedEnd && begin < actualEnd && isSame(expected[begin], actual[begin])) {
            ++begin;
        }
        while (expectedEnd > begin && actualEnd > begin &&
               isSame(expected[expectedEnd - 1], actual[actualEnd - 1])) {
            --expectedEnd;
            --actualEnd;
        }
        compareRanges({expected.begin() + offset(begin), expected.begin() + offset(expectedEnd)},
                      {actual.begin() + offset(begin), actual.begin() + offset(actualEnd)},
                      actualParent);
    }

    void compareRanges(const std::vector<int>& expected, const std::vector<int>& actual,
                       int actualParent)
    {
        std::size_t i = 0;
        std::size_t j = 0;
        while (i < expected.size() || j < actual.size()) {
            const auto expectedLeft = expected.size() - i;
            const auto actualLeft = actual.size() - j;
            if (expectedLeft > 0 && actualLeft > 0 &&
                m_expected.isOfSameKind(expected[i], m_actual, actual[j])) {
                comparePair(expected[i++], actual[j++]);
            } else if (expectedLeft >= actualLeft) {
                addMissing(expected[i++], actualParent);
            } else {
                addUnexpected(actual[j++]);
            }
        }
    }

    bool isSame(int expected, int actual) const
    {
        return m_expected.node(expected).content == m_actual.node(actual).content;
    }

    static std::ptrdiff_t offset(std::size_t index) { return static_cast<std::ptrdiff_t>(index); }

    void addMissing(int expected, int actualParent)
    {
        const Difference::Kind kind = kindOf(m_expected, expected);
        m_found.push_back({kind, placeOf(actualParent),
                           QStringLiteral("%1 is missing.").arg(m_expected.describe(expected))});
    }

    void addUnexpected(int actual)
    {
        add(actual, QStringLiteral("%1 should not be there.").arg(m_actual.describe(actual)));
    }

    void add(int actual, const QString& text)
    {
        m_found.push_back({kindOf(m_actual, actual), placeOf(actual), text});
    }

    void addAttribute(const Node& actual, const QString& name, const QString& text)
    {
        const bool isVersion = actual.dom.nodeName() == QLatin1String("coordinated_data_root") &&
                               name == QLatin1String("version");
        const Difference::Kind kind = isVersion             ? Difference::VERSION
                                      : actual.isInSettings ? Difference::SETTINGS
                                                            : Difference::CONTENT;
        m_found.push_back({kind, m_places.ofAttribute(actual.dom.toElement(), name), text});
    }

    static Difference::Kind kindOf(const DocumentTree& tree, int index)
    {
        const Node& node = tree.node(index);
        if (node.isInSettings) {
            return Difference::SETTINGS;
        }
        static const std::array<QString, 3> CONTAINERS = {QStringLiteral("compat_configs"),
                                                          QStringLiteral("compat_profiles"),
                                                          QStringLiteral("compatibility_levels")};
        const bool isContainer = std::find(CONTAINERS.begin(), CONTAINERS.end(),
                                           node.dom.nodeName()) != CONTAINERS.end();
        return isContainer ? Difference::CONTAINER : Difference::CONTENT;
    }

    // Texts and comments stand where their element does.
    Place placeOf(int actual) const
    {
        QDomNode node = m_actual.node(actual).dom;
        if (!node.isElement()) {
            node = node.parentNode();
        }
        return m_places.of(node.toElement());
    }

    const DocumentTree& m_expected;
    const DocumentTree& m_actual;
    const DocumentPlaces& m_places;
    std::vector<std::pair<int, int>> m_waiting;
    std::vector<Difference> m_found;
};

bool parse(const DocumentText& text, const QString& which, QDomDocument& document, ReadError& error)
{
    QString problem;
    int line = 0;
    int column = 0;
    if (document.setContent(text.text(), &problem, &line, &column)) {
        return true;
    }
    error = {QStringLiteral("not-well-formed"),
             QStringLiteral("the document %1: %2").arg(which, problem),
             text.lineOf(text.positionOf(line, column))};
    return false;
}

// As Qt reads what it has printed, in the characters that UTF-8 can hold.
bool printAndRead(const QDomDocument& document, QDomDocument& result)
{
    const QByteArray printed = document.toString(PRINTED_INDENT).toUtf8();
    // With its size, since Qt's parser lets zero characters pass.
    return result.setContent(QString::fromUtf8(printed.constData(), printed.size()));
}

bool makeExpected(const DocumentText& before, QDomDocument& expected, ReadError& error)
{
    QDomDocument document;
    if (!parse(before, QStringLiteral("before"), document, error)) {
        return false;
    }
    QString problem;
    if (!makeExpectedDocument(document, problem)) {
        error = {QStringLiteral("not-convertible"),
                 QStringLiteral("the document before: %1").arg(problem), 0};
        return false;
    }
    if (!printAndRead(document, expected)) {
        error = {QStringLiteral("not-convertible"),
                 QStringLiteral("the document before: what Qt prints of it is not well-formed"), 0};
        return false;
    }
    return true;
}

} // namespace

QString Difference::nameOf(Kind kind)
{
    constexpr std::array<const char*, CONTENT + 1> NAMES = {"version", "settings", "container",
                                                            "content"};
    return QLatin1String(NAMES[static_cast<std::size_t>(kind)]);
}

std::optional<Verification> verifyConversion(const DocumentText& before, const DocumentText& after,
                                             ReadError& error)
{
    QDomDocument expected;
    QDomDocument actual;
    if (!makeExpected(before, expected, error) ||
        !parse(after, QStringLiteral("after"), actual, error)) {
        return std::nullopt;
    }
    DocumentTree::Contents contents;
    const DocumentTree expectedTree(expected, contents);
    const DocumentTree actualTree(actual, contents);
    const DocumentPlaces places(actual, after);
    return Verification{Comparison(expectedTree, actualTree, places).run()};
}

#include "FileConverters/CoordinationWorkspaceSection/inspect/FindingList.h"

#include "FileConverters/CoordinationWorkspaceSection/inspect/DocumentText.h"

#include <QDomDocument>
#include <QtTest>

#include <sstream>

class FindingListTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void findingsComeByLine();
    void attributesAreNamed();
    void notesAreTakenWhereTheyAreWanted_data();
    void notesAreTakenWhereTheyAreWanted();

private:
    FindingList listOf(FindingList::Wanted wanted) const;

    std::optional<DocumentText> m_text;
    QDomDocument m_document;
    QDomElement m_first;
    QDomElement m_second;
};

namespace {

QStringList textsOf(const Findings& findings)
{
    QStringList texts;
    for (const Finding& finding : findings) {
        texts.append(
            QStringLiteral("%1 %2 %3")
                .arg(QString::number(finding.place.line), finding.place.path, finding.text));
    }
    return texts;
}

} // namespace

void FindingListTest::init()
{
    std::istringstream stream("<a>\n <b x=\"1\"/>\n <c/>\n</a>");
    m_text = DocumentText::ofStream(stream);
    QVERIFY(m_text && m_document.setContent(m_text->text()));
    m_first = m_document.documentElement().firstChildElement();
    m_second = m_first.nextSiblingElement();
}

FindingList FindingListTest::listOf(FindingList::Wanted wanted) const
{
    return {m_document, *m_text, wanted};
}

void FindingListTest::findingsComeByLine()
{
    FindingList findings = listOf(FindingList::LOSSES_AND_NOTES);
    findings.add(Finding::UNREAD_TEXT, m_second, "third");
    findings.add(Finding::UNREAD_TEXT, m_first, "first");
    findings.add(Finding::STAYS_BEHIND, m_second, "a note");
    findings.add(Finding::COMMENT_REMOVED, m_first, "a note before");
    findings.add(Finding::UNREAD_ELEMENT, m_first, "second, of the same line");
    QCOMPARE(textsOf(findings.losses()),
             QStringList({"2 /a/b first", "2 /a/b second, of the same line", "3 /a/c third"}));
    QCOMPARE(textsOf(findings.notes()), QStringList({"2 /a/b a note before", "3 /a/c a note"}));
}

void FindingListTest::attributesAreNamed()
{
    FindingList findings = listOf(FindingList::LOSSES);
    findings.addAttribute(Finding::UNREAD_ATTRIBUTE, m_first, "x", "it");
    QCOMPARE(textsOf(findings.losses()), QStringList{"2 /a/b/@x it"});
}

void FindingListTest::notesAreTakenWhereTheyAreWanted_data()
{
    QTest::addColumn<int>("wanted");
    QTest::addColumn<bool>("areTaken");
    QTest::newRow("losses only") << static_cast<int>(FindingList::LOSSES) << false;
    QTest::newRow("all") << static_cast<int>(FindingList::LOSSES_AND_NOTES) << true;
}

void FindingListTest::notesAreTakenWhereTheyAreWanted()
{
    QFETCH(int, wanted);
    QFETCH(bool, areTaken);
    FindingList findings = listOf(static_cast<FindingList::Wanted>(wanted));
    QCOMPARE(findings.takesNotes(), areTaken);
    findings.add(Finding::STAYS_BEHIND, m_first, "a note");
    findings.addAttribute(Finding::PROFILE_ID_RESPELLED, m_first, "x", "a note");
    findings.add(Finding::UNREAD_TEXT, m_first, "a loss");
    QCOMPARE(findings.notes().size(), areTaken ? std::size_t(2) : std::size_t(0));
    QCOMPARE(textsOf(findings.losses()), QStringList{"2 /a/b a loss"});
}

QTEST_GUILESS_MAIN(FindingListTest)
#include "FindingListTest.moc"

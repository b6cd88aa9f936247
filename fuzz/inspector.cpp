// Hunts documents of which the inspector foretells something else than the conversion does, whose
// right conversion it calls wrong, or that bring its reports out of their form.
//
// The input is what a file holds, and what comes on standard input.

#include "fuzz/ConvertedDocument.h"
#include "fuzz/DocumentMutator.h"
#include "fuzz/FuzzTarget.h"
#include "fuzz/MemoryFile.h"
#include "fuzz/Vocabularies.h"

#include "FileConverters/CoordinationWorkspaceSection/inspect/DocumentText.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/Report.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/ReportJson.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/ReportText.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/TextLayout.h"

#include <QDomDocument>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <boost/uuid/uuid_io.hpp>

#include <algorithm>
#include <sstream>

using FuzzTarget::require;

namespace {

// --- What was foretold, and what came --------------------------------------------------------

QString textOf(const QDomElement& parent, const char* child)
{
    return parent.firstChildElement(QLatin1String(child)).text();
}

void checkSpacings(const PkCompatProfile& foretold, const QDomElement& spacing)
{
    const std::pair<const char*, int> values[] = {
        {"ch_ch", foretold.chCh},       {"imd_2t3o", foretold.imd2t3o},
        {"imd_2t5o", foretold.imd2t5o}, {"imd_2t7o", foretold.imd2t7o},
        {"imd_2t9o", foretold.imd2t9o}, {"imd_3t3o", foretold.imd3t3o}};
    for (const auto& [name, value] : values) {
        require(textOf(spacing, name) == QString::number(value), "a foretold spacing comes");
    }
}

void checkSystem(const InspectedSystem& foretold, const QDomElement& system)
{
    const std::pair<const char*, const std::string&> fields[] = {
        {"band", foretold.key.band},
        {"series", foretold.key.series},
        {"tx_profile", foretold.key.txProfile},
        {"zone", foretold.key.zone},
        {"incl_group", foretold.key.inclGroup}};
    for (const auto& [name, value] : fields) {
        require(textOf(system, name) == QString(value.c_str()), "a foretold key comes");
    }
    const QDomElement profile = system.firstChildElement(QStringLiteral("compat_profile"));
    require(profile.attribute(QStringLiteral("id")).toStdString() ==
                    boost::uuids::to_string(foretold.after.id) &&
                profile.attribute(QStringLiteral("name")).toStdString() == foretold.after.name,
            "a foretold profile comes");
    checkSpacings(foretold.after, profile.firstChildElement(QStringLiteral("spacing")));
}

void checkSystems(const std::vector<InspectedSystem>& foretold, const QDomElement& settings)
{
    QDomElement system = settings.firstChildElement();
    for (const InspectedSystem& expected : foretold) {
        require(!system.isNull(), "each foretold system comes");
        checkSystem(expected, system);
        system = system.nextSiblingElement();
    }
    require(system.isNull(), "only foretold systems come");
}

void checkVerdict(const Inspection& inspection, const ConvertedDocument& converted)
{
    require((inspection.advice == Inspection::IMPOSSIBLE) ==
                (converted.outcome != ConvertedDocument::CONVERTED),
            "exactly what cannot be converted is called impossible");
    if (converted.outcome != ConvertedDocument::CONVERTED) {
        return;
    }
    checkSystems(inspection.systems, converted.settings());
    require((inspection.advice == Inspection::CONVERT) <= inspection.losses.empty(),
            "what loses something is not advised");
    require(inspection.advice != Inspection::CONVERT || inspection.channels == 0 ||
                !inspection.systems.empty(),
            "settings are not lost in silence");
}

// --- The reports -----------------------------------------------------------------------------

// By hand, here and below: Qt's expressions find nothing in a text with half a character.
QStringList withoutColours(QString text)
{
    for (int start = text.indexOf(QChar(0x1b)); start >= 0; start = text.indexOf(QChar(0x1b))) {
        text.remove(start, text.indexOf(QLatin1Char('m'), start) + 1 - start);
    }
    return text.split(QLatin1Char('\n'));
}

template <typename Report>
QJsonObject checkReport(const Report& report)
{
    const QString text = ReportText::of(report, false);
    require(text.endsWith(QLatin1Char('\n')), "a report ends with a line feed");
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        require(TextLayout::printable(line) == line, "a report moves no cursor");
    }
    require(withoutColours(ReportText::of(report, true)) == lines, "colours change no word");
    const QByteArray json = ReportJson::of(report);
    require(json.count('\n') == 1 && json.endsWith('\n'), "an object stands on one line");
    QJsonObject object = QJsonDocument::fromJson(json).object();
    require(object[QStringLiteral("format")].toInt() == ReportJson::FORMAT,
            "an object can be read and says its format");
    require(object[QStringLiteral("status")].toInt(-1) == statusOf(report),
            "an object says the status");
    return object;
}

void checkLines(const Findings& findings, int lines)
{
    for (const Finding& finding : findings) {
        require(finding.place.line >= 1 && finding.place.line <= lines,
                "a finding stands on a line of the document");
        require(!finding.place.path.isEmpty() || finding.place.line == 1,
                "a finding stands somewhere");
    }
}

bool isSame(const Finding& one, const Finding& other)
{
    return one.kind == other.kind && one.text == other.text && one.place.line == other.place.line &&
           one.place.path == other.place.path;
}

// What an archive asks for, which is not all.
void checkLossesAlone(const DocumentText& text, const Inspection& all)
{
    ReadError error;
    const std::optional<Inspection> inspection = inspectDocument(text, error, FindingList::LOSSES);
    require(inspection && inspection->notes.empty(), "notes that nobody wants are not there");
    require(inspection->advice == all.advice && inspection->systems.size() == all.systems.size(),
            "the verdict is the same without notes");
    require(std::equal(inspection->losses.begin(), inspection->losses.end(), all.losses.begin(),
                       all.losses.end(), isSame),
            "losses are the same without notes");
}

// By the production Char of XML 1.0, but for the halves of characters beyond 16 bits.
bool isForNobody(const QString& value)
{
    return std::any_of(value.begin(), value.end(), [](QChar character) {
        return (character < QChar(0x20) && !QStringLiteral("\t\n\r").contains(character)) ||
               character == QChar(0xFFFE) || character == QChar(0xFFFF);
    });
}

bool holdsWhatIsForNobody(const QDomNode& node)
{
    const QDomNamedNodeMap attributes = node.attributes();
    for (int i = 0; i < attributes.size(); ++i) {
        if (isForNobody(attributes.item(i).nodeValue())) {
            return true;
        }
    }
    for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling()) {
        if (holdsWhatIsForNobody(child)) {
            return true;
        }
    }
    return isForNobody(node.nodeValue());
}

void checkCharacters(const DocumentText& text, const Inspection& inspection)
{
    QDomDocument document;
    document.setContent(text.text());
    const bool isFound =
        std::any_of(inspection.losses.begin(), inspection.losses.end(),
                    [](const Finding& loss) { return loss.kind == Finding::INVALID_CHARACTER; });
    require(isFound == holdsWhatIsForNobody(document), "characters that none may hold are found");
}

// --- Verification ----------------------------------------------------------------------------

void checkVerification(const DocumentText& before, const ConvertedDocument& converted)
{
    static const MemoryFile AFTER;
    AFTER.setContent(converted.output);
    QFile file(AFTER.path());
    file.open(QIODevice::ReadOnly);
    const std::optional<DocumentText> afterText = DocumentText::ofOutput(file);
    require(afterText.has_value(), "what the conversion writes is UTF-8");

    ReadError error;
    const std::optional<Verification> verification = verifyConversion(before, *afterText, error);
    require(verification || !converted.isReadableBefore(), "a conversion can be verified");
    require(!verification || verification->differences.empty(), "a conversion verifies");
    if (verification) {
        checkReport(VerificationReport{"before", "after", *verification});
    } else {
        checkReport(VerificationReport{"before", "after", error});
    }
}

void check(const DocumentText& text, int lines)
{
    const ConvertedDocument converted(text.text());
    ReadError error;
    const std::optional<Inspection> inspection = inspectDocument(text, error);
    require(inspection.has_value() == (converted.outcome != ConvertedDocument::NOT_WELL_FORMED),
            "exactly what the converter can parse is inspected");
    if (!inspection) {
        require(error.line >= 1 && error.line <= lines && !error.text.isEmpty(),
                "an error has a line and a text");
        checkReport(DocumentReport{"document", error});
        return;
    }
    checkVerdict(*inspection, converted);
    checkLines(inspection->losses, lines);
    checkLines(inspection->notes, lines);
    checkLossesAlone(text, *inspection);
    checkCharacters(text, *inspection);
    const QJsonObject object = checkReport(DocumentReport{"document", *inspection});
    require(object[QStringLiteral("systems")].toArray().size() ==
                static_cast<int>(inspection->systems.size()),
            "an object has the systems");
    if (converted.outcome == ConvertedDocument::CONVERTED) {
        checkVerification(text, converted);
    }
}

int linesOf(QString text)
{
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return 1 + text.count(QLatin1Char('\n')) + text.count(QLatin1Char('\r'));
}

} // namespace

const Vocabulary& vocabularyOfTarget()
{
    return Vocabularies::workspace();
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzTarget::setUp();
    static const MemoryFile SCRATCH;
    const QByteArray bytes = FuzzTarget::Input(data, size).takeRest();
    SCRATCH.setContent(bytes);
    const std::optional<DocumentText> ofFile = DocumentText::ofFile(SCRATCH.path());
    require(ofFile.has_value(), "a file in memory can be read");
    check(*ofFile, linesOf(ofFile->text()));

    std::istringstream stream(bytes.toStdString());
    const std::optional<DocumentText> ofStream = DocumentText::ofStream(stream);
    require(ofStream.has_value(), "memory can be read to its end");
    if (ofStream->text() != ofFile->text()) {
        check(*ofStream, linesOf(QString::fromLatin1(bytes.constData(), bytes.size())));
    }
    return 0;
}

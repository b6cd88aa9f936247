// Hunts "compat_profile" elements that a profile is read from otherwise than the rules say, and
// forms, by the DOM, by the light writer or in a file, that do not lead back to the profile.
//
// The input is an XML document; its outermost element is read.

#include "fuzz/DocumentMutator.h"
#include "fuzz/FuzzTarget.h"
#include "fuzz/MemoryFile.h"
#include "fuzz/ProfileRules.h"
#include "fuzz/Vocabularies.h"

#include "ZelMain/FrequencyCompatibility/QtPkCompatProfile.h"

#include <tinyxml2.h>

#include <QBuffer>

#include <stdexcept>

using FuzzTarget::require;
using FuzzTarget::requireEqual;

namespace {

// A record that keeps what an element does not say shows it only when that is not the default.
PkCompatProfile notDefault()
{
    PkCompatProfile profile;
    profile.name = "before";
    profile.id.data[0] = 1;
    profile.chCh = profile.imd2t3o = profile.imd2t5o = profile.imd2t7o = 1;
    profile.imd2t9o = profile.imd3t3o = 2;
    profile.filterType = static_cast<EBFType>(7);
    profile.filterStart = profile.filterEnd = profile.filterCenter = 3;
    profile.filterCenterList = {4};
    profile.imdSource = profile.synthesizable = false;
    return profile;
}

enum Outcome { READ, REFUSED, THREW };

Outcome import(QtPkCompatProfile& profile, const QDomNode& node)
{
    try {
        return profile.Import(node) ? READ : REFUSED;
    } catch (const std::runtime_error& error) {
        require(QByteArray(error.what()) == "invalid uuid string", "a bad id is named as such");
        return THREW;
    }
}

Outcome expectedOutcome(const QDomElement& element)
{
    if (element.nodeName() != QLatin1String("compat_profile")) {
        return REFUSED;
    }
    return ProfileRules::uuidOf(element.attribute(QStringLiteral("id"))) ? READ : THREW;
}

QByteArray stored(QtPkCompatProfile profile, bool compact)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    require(profile.StoreInXml(buffer, compact), "memory takes what is stored");
    return buffer.data();
}

QDomDocument parsed(const QByteArray& text)
{
    QDomDocument document;
    require(document.setContent(text), "a written form can be read");
    return document;
}

QtPkCompatProfile readAgain(const QByteArray& text)
{
    QtPkCompatProfile profile;
    require(import(profile, parsed(text).firstChild()) == READ, "a written form can be read");
    return profile;
}

// Only a filter of the type with a list has its list written.
PkCompatProfile withWhatIsWritten(PkCompatProfile profile, bool hasLists)
{
    if (!hasLists || profile.filterType != EBF_CENTER_LIST) {
        profile.filterCenterList.clear();
    }
    return profile;
}

void checkDomForm(const QtPkCompatProfile& profile)
{
    const QByteArray compact = stored(profile, true);
    const QtPkCompatProfile again = readAgain(compact);
    require(ProfileRules::areEqual(again, withWhatIsWritten(profile, true)),
            "the stored form leads back to the profile");
    requireEqual(stored(again, true), compact, "what is read is written the same");
    require(ProfileRules::areEqual(readAgain(stored(profile, false)), again),
            "layout means nothing");
}

void checkLightForm(const PkCompatProfile& profile)
{
    tinyxml2::XMLDocument document;
    const tinyxml2::XMLElement* const element = profile.Export(document, nullptr);
    require(element == document.FirstChild() && element == document.LastChild(),
            "without a parent the element is all of the document");
    tinyxml2::XMLPrinter printer;
    document.Print(&printer);
    require(ProfileRules::areEqual(readAgain(printer.CStr()), withWhatIsWritten(profile, false)),
            "the light form leads back to the profile, without its list");
}

void checkFile(const QtPkCompatProfile& profile)
{
    static const MemoryFile SCRATCH;
    const std::string path = SCRATCH.path().toStdString();
    QtPkCompatProfile writer = profile;
    require(writer.Export(path, true), "memory takes what is stored");
    requireEqual(SCRATCH.content(), stored(profile, true), "a file holds what is stored");
    QtPkCompatProfile reader;
    require(reader.Import(path), "a written file can be read");
    require(ProfileRules::areEqual(reader, withWhatIsWritten(profile, true)),
            "a file leads back to the profile");
}

} // namespace

const Vocabulary& vocabularyOfTarget()
{
    return Vocabularies::compatProfile();
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzTarget::setUp();
    QDomDocument document;
    if (!document.setContent(FuzzTarget::Input(data, size).takeRest())) {
        return 0; // nothing to be learnt about profiles
    }
    const QDomElement element = document.documentElement();
    const PkCompatProfile before = notDefault();
    QtPkCompatProfile profile(before);
    const Outcome outcome = import(profile, element);
    require(outcome == expectedOutcome(element), "the name and the id decide");
    if (outcome != READ) {
        require(ProfileRules::areEqual(profile, before), "what is not read changes nothing");
        return 0;
    }
    require(ProfileRules::areEqual(profile, ProfileRules::importedInto(before, element)),
            "a profile is read by its rules");
    // A character that no document may hold cannot be read back; a reference lets one in.
    if (ProfileRules::isOfXml(QString::fromStdString(profile.name))) {
        checkDomForm(profile);
        checkLightForm(profile);
        checkFile(profile);
    }
    return 0;
}

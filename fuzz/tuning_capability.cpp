// Hunts "tuning_capability" elements that a capability is read from otherwise than the rules say,
// also in a locale with a decimal comma, and forms that do not lead back to the capability.
//
// The input is an XML document; its outermost element is read.

#include "fuzz/DocumentMutator.h"
#include "fuzz/FuzzTarget.h"
#include "fuzz/ProfileRules.h"
#include "fuzz/Vocabularies.h"

#include "ZelMain/FrequencyCompatibility/QtPkTuningCapability.h"

#include <boost/uuid/nil_generator.hpp>

#include <QBuffer>
#include <QLocale>

#include <cmath>
#include <limits>
#include <tuple>

using FuzzTarget::require;
using FuzzTarget::requireEqual;

namespace {

// --- The rules of reading --------------------------------------------------------------------

int truncated(double khz)
{
    const double whole = std::trunc(khz);
    const bool fits = whole >= std::numeric_limits<int>::min() &&
                      whole <= std::numeric_limits<int>::max(); // false for NaN
    return fits ? static_cast<int>(whole) : std::numeric_limits<int>::min();
}

int readKhz(const QDomNode& element)
{
    QString text = element.toElement().text();
    bool ok = false;
    const double khz = text.replace(QLocale().decimalPoint(), QLatin1Char('.')).toDouble(&ok);
    return ok ? truncated(khz) : 0;
}

std::pair<int, int> readSubRange(const QDomNode& element)
{
    std::pair<int, int> range(0, 0);
    for (QDomNode node = element.firstChild(); !node.isNull(); node = node.nextSibling()) {
        if (node.isElement() && node.nodeName() == QLatin1String("start")) {
            range.first = readKhz(node);
        }
        if (node.isElement() && node.nodeName() == QLatin1String("end")) {
            range.second = readKhz(node);
        }
    }
    return range;
}

void readChild(const QDomNode& child, TuningCapability& capability)
{
    const bool isRange = child.nodeName() == QLatin1String("range");
    const bool isList = child.nodeName() == QLatin1String("freq_list");
    const bool areSubRanges = child.nodeName() == QLatin1String("sub_range_list") &&
                              child.firstChild().isElement() &&
                              child.firstChild().nodeName() == QLatin1String("sub_range");
    for (QDomNode node = child.firstChild(); !node.isNull(); node = node.nextSibling()) {
        const QString name = node.isElement() ? node.nodeName() : QString();
        if (isRange && name == QLatin1String("start")) {
            capability.rangeStart = readKhz(node);
        } else if (isRange && name == QLatin1String("end")) {
            capability.rangeEnd = readKhz(node);
        } else if (isRange && name == QLatin1String("step")) {
            capability.step = readKhz(node);
        } else if (isList && name == QLatin1String("freq")) {
            // Read without regard to the locale.
            capability.freqList.push_back(truncated(node.toElement().text().toDouble()));
        } else if (areSubRanges && node.isElement()) {
            capability.subRanges.push_back(readSubRange(node));
        }
    }
}

TuningCapability importedInto(TuningCapability capability, const QDomElement& element)
{
    capability.id = ProfileRules::uuidOf(element.attribute(QStringLiteral("id")))
                        .value_or(boost::uuids::nil_uuid());
    for (QDomNode node = element.firstChild(); !node.isNull(); node = node.nextSibling()) {
        if (node.isElement()) {
            readChild(node, capability);
        }
    }
    return capability;
}

// --- The record ------------------------------------------------------------------------------

bool areEqual(const TuningCapability& one, const TuningCapability& other)
{
    const auto fields = [](const TuningCapability& capability) {
        return std::tie(capability.id, capability.rangeStart, capability.rangeEnd, capability.step,
                        capability.freqList, capability.subRanges);
    };
    return fields(one) == fields(other);
}

// The raster or, where there is none, the list: never both.
TuningCapability withWhatIsWritten(TuningCapability capability)
{
    if (capability.step >= 1) {
        capability.freqList.clear();
    } else {
        capability.rangeStart = capability.rangeEnd = capability.step = 0;
    }
    return capability;
}

TuningCapability notEmpty()
{
    TuningCapability capability(boost::uuids::nil_uuid());
    capability.id.data[0] = 1;
    capability.rangeStart = 1;
    capability.rangeEnd = 2;
    capability.step = -3;
    capability.freqList = {4};
    capability.subRanges = {{5, 6}};
    return capability;
}

QByteArray stored(QtPkTuningCapability capability, bool compact)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    require(capability.StoreInXml(buffer, compact), "memory takes what is stored");
    return buffer.data();
}

QtPkTuningCapability readAgain(const QByteArray& text)
{
    QDomDocument document;
    require(document.setContent(text), "a written form can be read");
    QtPkTuningCapability capability(boost::uuids::nil_uuid());
    require(capability.Import(document.documentElement()), "a written form can be read");
    return capability;
}

void checkForms(const QtPkTuningCapability& capability)
{
    const QByteArray compact = stored(capability, true);
    const QtPkTuningCapability again = readAgain(compact);
    require(areEqual(again, withWhatIsWritten(capability)),
            "the stored form leads back to the capability");
    requireEqual(stored(again, true), compact, "what is read is written the same");
    require(areEqual(readAgain(stored(capability, false)), again), "layout means nothing");
}

void check(const QDomElement& element)
{
    const TuningCapability before = notEmpty();
    QtPkTuningCapability capability(before);
    const bool isRead = capability.Import(element);
    require(isRead == (element.nodeName() == QLatin1String("tuning_capability")),
            "the name decides");
    if (!isRead) {
        require(areEqual(capability, before), "what is not read changes nothing");
        return;
    }
    require(areEqual(capability, importedInto(before, element)),
            "a capability is read by its rules");
    checkForms(capability);
}

} // namespace

const Vocabulary& vocabularyOfTarget()
{
    return Vocabularies::tuningCapability();
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzTarget::setUp();
    QDomDocument document;
    if (!document.setContent(FuzzTarget::Input(data, size).takeRest())) {
        return 0; // nothing to be learnt about capabilities
    }
    for (const QLocale::Language language : {QLocale::C, QLocale::German}) {
        QLocale::setDefault(QLocale(language));
        check(document.documentElement());
    }
    return 0;
}

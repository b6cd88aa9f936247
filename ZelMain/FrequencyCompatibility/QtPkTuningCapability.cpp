#include "ZelMain/FrequencyCompatibility/QtPkTuningCapability.h"

#include "ZelMain/Frequency.h"
#include "ZelMain/FrequencyCompatibility/QDomDocHelper.h"
#include "ZelMain/FrequencyCompatibility/QDomFile.h"
#include "ZelMain/FrequencyCompatibility/QDomRecord.h"

#include <boost/uuid/nil_generator.hpp>

#include <limits>
#include <stdexcept>

namespace {

constexpr int MIN_RASTER_STEP_KHZ = 1;

// Names of the format, made once: the nodes of a document share the text that they are given.
struct Names
{
    const QString element = QStringLiteral("tuning_capability");
    const QString range = QStringLiteral("range");
    const QString start = QStringLiteral("start");
    const QString end = QStringLiteral("end");
    const QString step = QStringLiteral("step");
    const QString freqList = QStringLiteral("freq_list");
    const QString freq = QStringLiteral("freq");
    const QString subRangeList = QStringLiteral("sub_range_list");
    const QString subRange = QStringLiteral("sub_range");
};

Names const& names()
{
    static const Names instance;
    return instance;
}

void appendRange(TuningCapability const& capability, QDomDocument& doc, QDomElement& parent)
{
    QDomElement range = QDomRecord::appendKilohertz(doc, names().range, parent);
    QDomRecord::appendInteger(doc, names().start, capability.rangeStart, range);
    QDomRecord::appendInteger(doc, names().end, capability.rangeEnd, range);
    QDomRecord::appendInteger(doc, names().step, capability.step, range);
}

void appendFreqList(TuningCapability const& capability, QDomDocument& doc, QDomElement& parent)
{
    QDomElement list = QDomRecord::appendKilohertz(doc, names().freqList, parent);
    for (const int khz : capability.freqList) {
        QDomRecord::appendInteger(doc, names().freq, khz, list);
    }
}

void appendSubRanges(TuningCapability const& capability, QDomDocument& doc, QDomElement& parent)
{
    QDomElement list = QDomRecord::appendKilohertz(doc, names().subRangeList, parent);
    for (auto const& [startKhz, endKhz] : capability.subRanges) {
        QDomElement subRange = doc.createElement(names().subRange);
        list.appendChild(subRange);
        QDomRecord::appendInteger(doc, names().start, startKhz, subRange);
        QDomRecord::appendInteger(doc, names().end, endKhz, subRange);
    }
}

QDomElement makeElement(TuningCapability const& capability, QDomDocument& doc)
{
    QDomElement element = QDomRecord::createElement(doc, names().element, capability.id);
    if (capability.step >= MIN_RASTER_STEP_KHZ) {
        appendRange(capability, doc, element);
    } else if (!capability.freqList.empty()) {
        appendFreqList(capability, doc, element);
    }
    if (!capability.subRanges.empty()) {
        appendSubRanges(capability, doc, element);
    }
    return element;
}

// A device can be tuned whatever its id, so a bad one does not stop the import. A profile is found
// by its id, so there the failure goes on to the caller.
boost::uuids::uuid readIdOrNil(QDomElement const& element)
{
    try {
        return QDomRecord::readId(element);
    } catch (std::runtime_error const&) {
        return boost::uuids::nil_uuid();
    }
}

// Tuning below a kilohertz does not exist, so fractions go. Numbers that no int holds, and NaN,
// share one value that stands out.
int truncateToInt(double khz)
{
    constexpr double LOWEST = std::numeric_limits<int>::min();
    constexpr double HIGHEST = std::numeric_limits<int>::max();
    const bool fits = khz > LOWEST - 1.0 && khz < HIGHEST + 1.0;
    return fits ? static_cast<int>(khz) : std::numeric_limits<int>::min();
}

int readKhz(QDomElement const& element)
{
    return truncateToInt(Frequency::fromKhzString(element.text(), nullptr).inKhz());
}

int readListedKhz(QDomElement const& element)
{
    return truncateToInt(Frequency::fromKhz(element.text().toDouble()).inKhz());
}

template <typename READER>
void forEachChildElement(QDomElement const& parent, READER const& read)
{
    for (QDomElement child = parent.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        read(child, child.tagName());
    }
}

void readRange(QDomElement const& range, TuningCapability& capability)
{
    forEachChildElement(range, [&capability](QDomElement const& child, QString const& name) {
        if (name == names().start) {
            capability.rangeStart = readKhz(child);
        } else if (name == names().end) {
            capability.rangeEnd = readKhz(child);
        } else if (name == names().step) {
            capability.step = readKhz(child);
        }
    });
}

void readFreqList(QDomElement const& list, std::vector<int>& freqList)
{
    forEachChildElement(list, [&freqList](QDomElement const& child, QString const& name) {
        if (name == names().freq) {
            freqList.push_back(readListedKhz(child));
        }
    });
}

std::pair<int, int> readSubRange(QDomElement const& element)
{
    std::pair<int, int> subRange(0, 0);
    forEachChildElement(element, [&subRange](QDomElement const& child, QString const& name) {
        if (name == names().start) {
            subRange.first = readKhz(child);
        } else if (name == names().end) {
            subRange.second = readKhz(child);
        }
    });
    return subRange;
}

void readSubRanges(QDomElement const& list, std::vector<std::pair<int, int>>& subRanges)
{
    // The first node says whether this is such a list; behind it any element counts as a range.
    const QDomNode first = list.firstChild();
    if (!first.isElement() || first.nodeName() != names().subRange) {
        return;
    }
    forEachChildElement(list, [&subRanges](QDomElement const& child, QString const&) {
        subRanges.push_back(readSubRange(child));
    });
}

} // namespace

QtPkTuningCapability::QtPkTuningCapability() = default;

QtPkTuningCapability::QtPkTuningCapability(boost::uuids::uuid const& uuid) : TuningCapability(uuid)
{
}

QtPkTuningCapability::QtPkTuningCapability(TuningCapability const& capability)
    : TuningCapability(capability)
{
}

// Qt's documents are shared by copying, so the copy gets a document of its own.
QtPkTuningCapability::QtPkTuningCapability(QtPkTuningCapability const& other)
    : TuningCapability(other)
{
}

QtPkTuningCapability& QtPkTuningCapability::operator=(QtPkTuningCapability const& other)
{
    TuningCapability::operator=(other);
    return *this;
}

bool QtPkTuningCapability::Import(std::string const& /*path*/)
{
    return false;
}

QtPkTuningCapability::~QtPkTuningCapability() = default;

// The lists grow by what is read: a capability may be spread over several elements. Whoever wants
// them fresh imports into a fresh capability.
bool QtPkTuningCapability::Import(QDomNode const& node)
{
    if (node.nodeName() != names().element) {
        return false;
    }
    const QDomElement element = node.toElement();
    id = readIdOrNil(element);
    forEachChildElement(element, [this](QDomElement const& child, QString const& name) {
        if (name == names().range) {
            readRange(child, *this);
        } else if (name == names().freqList) {
            readFreqList(child, freqList);
        } else if (name == names().subRangeList) {
            readSubRanges(child, subRanges);
        }
    });
    return true;
}

QDomElement QtPkTuningCapability::Export()
{
    return makeElement(*this, m_document);
}

bool QtPkTuningCapability::Export(std::string const& path, bool compact)
{
    return QDomFile::writeFile(
        path, [this, compact](QIODevice& file) { return StoreInXml(file, compact); });
}

// Unlike a profile, a capability makes its elements in its own document, whichever it is given; who
// wants the element in another document hands over its parent there.
QDomElement QtPkTuningCapability::Export(QDomDocument& /*doc*/)
{
    return makeElement(*this, m_document);
}

void QtPkTuningCapability::Export(QDomNode& parent)
{
    if (parent.isNull()) {
        return;
    }
    QDomDocument document = parent.ownerDocument();
    parent.appendChild(makeElement(*this, document));
}

bool QtPkTuningCapability::StoreInXml(QIODevice& device, bool compact)
{
    return QDomFile::store(
        m_document, [this] { return Export(); }, device, compact);
}

void QtPkTuningCapability::CreateChildNode(QString const& name, QString const& text,
                                           QDomElement& parent)
{
    QDomDocHelper::CreateChildNode(m_document, name, text, parent);
}

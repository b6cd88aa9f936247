// A program outside the project: it touches each part of the library, ends with 0 when all answer,
// and else with the number of the part that does not. "all_headers.h" includes every header.

#include "all_headers.h"

#include <QBuffer>
#include <QDomDocument>
#include <QVariant>

#include <tinyxml2.h>

#include <exception>

namespace {

bool keysAnswer()
{
    CompatSystemUniqueKey key;
    return key.FromString("zone|series|band|mode|group") && key.band == "band" &&
           key.ToBasicCompatSystemUniqueKey().ToString() == "series|band|mode";
}

bool profilesAnswer()
{
    QtPkCompatProfile profile;
    profile.chCh = 350;
    QBuffer file;
    tinyxml2::XMLDocument light;
    const PkCompatProfile& record = profile;
    return file.open(QIODevice::WriteOnly) && profile.StoreInXml(file, true) &&
           file.data().contains("<ch_ch>350</ch_ch>") &&
           record.Export(light, nullptr) == light.RootElement();
}

// What the library throws, or makes a copy of behind a base, keeps its type over its border.
bool typesCrossTheBorder()
{
    QDomDocument document;
    QDomElement element = document.createElement("compat_profile");
    try {
        QtPkCompatProfile().Import(element);
        return false;
    } catch (const std::exception& problem) {
        const QtPkCompatProfile profile;
        const PkCompatProfile* record = &profile;
        return QString(problem.what()) == "invalid uuid string" &&
               dynamic_cast<const QtPkCompatProfile*>(record) == &profile;
    }
}

bool tuningAnswers()
{
    QtPkTuningCapability capability;
    capability.freqList = {470000};
    return capability.Export().firstChildElement().tagName() == "freq_list";
}

bool frequenciesAnswer()
{
    bool ok = false;
    const QVariant carried = Frequency::fromString("470.125 MHz", &ok);
    return ok && carried.value<Frequency>() + Frequency::fromKhz(25) == Frequency::fromKhz(470150);
}

bool versionsAnswer()
{
    const XmlVersions versions;
    return XmlVersions::GetXmlVersionString(XmlVersions::XML_VERSION_COORD_WORKSPACE) == "0.3";
}

bool loggingAnswers()
{
    // Without the start of the service nothing of it is written, and no folder made.
    const auto service = PkLogger::LogService::GetLogService();
    return !service->isLoggerEnabled() && !service->isUserExists("nobody") && CID() == CID();
}

bool foldersAnswer()
{
    return !DirectoryMemory::HOME_COMMON_SUBDIR.isEmpty();
}

} // namespace

int main()
{
    static_assert(ZELMAIN_VERSION_MAJOR >= 0);
    const auto parts = {keysAnswer,        profilesAnswer, typesCrossTheBorder, tuningAnswers,
                        frequenciesAnswer, versionsAnswer, loggingAnswers,      foldersAnswer};
    int number = 0;
    for (const auto part : parts) {
        ++number;
        if (!part()) {
            return number;
        }
    }
    return 0;
}

#include "ZelMain/ImportExport/XmlVersions.h"

XmlVersions::XmlVersions(QObject* parent) : QObject(parent) {}

XmlVersions::~XmlVersions() = default;

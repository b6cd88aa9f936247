#include "FileConverters/CoordinationWorkspaceSection/inspect/ReportText.h"

#include "FileConverters/CoordinationWorkspaceSection/inspect/Report.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/Spacings.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/TextLayout.h"

namespace {

enum Colour { BOLD = 1, RED = 31, GREEN = 32, YELLOW = 33 };

/** Puts a report together line by line. */
class Lines
{
public:
    explicit Lines(bool isColoured) : m_isColoured(isColoured) {}

    void add(const QString& line = {}) { m_text += line + QLatin1Char('\n'); }

    void addTable(const QVector<QStringList>& rows, const QVector<TextLayout::Alignment>& columns,
                  bool hasHeading)
    {
        const QStringList lines = TextLayout::table(rows, columns);
        for (int i = 0; i < lines.size(); ++i) {
            const bool isHeading = hasHeading && i == 0;
            add(QStringLiteral("  ") + (isHeading ? painted(lines[i], BOLD) : lines[i]));
        }
    }

    QString painted(const QString& text, Colour colour) const
    {
        return m_isColoured ? QStringLiteral("\x1b[%1m%2\x1b[0m")
                                  .arg(QString::number(static_cast<int>(colour)), text)
                            : text;
    }

    const QString& text() const { return m_text; }

private:
    bool m_isColoured;
    QString m_text;
};

QString shown(const std::string& field)
{
    return TextLayout::printable(QString(field.c_str()));
}

QString nameChange(const InspectedSystem& system)
{
    const QString before = TextLayout::printable(system.oldName);
    const QString after = shown(system.after.name);
    const auto orNone = [](const QString& name) {
        return name.isEmpty() ? QStringLiteral("(none)") : name;
    };
    return QStringLiteral("%1 → %2").arg(orNone(before), orNone(after));
}

QString spacingChange(int before, int after)
{
    return before == after
               ? QString::number(after)
               : QStringLiteral("%1 → %2").arg(QString::number(before), QString::number(after));
}

void addSystems(const std::vector<InspectedSystem>& systems, Lines& lines)
{
    if (systems.empty()) {
        return;
    }
    using TextLayout::LEFT;
    using TextLayout::RIGHT;
    QStringList heading = {QStringLiteral("Zone"),  QStringLiteral("Series"),
                           QStringLiteral("Band"),  QStringLiteral("Mode"),
                           QStringLiteral("Group"), QStringLiteral("Profile")};
    QVector<TextLayout::Alignment> columns(heading.size(), LEFT);
    for (const Spacing& spacing : SPACINGS_OF_SYSTEM) {
        heading.append(QLatin1String(spacing.heading));
        columns.append(RIGHT);
    }
    QVector<QStringList> rows = {heading};
    for (const InspectedSystem& system : systems) {
        QStringList row = {shown(system.key.zone),      shown(system.key.series),
                           shown(system.key.band),      shown(system.key.txProfile),
                           shown(system.key.inclGroup), nameChange(system)};
        for (const Spacing& spacing : SPACINGS_OF_SYSTEM) {
            row.append(spacingChange(system.before.*spacing.field, system.after.*spacing.field));
        }
        rows.append(row);
    }
    lines.addTable(rows, columns, true);
}

template <typename Item>
void addItems(const std::vector<Item>& items, Colour colour, Lines& lines)
{
    for (const Item& item : items) {
        lines.add(QStringLiteral("  line %1  %2  %3")
                      .arg(QString::number(item.place.line),
                           lines.painted(Item::nameOf(item.kind), colour),
                           TextLayout::printable(item.place.path)));
        lines.add(QStringLiteral("    %1").arg(TextLayout::printable(item.text)));
    }
}

QString versionText(const Inspection& inspection)
{
    if (!inspection.verdict) {
        return QStringLiteral("not exactly one");
    }
    const QString version =
        inspection.version.isNull()
            ? QStringLiteral("without a version")
            : QStringLiteral("version %1").arg(TextLayout::printable(inspection.version));
    QString verdict;
    switch (*inspection.verdict) {
    case XmlVersions::XmlCurrent:
        verdict = QStringLiteral("current already");
        break;
    case XmlVersions::XmlConvertible:
        verdict = QStringLiteral("can be converted");
        break;
    case XmlVersions::XmlTooNew:
        verdict = QStringLiteral("newer than this software knows");
        break;
    case XmlVersions::XmlInvalid:
    case XmlVersions::XmlNoConversion:
        verdict = QStringLiteral("not known to convert");
        break;
    }
    return QStringLiteral("coordinated_data_root, %1: %2").arg(version, verdict);
}

void addSummary(const Inspection& inspection, Lines& lines)
{
    QVector<QStringList> rows = {{QStringLiteral("Section"), versionText(inspection)}};
    if (inspection.verdict) {
        rows.append({QStringLiteral("Channels"), QString::number(inspection.channels)});
        rows.append({QStringLiteral("Configurations"), QString::number(inspection.configurations)});
        rows.append({QStringLiteral("Profiles"), QString::number(inspection.profiles)});
        rows.append({QStringLiteral("Systems in the new element"),
                     QString::number(inspection.systems.size())});
    }
    if (!inspection.systems.empty()) {
        rows.append({QStringLiteral("Spacings"),
                     QStringLiteral("in kHz, before → after where they change")});
    }
    lines.addTable(rows, {TextLayout::LEFT, TextLayout::LEFT}, false);
}

QString adviceText(const Inspection& inspection)
{
    switch (inspection.advice) {
    case Inspection::CONVERT:
        return QStringLiteral("Convert it: nothing is lost.");
    case Inspection::REVIEW:
        return QStringLiteral("It converts, but not whole: look at the losses first.");
    case Inspection::TOO_OLD:
        return QStringLiteral("Do not convert it unseen: its version is older than any that is"
                              " known to convert.");
    case Inspection::CURRENT:
        return QStringLiteral("Do not convert it: it is current already, and converting it again"
                              " destroys its settings.");
    case Inspection::TOO_NEW:
        return QStringLiteral("Do not convert it: it is newer than this software knows.");
    case Inspection::IMPOSSIBLE:
        break;
    }
    return QStringLiteral("It cannot be converted: the converter refuses it or breaks off.");
}

Colour adviceColour(int status)
{
    return status == STATUS_GOOD ? GREEN : status == STATUS_LOSS ? YELLOW : RED;
}

void addError(const ReadError& error, Lines& lines)
{
    const QString place = error.line > 0 ? QStringLiteral(" (line %1)").arg(error.line) : QString();
    lines.add(lines.painted(
        QStringLiteral("It cannot be read: %1%2.").arg(TextLayout::printable(error.text), place),
        RED));
}

void addInspection(const Inspection& inspection, int status, Lines& lines)
{
    addSummary(inspection, lines);
    if (!inspection.systems.empty()) {
        lines.add();
        addSystems(inspection.systems, lines);
    }
    if (!inspection.notes.empty()) {
        lines.add();
        lines.add(QStringLiteral("By design:"));
        addItems(inspection.notes, GREEN, lines);
    }
    lines.add();
    lines.add(QStringLiteral("Losses: %1")
                  .arg(inspection.losses.empty() ? QStringLiteral("none")
                                                 : QString::number(inspection.losses.size())));
    addItems(inspection.losses, RED, lines);
    lines.add();
    lines.add(lines.painted(adviceText(inspection), adviceColour(status)));
}

void addVerification(const Verification& verification, Lines& lines)
{
    lines.add(QStringLiteral("Differences: %1")
                  .arg(verification.differences.empty()
                           ? QStringLiteral("none")
                           : QString::number(verification.differences.size())));
    addItems(verification.differences, RED, lines);
    lines.add();
    lines.add(verification.differences.empty()
                  ? lines.painted(QStringLiteral("The conversion is right."), GREEN)
                  : lines.painted(QStringLiteral("The conversion is not right."), YELLOW));
}

} // namespace

QString ReportText::of(const DocumentReport& report, bool isColoured)
{
    Lines lines(isColoured);
    lines.add(lines.painted(TextLayout::printable(report.document), BOLD));
    if (const auto* error = std::get_if<ReadError>(&report.result)) {
        addError(*error, lines);
    } else {
        addInspection(std::get<Inspection>(report.result), statusOf(report), lines);
    }
    return lines.text();
}

QString ReportText::of(const VerificationReport& report, bool isColoured)
{
    Lines lines(isColoured);
    lines.add(lines.painted(QStringLiteral("%1 → %2").arg(TextLayout::printable(report.before),
                                                          TextLayout::printable(report.after)),
                            BOLD));
    if (const auto* error = std::get_if<ReadError>(&report.result)) {
        addError(*error, lines);
    } else {
        addVerification(std::get<Verification>(report.result), lines);
    }
    return lines.text();
}
